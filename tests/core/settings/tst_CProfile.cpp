#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "core/CProfile.h"
#include "tests/TestSupport.h"

using core::CProfile;
using core::Flag16;

namespace {

QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// Reads or writes key "K" through a variable of the named type that starts
// at `start` (parsed by type); returns the variable as text afterwards and
// the call's result.
QString Access(CProfile& p, const QString& type, const QString& start, int* result) {
  const QString key = QStringLiteral("K");
  if (type == "bool") {
    bool v = start == "1";
    *result = p.Value(key, v);
    return v ? "true" : "false";
  }
  if (type == "flag") {
    Flag16 v = Flag16::FromRaw(qint16(start.toInt()));
    *result = p.Value(key, v);
    return QString::number(v.raw);
  }
  if (type == "i16") {
    qint16 v = qint16(start.toInt());
    *result = p.Value(key, v);
    return QString::number(v);
  }
  if (type == "i32") {
    qint32 v = start.toInt();
    *result = p.Value(key, v);
    return QString::number(v);
  }
  if (type == "byte") {
    quint8 v = quint8(start.toInt());
    *result = p.Value(key, v);
    return QString::number(v);
  }
  QString v = start;
  *result = type == "control" ? p.ControlText(key, v) : p.Value(key, v);
  return v;
}

}  // namespace

class CProfileTest : public QObject {
  Q_OBJECT

  QTemporaryDir dir_;

  CProfile ProfileOn(const QByteArray& content) {
    const QString path = dir_.filePath(QStringLiteral("p%1.ini").arg(++files_));
    testsupport::MakeFile(path, content);
    CProfile p;
    p.setProfileFile(path);
    p.setProfileSection("S");
    return p;
  }
  int files_ = 0;

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
  }

  void reading_data() {
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("stored");  // the line "K=..." or nothing
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("result");

    QTest::newRow("bool 1") << "bool" << QByteArray("K=1") << "true" << 1;
    QTest::newRow("bool -1") << "bool" << QByteArray("K=-1") << "true" << 1;
    QTest::newRow("bool True") << "bool" << QByteArray("K=True") << "true" << 1;
    QTest::newRow("bool 0") << "bool" << QByteArray("K=0") << "false" << 1;
    QTest::newRow("bool garbage") << "bool" << QByteArray("K=yes") << "false" << 1;
    QTest::newRow("bool leading number only") << "bool" << QByteArray("K=1x") << "false" << 1;
    QTest::newRow("bool missing keeps") << "bool" << QByteArray() << "true" << 0;
    QTest::newRow("bool empty keeps") << "bool" << QByteArray("K=") << "true" << 0;
    QTest::newRow("flag -1") << "flag" << QByteArray("K=-1") << "-1" << 1;
    QTest::newRow("flag 1 kept as 1") << "flag" << QByteArray("K=1") << "1" << 1;
    QTest::newRow("flag missing keeps") << "flag" << QByteArray() << "77" << 0;
    QTest::newRow("i16 leading number") << "i16" << QByteArray("K=12abc") << "12" << 1;
    QTest::newRow("i16 no number") << "i16" << QByteArray("K=abc") << "0" << 1;
    QTest::newRow("i16 negative") << "i16" << QByteArray("K=-7 apples") << "-7" << 1;
    QTest::newRow("i16 half to even down") << "i16" << QByteArray("K=2.5") << "2" << 1;
    QTest::newRow("i16 half to even up") << "i16" << QByteArray("K=1.5") << "2" << 1;
    QTest::newRow("i16 fraction only") << "i16" << QByteArray("K=.7") << "1" << 1;
    QTest::newRow("i16 lone sign") << "i16" << QByteArray("K=-") << "0" << 1;
    QTest::newRow("i16 saturates") << "i16" << QByteArray("K=99999") << "32767" << 1;
    QTest::newRow("i16 quoted") << "i16" << QByteArray("K=\"42\"") << "42" << 1;
    QTest::newRow("i16 missing keeps") << "i16" << QByteArray() << "77" << 0;
    QTest::newRow("i32 saturates") << "i32" << QByteArray("K=99999999999999999999999") << "2147483647" << 1;
    QTest::newRow("i32 huge digits") << "i32" << ("K=" + QByteArray(400, '9')) << "2147483647" << 1;
    QTest::newRow("byte") << "byte" << QByteArray("K=23") << "23" << 1;
    QTest::newRow("byte high") << "byte" << QByteArray("K=300") << "255" << 1;
    QTest::newRow("text") << "text" << QByteArray("K= a b ") << "a b" << 1;
    QTest::newRow("text blank") << "text" << QByteArray("K= ") << " " << 1;
    QTest::newRow("text empty keeps") << "text" << QByteArray("K=") << "initial" << 0;
    QTest::newRow("control quoted blanks") << "control" << QByteArray("K=\" x \"") << " x " << 1;
    QTest::newRow("control empty keeps") << "control" << QByteArray("K=\"\"") << "initial" << 0;
  }
  void reading() {
    QFETCH(QString, type);
    QFETCH(QByteArray, stored);
    QFETCH(QString, expected);
    QFETCH(int, result);
    CProfile p = ProfileOn("[S]\n" + stored + "\n");
    p.setProfRead(true);
    int got = -1;
    const QString start = type == "bool" ? "1" : type == "text" || type == "control" ? "initial" : "77";
    QCOMPARE(Access(p, type, start, &got), expected);
    QCOMPARE(got, result);
  }

  void writing_data() {
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("value");  // parsed by type; a control keeps it
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("bool true") << "bool" << "1" << QByteArray("K=1");
    QTest::newRow("bool false") << "bool" << "0" << QByteArray("K=0");
    QTest::newRow("flag on") << "flag" << "-1" << QByteArray("K=-1");
    QTest::newRow("flag off") << "flag" << "0" << QByteArray("K=0");
    QTest::newRow("i16") << "i16" << "-5" << QByteArray("K=-5");
    QTest::newRow("i32") << "i32" << "-2147483648" << QByteArray("K=-2147483648");
    QTest::newRow("byte") << "byte" << "23" << QByteArray("K=23");
    QTest::newRow("text keeps its blanks") << "text" << "  C:/x y  " << QByteArray("K=  C:/x y  ");
    QTest::newRow("empty text is one blank") << "text" << "" << QByteArray("K= ");
    QTest::newRow("control quoted") << "control" << " ; " << QByteArray("K=\" ; \"");
    QTest::newRow("control empty") << "control" << "" << QByteArray("K=\"\"");
    QTest::newRow("control cut at CR") << "control" << "first\r\nsecond" << QByteArray("K=\"first\"");
    QTest::newRow("control cut at LF") << "control" << "first\nsecond" << QByteArray("K=\"first\"");
    QTest::newRow("control at most 1024") << "control" << QString(2000, u'z')
                                          << ("K=\"" + QByteArray(1024, 'z') + "\"");
  }
  void writing() {
    QFETCH(QString, type);
    QFETCH(QString, value);
    QFETCH(QByteArray, line);
    CProfile p = ProfileOn("[S]\n");
    p.setProfRead(false);
    int result = 0;
    const QString after = Access(p, type, value, &result);
    if (type == "control") QCOMPARE(after, value);
    QCOMPARE(result, 1);
    QCOMPARE(ReadAll(p.ProfileFile()), "[S]\n" + line + "\n");
  }

  void keysInFileOrder() {
    CProfile p = ProfileOn("[S]\nb=1\n;c=2\na=3\nB=4\n[T]\nz=1\n");
    QStringList names{"stale"};
    QCOMPARE(p.Keys(names), 2);
    QCOMPARE(names, (QStringList{"b", "a"}));
    p.setProfileSection("none");
    QCOMPARE(p.Keys(names), 0);
    QVERIFY(names.isEmpty());
  }

  // 50 names of 99 characters need 5001 of the 4096 places: 40 fit whole,
  // the 41st is cut to the 94 places left before the two closing NULs.
  void keysBufferCutsTheList() {
    QByteArray content("[S]\n");
    for (int i = 0; i < 50; ++i) content += QByteArray::number(10 + i) + QByteArray(97, 'k') + "=1\n";
    CProfile p = ProfileOn(content);
    QStringList names;
    QCOMPARE(p.Keys(names), 41);
    QCOMPARE(names[39].size(), 99);
    QCOMPARE(names[40].size(), 94);
    QVERIFY(names[40].startsWith("50"));

    // Exactly full: 41 names and their NULs take 4095 places, the closing
    // NUL the last one; one character more and the last name is cut by one.
    for (int extra : {0, 1}) {
      QByteArray fits("[S]\n");
      for (int i = 0; i < 41; ++i) fits += QByteArray::number(10 + i) + QByteArray(i == 0 ? 92 + extra : 97, 'k') + "=1\n";
      CProfile q = ProfileOn(fits);
      QCOMPARE(q.Keys(names), 41);
      QCOMPARE(names.last().size(), 99 - extra);
    }
  }

  // A batch reads once and saves once; nothing reaches the file before EndBatch.
  void batchSavesOnce() {
    CProfile p = ProfileOn("; mine\n[S]\nA=1\n");
    const QByteArray before = ReadAll(p.ProfileFile());
    QVERIFY(p.BeginBatch());
    p.setProfRead(false);
    for (int i = 0; i < 200; ++i) {
      qint32 v = i;
      QCOMPARE(p.Value(QStringLiteral("K%1").arg(i), v), 1);
    }
    QCOMPARE(ReadAll(p.ProfileFile()), before);
    QVERIFY(p.EndBatch());
    const QByteArray after = ReadAll(p.ProfileFile());
    QVERIFY(after.startsWith("; mine\n[S]\nA=1\nK0=0\nK1=1\n"));
    QVERIFY(after.endsWith("K199=199\n"));
    QVERIFY(!p.HasError());
  }

  void writeToReadOnlyFileFails() {
    CProfile p = ProfileOn("[S]\nA=1\n");
    QVERIFY(QFile::setPermissions(p.ProfileFile(), QFileDevice::ReadOwner));
    p.setProfRead(false);
    qint32 v = 5;
    QCOMPARE(p.Value("A", v), 0);
    QVERIFY(p.HasError());
    QCOMPARE(ReadAll(p.ProfileFile()), QByteArray("[S]\nA=1\n"));

    p.ClearError();
    QVERIFY(p.BeginBatch());
    p.Value("A", v);
    QVERIFY(!p.EndBatch());
    QVERIFY(p.LastError().contains(p.ProfileFile()));
    QCOMPARE(ReadAll(p.ProfileFile()), QByteArray("[S]\nA=1\n"));
  }
};

QTEST_GUILESS_MAIN(CProfileTest)
#include "tst_CProfile.moc"
