#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include "core/IniFile.h"
#include "tests/TestSupport.h"

using core::IniFile;

class IniFileTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void reading_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("value");

    QTest::newRow("plain") << QByteArray("[S]\nK=v\n") << "S" << "K" << 1 << "v";
    QTest::newRow("names ignore case") << QByteArray("[SeCtion]\nkEy=v\n") << "section" << "KEY" << 1 << "v";
    QTest::newRow("names and value trimmed") << QByteArray("  [ S ]  \n\t K \t=  v w \t\n") << "S" << "K" << 3 << "v w";
    QTest::newRow("double quotes stripped") << QByteArray("[S]\nK=\"  a b  \"\n") << "S" << "K" << 7 << "  a b  ";
    QTest::newRow("one pair only") << QByteArray("[S]\nK=\"\"x\"\"\n") << "S" << "K" << 3 << "\"x\"";
    QTest::newRow("unmatched quotes kept") << QByteArray("[S]\nK=\"x'\n") << "S" << "K" << 3 << "\"x'";
    QTest::newRow("empty value") << QByteArray("[S]\nK=\n") << "S" << "K" << 0 << "";
    QTest::newRow("empty quotes") << QByteArray("[S]\nK=\"\"\n") << "S" << "K" << 0 << "";
    QTest::newRow("blanks read as one blank") << QByteArray("[S]\nK=   \n") << "S" << "K" << 1 << " ";
    QTest::newRow("missing key") << QByteArray("[S]\nA=1\n") << "S" << "K" << 0 << "";
    QTest::newRow("first duplicate key wins") << QByteArray("[S]\nK=1\nk=2\n") << "S" << "K" << 1 << "1";
    QTest::newRow("first duplicate section wins") << QByteArray("[S]\nA=1\n[s]\nK=2\n") << "S" << "K" << 0 << "";
    QTest::newRow("key before any section") << QByteArray("K=1\n[S]\n") << "S" << "K" << 0 << "";
    QTest::newRow("comment is no key") << QByteArray("[S]\n;K=1\n#K=2\n") << "S" << "K" << 0 << "";
    QTest::newRow("text after header ignored") << QByteArray("[S] junk\nK=1\n") << "S" << "K" << 1 << "1";
    QTest::newRow("header without bracket") << QByteArray("[S\nK=1\n") << "S" << "K" << 1 << "1";
    QTest::newRow("crlf") << QByteArray("[S]\r\nK=v\r\n") << "S" << "K" << 1 << "v";
    QTest::newRow("equals in value") << QByteArray("[S]\nK=a=b\n") << "S" << "K" << 3 << "a=b";
    QTest::newRow("utf-8") << QByteArray("[S]\nK=Grüße\n") << "S" << "K" << 5 << QString::fromUtf8("Grüße");
    QTest::newRow("cut to 1023") << (QByteArray("[S]\nK=") + QByteArray(1500, 'x')) << "S" << "K" << 1023
                                 << QString(1023, u'x');
  }
  void reading() {
    QFETCH(QByteArray, content);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(int, count);
    QFETCH(QString, value);
    const IniFile ini = IniFile::FromBytes(content);
    QString got = QStringLiteral("stale");
    QCOMPARE(ini.getString(section, key, &got), count);
    QCOMPARE(got, value);
  }

  void invalidBytesSurvive() {
    const QByteArray content("[S]\nK=a\xff\xfe" "b\n");
    const IniFile ini = IniFile::FromBytes(content);
    IniFile copy = ini;
    const std::optional<QString> v = ini.value(u"S", u"K");
    QVERIFY(v.has_value());
    QVERIFY(copy.setValue(u"S", u"L", *v));
    QCOMPARE(copy.toBytes(), content + "L=a\xff\xfe" "b\n");
  }

  void keysAndSections() {
    const IniFile ini = IniFile::FromBytes(
        "top=1\n[A]\nZeta=1\n; note\nalpha=2\nZETA=3\nnoequals\n=x\n[B]\n[a]\nlate=4\n");
    QCOMPARE(ini.keys(u"a"), (QStringList{"Zeta", "alpha"}));
    QCOMPARE(ini.keys(u"B"), QStringList());
    QCOMPARE(ini.keys(u"none"), QStringList());
    QCOMPARE(ini.sections(), (QStringList{"A", "B"}));
  }

  void writing_data() {
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("unchanged value is no change") << QByteArray("[S]\nA = 1\n") << "s" << "a" << "1"
                                                  << QByteArray("[S]\nA = 1\n");
    QTest::newRow("in place") << QByteArray("; c\n[S]\nA=1\nB=2\n") << "S" << "A" << "9"
                              << QByteArray("; c\n[S]\nA=9\nB=2\n");
    QTest::newRow("spelling and spacing kept") << QByteArray("[s]\n  kEy = old  \n") << "S" << "KEY" << "new"
                                               << QByteArray("[s]\n  kEy = new\n");
    QTest::newRow("new key after last key") << QByteArray("[S]\nA=1\n\n; x\n[T]\nB=2\n") << "S" << "C" << "3"
                                            << QByteArray("[S]\nA=1\nC=3\n\n; x\n[T]\nB=2\n");
    QTest::newRow("new key in empty section") << QByteArray("[S]\n[T]\n") << "S" << "A" << "1"
                                              << QByteArray("[S]\nA=1\n[T]\n");
    QTest::newRow("new section appended") << QByteArray("[S]\nA=1\n") << "T" << "B" << "2"
                                          << QByteArray("[S]\nA=1\n\n[T]\nB=2\n");
    QTest::newRow("crlf kept") << QByteArray("[S]\r\nA=1\r\n") << "T" << "B" << "2"
                               << QByteArray("[S]\r\nA=1\r\n\r\n[T]\r\nB=2\r\n");
    QTest::newRow("crlf in place") << QByteArray("[S]\r\nA=1\r\nB=2\r\n") << "S" << "A" << "7"
                                   << QByteArray("[S]\r\nA=7\r\nB=2\r\n");
    QTest::newRow("no final break stays so") << QByteArray("[S]\nA=1") << "S" << "B" << "2"
                                             << QByteArray("[S]\nA=1\nB=2");
    QTest::newRow("empty file") << QByteArray() << "S" << "A" << "1" << QByteArray("[S]\nA=1\n");
    QTest::newRow("first duplicate key") << QByteArray("[S]\nA=1\nA=2\n") << "S" << "a" << "9"
                                         << QByteArray("[S]\nA=9\nA=2\n");
    QTest::newRow("first duplicate section") << QByteArray("[S]\nA=1\n[S]\nB=2\n") << "s" << "B" << "3"
                                             << QByteArray("[S]\nA=1\nB=3\n[S]\nB=2\n");
    QTest::newRow("blank replaces blank") << QByteArray("[S]\nA= \n") << "S" << "A" << " " << QByteArray("[S]\nA= \n");
    QTest::newRow("blank value drops old blanks") << QByteArray("[S]\nA = x\n") << "S" << "A" << " "
                                                  << QByteArray("[S]\nA = \n");
    QTest::newRow("value cut at line break") << QByteArray("[S]\n") << "S" << "A" << "x\ny"
                                             << QByteArray("[S]\nA=x\n");
    QTest::newRow("garbage kept") << QByteArray("\x01\x02garbage\n[S]\nA=1\n") << "S" << "A" << "2"
                                  << QByteArray("\x01\x02garbage\n[S]\nA=2\n");
  }
  void writing() {
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QByteArray, after);
    IniFile ini = IniFile::FromBytes(before);
    QVERIFY(ini.setValue(section, key, value));
    QCOMPARE(ini.toBytes(), after);
    QCOMPARE(ini.isModified(), after != before);
    // What was written reads back.
    QString got;
    ini.getString(section, key, &got);
    QCOMPARE(got, value.section(u'\n', 0, 0));
  }

  void namesThatCannotBeStored_data() {
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::newRow("empty key") << "S" << "";
    QTest::newRow("blank key") << "S" << "  ";
    QTest::newRow("equals in key") << "S" << "a=b";
    QTest::newRow("key like a header") << "S" << "[x";
    QTest::newRow("key like a comment") << "S" << ";x";
    QTest::newRow("break in key") << "S" << "a\nb";
    QTest::newRow("bracket in section") << "a]b" << "K";
    QTest::newRow("break in section") << "a\rb" << "K";
  }
  void namesThatCannotBeStored() {
    QFETCH(QString, section);
    QFETCH(QString, key);
    IniFile ini = IniFile::FromBytes("[S]\nA=1\n");
    QVERIFY(!ini.setValue(section, key, u"v"));
    QCOMPARE(ini.toBytes(), QByteArray("[S]\nA=1\n"));
  }

  // Any bytes load, and an unmodified document gives back exactly those bytes.
  void anyBytesRoundTrip() {
    QRandomGenerator rng(4711);
    const char alphabet[] = "[]=;#\"' \t\r\nabcAB\x00\xff\xc3";
    for (int round = 0; round < 300; ++round) {
      QByteArray bytes;
      const int n = int(rng.bounded(400));
      for (int i = 0; i < n; ++i)
        bytes.append(round % 2 ? char(rng.bounded(256)) : alphabet[rng.bounded(int(sizeof alphabet - 1))]);
      IniFile ini = IniFile::FromBytes(bytes);
      QCOMPARE(ini.toBytes(), bytes);
      for (const QString& s : ini.sections())
        for (const QString& k : ini.keys(s)) QVERIFY(ini.value(s, k).has_value());
      QVERIFY(ini.setValue(u"a", u"b", u"c"));
      QString got;
      QCOMPARE(ini.getString(u"a", u"b", &got), 1);
      QCOMPARE(got, QStringLiteral("c"));
    }
  }

  void saveKeepsPermissions() {
    QTemporaryDir dir;
    const QString path = dir.filePath("perm.ini");
    QVERIFY(testsupport::MakeFile(path, "[S]\nA=1\n"));
    const auto perms = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup;
    QVERIFY(QFile::setPermissions(path, perms));
    IniFile ini;
    QVERIFY(ini.load(path));
    QVERIFY(ini.setValue(u"S", u"A", u"2"));
    QVERIFY(ini.save(path));
    // (the "user" bits only mirror the owner's for the current user)
    QCOMPARE(QFile::permissions(path) & ~QFileDevice::Permissions(0x0700), perms);
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), QByteArray("[S]\nA=2\n"));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{"perm.ini"});  // no temporary left
  }

  void saveFailuresChangeNothing_data() {
    QTest::addColumn<QString>("kind");
    QTest::newRow("read-only file") << "readonly";
    QTest::newRow("folder cannot be made") << "blocked";
    QTest::newRow("file could not be read") << "unreadable";
  }
  void saveFailuresChangeNothing() {
    QFETCH(QString, kind);
    QTemporaryDir dir;
    QString path = dir.filePath("s.ini");
    const QByteArray original("[S]\nA=1\n");
    QVERIFY(testsupport::MakeFile(path, original));
    IniFile ini;
    if (kind == "readonly") {
      QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
      QVERIFY(ini.load(path));
    } else if (kind == "blocked") {
      path = dir.filePath("s.ini/inner.ini");  // its folder is a file
      QVERIFY(ini.load(path));
    } else {
      path = dir.filePath("big.ini");
      QVERIFY(testsupport::MakeSizedFile(path, IniFile::kMaxFileSize + 1));
      QVERIFY(!ini.load(path));
      QVERIFY(!ini.errorString().isEmpty());
    }
    QVERIFY(ini.setValue(u"S", u"A", u"2"));
    QVERIFY(!ini.save(path));
    QVERIFY(!ini.errorString().isEmpty());
    if (kind == "unreadable") {
      QCOMPARE(QFileInfo(path).size(), IniFile::kMaxFileSize + 1);
    } else {
      QFile f(dir.filePath("s.ini"));
      QVERIFY(f.open(QIODevice::ReadOnly));
      QCOMPARE(f.readAll(), original);
    }
  }

  void absentFileLoadsEmpty() {
    QTemporaryDir dir;
    IniFile ini;
    QVERIFY(ini.load(dir.filePath("none.ini")));
    QCOMPARE(ini.origin(), IniFile::Origin::Absent);
    QVERIFY(ini.save(dir.filePath("none.ini")));  // nothing written, nothing made
    QVERIFY(!QFileInfo::exists(dir.filePath("none.ini")));
    IniFile folder;
    QVERIFY(!folder.load(dir.path()));
  }
};

QTEST_GUILESS_MAIN(IniFileTest)
#include "tst_IniFile.moc"
