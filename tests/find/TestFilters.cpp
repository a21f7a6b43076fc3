#include <QtTest>

#include "find/FindFilters.h"
#include "platform/FileTime.h"
#include "tests/TestSupport.h"

using platform::DirEntry;

namespace {

constexpr qint64 kSecond = platform::kTicksPerSecond;
const qint64 kT0 = platform::kUnixEpochTicks + 1'700'000'000LL * kSecond;  // some day, 10:00:00 say

DirEntry Entry(quint64 size, quint32 attributes, qint64 created = 0, qint64 written = 0, qint64 accessed = 0) {
  DirEntry e;
  e.name = QStringLiteral("x");
  e.size = size;
  e.attributes = attributes;
  e.creationTime = created;
  e.lastWriteTime = written;
  e.lastAccessTime = accessed;
  return e;
}

}  // namespace

class TestFilters : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void size_data() {
    QTest::addColumn<int>("sizeMin");
    QTest::addColumn<int>("sizeMax");
    QTest::addColumn<quint64>("size");
    QTest::addColumn<bool>("passes");
    QTest::newRow("at least 1 KB, below") << 1024 << 2147483647 << quint64(1023) << false;
    QTest::newRow("at least 1 KB, equal") << 1024 << 2147483647 << quint64(1024) << true;
    QTest::newRow("exactly the maximum") << 0 << 100 << quint64(100) << true;
    QTest::newRow("one byte more") << 0 << 100 << quint64(101) << false;
    QTest::newRow("2 GB wraps negative") << 0 << 2147483647 << quint64(2147483648ULL) << false;
    QTest::newRow("4 GB + 5 wraps to 5") << 0 << 10 << quint64(4294967301ULL) << true;
    QTest::newRow("negative lower bound") << -5 << 0 << quint64(0) << true;
  }
  void size() {
    QFETCH(int, sizeMin);
    QFETCH(int, sizeMax);
    QFETCH(quint64, size);
    QFETCH(bool, passes);
    find::FindCriteria c;
    c.sizeOn = true;
    c.sizeMin = sizeMin;
    c.sizeMax = sizeMax;
    QCOMPARE(find::PassesFilters(c, Entry(size, 32), QString()), passes);
    QCOMPARE(c.nameHits, 1);
  }

  void attributes_data() {
    QTest::addColumn<quint32>("must");
    QTest::addColumn<quint32>("mustNot");
    QTest::addColumn<quint32>("attributes");
    QTest::addColumn<bool>("passes");
    QTest::newRow("hidden+system, only hidden") << 6u << 0u << 2u << false;
    QTest::newRow("hidden+system, both") << 6u << 0u << (6u | 32u) << true;
    QTest::newRow("both, must-not read-only it has") << 6u << 1u << 7u << false;
    QTest::newRow("must-not only, clear") << 0u << 16u << 32u << true;
    QTest::newRow("must-not only, set") << 0u << 16u << 16u << false;
    QTest::newRow("nothing checked") << 0u << 0u << 0xffffu << true;
    QTest::newRow("compressed") << 2048u << 0u << (2048u | 32u) << true;
  }
  void attributes() {
    QFETCH(quint32, must);
    QFETCH(quint32, mustNot);
    QFETCH(quint32, attributes);
    QFETCH(bool, passes);
    find::FindCriteria c;
    c.attrOn = true;
    c.attrMust = must;
    c.attrMustNot = mustNot;
    QCOMPARE(find::PassesFilters(c, Entry(0, attributes), QString()), passes);
  }

  void dates_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("rangeNot");
    QTest::addColumn<qint64>("created");
    QTest::addColumn<qint64>("written");
    QTest::addColumn<qint64>("accessed");
    QTest::addColumn<bool>("passes");
    const qint64 in = kT0 + 2 * kSecond, out = kT0 + 60 * kSecond;
    // The range is kT0 .. kT0 + 5 s (+ 999 ms).
    QTest::newRow("modified at 5.5 s") << 1 << false << out << kT0 + 5 * kSecond + kSecond / 2 << out << true;
    QTest::newRow("modified at 6 s") << 1 << false << in << kT0 + 6 * kSecond << in << false;
    QTest::newRow("modified at start") << 1 << false << out << kT0 << out << true;
    QTest::newRow("modified before start") << 1 << false << out << kT0 - 1 << out << false;
    QTest::newRow("modified, not, inside") << 1 << true << out << in << out << false;
    QTest::newRow("modified, not, outside") << 1 << true << in << out << in << true;
    QTest::newRow("created inside") << 0 << false << in << out << out << true;
    QTest::newRow("created unknown") << 0 << false << qint64(0) << in << in << false;
    QTest::newRow("accessed inside") << 2 << false << out << out << in << true;
    QTest::newRow("accessed, not") << 2 << true << out << out << in << false;
    QTest::newRow("kind 3, created in") << 3 << false << in << out << out << true;
    QTest::newRow("kind 3, written in") << 3 << false << out << in << out << true;
    QTest::newRow("kind 3, neither") << 3 << false << out << out << in << false;
    QTest::newRow("kind 3 not, created in") << 3 << true << in << out << out << false;
    QTest::newRow("kind 3 not, written in") << 3 << true << out << in << out << false;
    QTest::newRow("kind 3 not, neither") << 3 << true << out << out << in << true;
  }
  void dates() {
    QFETCH(int, kind);
    QFETCH(bool, rangeNot);
    QFETCH(qint64, created);
    QFETCH(qint64, written);
    QFETCH(qint64, accessed);
    QFETCH(bool, passes);
    find::FindCriteria c;
    c.dateOn = true;
    c.dateKind = kind;
    c.dateNot = rangeNot;
    c.dateFrom = kT0;
    c.dateTo = kT0 + 5 * kSecond + 9'990'000;
    QCOMPARE(find::PassesFilters(c, Entry(0, 32, created, written, accessed), QString()), passes);
  }

  // Cheap groups first: a failed size test never reaches the contained text.
  void groupOrder() {
    find::FindCriteria c;
    c.sizeOn = true;
    c.sizeMax = 0;
    c.textOn = true;
    c.search.SetText("x");
    QVERIFY(!find::PassesFilters(c, Entry(5, 32), QStringLiteral("/no/such/file")));
    c.sizeMax = 10;
    QVERIFY(!find::PassesFilters(c, Entry(5, 32), QStringLiteral("/no/such/file")));  // unreadable: no match
    QCOMPARE(c.nameHits, 2);
  }

  void folderAccepted_data() {
    QTest::addColumn<QStringList>("excludes");
    QTest::addColumn<bool>("excludeOn");
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("off") << QStringList{"tmp"} << false << "/home/tmp/" << true;
    QTest::newRow("capitals match any case") << QStringList{"TMP"} << true << "/home/Tmp/" << false;
    QTest::newRow("bare name matches inside words") << QStringList{"tmp"} << true << "/home/tmpfiles/" << false;
    QTest::newRow("slashes: exact folder") << QStringList{"/tmp/"} << true << "/home/tmpfiles/" << true;
    QTest::newRow("slashes: subtree") << QStringList{"/tmp/"} << true << "/home/tmp/a/b/" << false;
    QTest::newRow("second entry") << QStringList{"x", "/b/"} << true << "/a/b/" << false;
    QTest::newRow("no entry matches") << QStringList{"x", "y"} << true << "/a/b/" << true;
  }
  void folderAccepted() {
    QFETCH(QStringList, excludes);
    QFETCH(bool, excludeOn);
    QFETCH(QString, path);
    QFETCH(bool, accepted);
    find::FindCriteria c;
    c.excludes = excludes;
    c.excludeOn = excludeOn;
    QCOMPARE(find::FolderAccepted(c, path), accepted);
    QCOMPARE(c.foldersScanned, accepted ? 1 : 0);  // rejected folders are not counted
  }
};

QTEST_GUILESS_MAIN(TestFilters)
#include "TestFilters.moc"
