// `quorvane copy|move` as a script sees them: one row per item in the job's
// order, however many (rows of large jobs are written on a thread of their
// own), the summary after the last row, and a refused selection untouched.
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/TestSupport.h"

namespace {

struct Run {
  int code;
  QStringList rows;
  QString err;
};

Run Quorvane(const QStringList& args) {
  QProcess p;
  p.start(QStringLiteral(QUORVANE_BINARY), args);
  p.waitForFinished(60000);
  QStringList rows = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n');
  if (!rows.isEmpty() && rows.back().isEmpty()) rows.removeLast();
  return {p.exitCode(), rows, QString::fromUtf8(p.readAllStandardError())};
}

QString Name(int i) { return QStringLiteral("f%1.txt").arg(i, 4, 10, QChar(u'0')); }

}  // namespace

class TestFileOpsCommand : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  // Enough items for several batches of rows; "missing" puts a source that
  // does not exist at the end of the selection.
  void selection_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("missing");
    QTest::newRow("copy") << "copy" << false;
    QTest::newRow("move") << "move" << false;
    QTest::newRow("move, last source missing") << "move" << true;
  }
  void selection() {
    QFETCH(QString, command);
    QFETCH(bool, missing);
    constexpr int kItems = 700;
    QTemporaryDir dir;
    const QString from = dir.filePath("from"), to = dir.filePath("to");
    QVERIFY(QDir().mkpath(from) && QDir().mkpath(to));
    QStringList args{command};
    for (int i = 0; i < kItems; ++i) {
      QVERIFY(testsupport::MakeFile(from + u'/' + Name(i), Name(i).toUtf8()));
      args << from + u'/' + Name(i);
    }
    // Paths are cleaned however they are spelt; the rows show them clean.
    args[1] = from + "/./" + Name(0);
    args[2] = from + "//" + Name(1);
    args[3] = from + "/../from/" + Name(2);
    if (missing) args << from + "/gone.txt";
    args << to;
    const Run run = Quorvane(args);
    if (missing) {
      QCOMPARE(run.code, 2);
      QVERIFY(run.rows.isEmpty());
      QVERIFY2(run.err.contains("The source does not exist: " + from + "/gone.txt"), qPrintable(run.err));
      QCOMPARE(QDir(from).count(), uint(kItems + 2));  // nothing moved
      QCOMPARE(QDir(to).count(), uint(2));
      return;
    }
    QCOMPARE(run.code, 0);
    QCOMPARE(run.rows.size(), kItems);
    const QString word = command == u"copy" ? QStringLiteral("copied") : QStringLiteral("moved");
    for (int i = 0; i < kItems; ++i) {
      QCOMPARE(run.rows[i], QStringList({word, from + u'/' + Name(i), to + u'/' + Name(i), QString()}).join(u'\t'));
      QFile f(to + u'/' + Name(i));
      QVERIFY(f.open(QIODevice::ReadOnly));
      QCOMPARE(f.readAll(), Name(i).toUtf8());
    }
    QCOMPARE(QFile::exists(from + u'/' + Name(0)), command == u"copy");
    QVERIFY2(run.err.contains(QString::number(kItems)), qPrintable(run.err));
  }
};

QTEST_GUILESS_MAIN(TestFileOpsCommand)
#include "TestFileOpsCommand.moc"
