#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/JobFlags.h"
#include "find/FileContains.h"
#include "platform/FileTime.h"
#include "tests/TestSupport.h"

namespace {

// `size` bytes of filler with `needle` written at `at`.
QByteArray Filler(qsizetype size, const QByteArray& needle = {}, qsizetype at = 0) {
  QByteArray data(size, '.');
  for (qsizetype i = 0; i < size; i += 61) data[i] = '\n';
  if (!needle.isEmpty()) data.replace(at, needle.size(), needle);
  return data;
}

find::TextSearch Search(const QByteArray& text, bool caseSensitive) {
  find::TextSearch s;
  s.SetTextCompare(caseSensitive);
  s.SetText(text);
  return s;
}

}  // namespace

class TestFileContains : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir dir_;
  int serial_ = 0;

  QString Write(const QByteArray& content) {
    const QString path = dir_.filePath(QStringLiteral("f%1.bin").arg(++serial_));
    if (!testsupport::MakeFile(path, content)) qFatal("cannot write fixture");
    return path;
  }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
  }
  void init() { core::JobFlags::ClearAbort(); }

  // Plain letters, case and position are left to the random comparison below.
  void inMemory_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("haystack");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<bool>("found");
    QTest::newRow("umlaut upper") << QStringLiteral("müller").toUtf8() << QStringLiteral("HERR MÜLLER").toUtf8() << false
                                  << true;
    QTest::newRow("umlaut lower") << QStringLiteral("MÜLLER").toUtf8() << QStringLiteral("herr müller").toUtf8() << false
                                  << true;
    QTest::newRow("umlaut, case-sensitive") << QStringLiteral("müller").toUtf8() << QStringLiteral("MÜLLER").toUtf8()
                                            << true << false;
    QTest::newRow("sharp s, capital form") << QStringLiteral("straße").toUtf8() << QStringLiteral("STRAẞE").toUtf8()
                                           << false << true;
    QTest::newRow("greek") << QStringLiteral("σοφία").toUtf8() << QStringLiteral("ΣΟΦΊΑ").toUtf8() << false << true;
    QTest::newRow("cyrillic, mixed") << QStringLiteral("Привет").toUtf8() << QStringLiteral("xxПРИВЕТxx").toUtf8()
                                     << false << true;
    QTest::newRow("umlaut is not u") << QStringLiteral("müller").toUtf8() << QByteArray("MULLER") << false << false;
    QTest::newRow("binary bytes") << QByteArray("\x00\xff\x10", 3) << QByteArray("ab\x00\xff\x10z", 6) << true << true;
    QTest::newRow("binary bytes folded") << QByteArray("\xc3\x41", 2) << QByteArray("x\xc3\x61", 3) << false << true;
    QTest::newRow("digits only, folded") << QByteArray("2024") << QByteArray("x2024") << false << true;
    // Many false starts: the search must stay correct (and not quadratic).
    QTest::newRow("repetitive exact") << QByteArray(300, 'a') + 'b' << QByteArray(5000, 'a') + 'b' << true << true;
    QTest::newRow("repetitive folded") << QByteArray(300, 'a') + 'b' << QByteArray(5000, 'A') + 'B' << false << true;
    QTest::newRow("repetitive absent") << QByteArray(300, 'a') + 'b' << QByteArray(5000, 'a') << false << false;
  }
  void inMemory() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, haystack);
    QFETCH(bool, caseSensitive);
    QTEST(Search(text, caseSensitive).foundIn(haystack.constData(), haystack.size()), "found");
  }

  // Random texts over a small alphabet, against a plain folded search.
  void foldedAgainstPlainSearch() {
    QRandomGenerator rng(1601);
    const char alphabet[] = "aAbB.\xc3";
    for (int round = 0; round < 3000; ++round) {
      QByteArray hay, needle;
      const int n = rng.bounded(1, 200), m = rng.bounded(1, 6);
      for (int i = 0; i < n; ++i) hay.append(alphabet[rng.bounded(6)]);
      for (int i = 0; i < m; ++i) needle.append(alphabet[rng.bounded(6)]);
      const bool expected = hay.toLower().contains(needle.toLower());
      QCOMPARE(Search(needle, false).foundIn(hay.constData(), hay.size()), expected);
      QCOMPARE(Search(needle, true).foundIn(hay.constData(), hay.size()), hay.contains(needle));
    }
  }

  void files_data() {
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QByteArray>("needle");
    QTest::addColumn<qint64>("at");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("caseSensitive");
    QTest::addColumn<bool>("found");
    const QByteArray n("NEEDLE");
    QTest::newRow("across the first boundary") << qint64(100000) << n << qint64(32765) << n << true << true;
    // Blocks step by 32768 - 5 for a 6-byte text: the second ends at 65531.
    QTest::newRow("across the second boundary") << qint64(100000) << n << qint64(65528) << n << true << true;
    QTest::newRow("at the very end") << qint64(100000) << n << qint64(100000 - 6) << n << true << true;
    QTest::newRow("32768 bytes, text at end") << qint64(32768) << n << qint64(32768 - 6) << n << true << true;
    QTest::newRow("32769 bytes, text at end") << qint64(32769) << n << qint64(32769 - 6) << n << true << true;
    QTest::newRow("32769 bytes, text at start") << qint64(32769) << n << qint64(0) << n << true << true;
    QTest::newRow("absent") << qint64(100000) << QByteArray() << qint64(0) << n << true << false;
    QTest::newRow("case off") << qint64(70000) << n << qint64(40000) << QByteArray("needle") << false << true;
    QTest::newRow("case on") << qint64(70000) << n << qint64(40000) << QByteArray("needle") << true << false;
    QTest::newRow("hex bytes") << qint64(50000) << QByteArray("\x00\x01\xfe\xff", 4) << qint64(32766)
                               << QByteArray("\x00\x01\xfe\xff", 4) << true << true;
    // The capital sharp s takes three bytes for the text's two.
    QTest::newRow("longer variant across a boundary") << qint64(70000) << QStringLiteral("ẞ").toUtf8() << qint64(32766)
                                                       << QStringLiteral("ß").toUtf8() << false << true;
    QTest::newRow("utf-8 folding in the tail") << qint64(40000) << QStringLiteral("MÜLLER").toUtf8()
                                               << qint64(40000 - 8) << QStringLiteral("müller").toUtf8() << false << true;
    QTest::newRow("empty file") << qint64(0) << QByteArray() << qint64(0) << n << true << false;
    QTest::newRow("empty text, non-empty file") << qint64(10) << QByteArray() << qint64(0) << QByteArray() << true
                                                << true;
  }
  void files() {
    QFETCH(qint64, size);
    QFETCH(QByteArray, needle);
    QFETCH(qint64, at);
    QFETCH(QByteArray, text);
    QFETCH(bool, caseSensitive);
    QFETCH(bool, found);
    const QString path = Write(Filler(size, needle, at));
    QCOMPARE(QFileInfo(path).size(), size);
    QCOMPARE(find::FileContains(Search(text, caseSensitive), path), found);
    // The same file already open, its length unknown: read to its end.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    QVERIFY(fd >= 0);
    find::EntryInFolder open;
    open.fd = fd;
    open.regular = true;
    QCOMPARE(find::FileContains(Search(text, caseSensitive), QString(), {}, open), found);
    ::close(fd);
  }

  void tooLongText() {
    const QByteArray text = Filler(32769, "X", 100);
    const QString path = Write(text + text);
    QVERIFY(!find::FileContains(Search(text, true), path));
    const QByteArray fits = text.left(32768);
    QVERIFY(find::FileContains(Search(fits, true), path));
  }

  void nothingToRead() {
    const find::TextSearch s = Search("x", true);
    QVERIFY(!find::FileContains(s, dir_.filePath(QStringLiteral("missing"))));
    QVERIFY(!find::FileContains(s, dir_.path()));  // a folder holds no text
  }

  void abortBetweenBlocks() {
    const QString path = Write(Filler(1'000'000, "NEEDLE", 1'000'000 - 6));
    int yields = 0;
    const find::YieldHook yield = [&yields] {
      if (++yields == 3) core::JobFlags::RequestAbort();
    };
    QVERIFY(!find::FileContains(Search("NEEDLE", true), path, yield));
    QCOMPARE(yields, 3);  // stopped before the third block
    core::JobFlags::ClearAbort();
    QVERIFY(find::FileContains(Search("NEEDLE", true), path, yield));
  }

  void timeStampsKept_data() {
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<qint64>("size");
    QTest::newRow("small") << false << qint64(1000);
    QTest::newRow("blocks") << false << qint64(100000);
    QTest::newRow("read-only") << true << qint64(1000);
  }
  void timeStampsKept() {
    QFETCH(bool, readOnly);
    QFETCH(qint64, size);
    const QString path = Write(Filler(size, "zz", size - 2));
    // Access older than the last write: a plain read would move it.
    QVERIFY(testsupport::SetTimes(path, QDateTime(QDate(2001, 1, 1), QTime(1, 2, 3), Qt::UTC),
                                  QDateTime(QDate(2002, 2, 2), QTime(4, 5, 6), Qt::UTC)));
    if (readOnly) QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    struct stat before {};
    QCOMPARE(stat(QFile::encodeName(path).constData(), &before), 0);
    QVERIFY(find::FileContains(Search("ZZ", false), path));
    struct stat after {};
    QCOMPARE(stat(QFile::encodeName(path).constData(), &after), 0);
    QCOMPARE(after.st_atim.tv_sec, before.st_atim.tv_sec);
    QCOMPARE(after.st_atim.tv_nsec, before.st_atim.tv_nsec);
    QCOMPARE(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    QCOMPARE(after.st_mode, before.st_mode);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
  }
};

QTEST_GUILESS_MAIN(TestFileContains)
#include "TestFileContains.moc"
