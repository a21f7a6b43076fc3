#include <QDateTime>
#include <QTemporaryDir>
#include <QtTest>

#include "find/BuildCriteria.h"
#include "find/DateBox.h"
#include "find/DateQuickFilter.h"
#include "find/DescribeCriteria.h"
#include "find/HexString.h"
#include "find/LookInChoices.h"
#include "find/NamePatterns.h"
#include "find/SizeBounds.h"
#include "platform/FileTime.h"
#include "tests/TestSupport.h"

using core::FindTabValues;

namespace {

qint64 Utc(int y, int mo, int d, int h = 0, int mi = 0, int s = 0) {
  return platform::kUnixEpochTicks +
         QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::UTC).toSecsSinceEpoch() * platform::kTicksPerSecond;
}

}  // namespace

class TestCriteria : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir dir_;

  FindTabValues Values(qint32 watch) {
    FindTabValues v;
    v.watch = watch;
    v.lookIn = dir_.path();
    return v;
  }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
  }

  // "Look in": root, folder shown, volumes, recent; each once, folders with their separator.
  void lookInChoices_data() {
    QTest::addColumn<QString>("current");
    QTest::addColumn<QStringList>("recent");
    QTest::addColumn<QStringList>("items");
    QTest::newRow("plain") << "/home/me/" << QStringList{"/srv/", "/tmp"}
                           << QStringList{"Computer", "/home/me/", "/", "/home/", "/srv/", "/tmp/"};
    QTest::newRow("drives shown") << "" << QStringList{} << QStringList{"Computer", "/", "/home/"};
    QTest::newRow("each once") << "/home" << QStringList{"/home/", "/x/", "/x", "Computer", " "}
                               << QStringList{"Computer", "/home/", "/", "/x/"};
    QTest::newRow("recent capped") << "/a/" << QStringList{"/r1", "/r2", "/r3", "/r4", "/r5", "/r6", "/r7", "/r8", "/r9", "/r10", "/r11"}
                                   << QStringList{"Computer", "/a/", "/", "/home/", "/r1/", "/r2/", "/r3/", "/r4/", "/r5/",
                                                  "/r6/", "/r7/", "/r8/", "/r9/", "/r10/"};
  }
  void lookInChoices() {
    QFETCH(QString, current);
    QFETCH(QStringList, recent);
    QTEST(find::LookInChoices(QStringLiteral("Computer"), current, {"/", "/home/"}, recent), "items");
    QStringList kept{"/b", "/a"};
    find::RememberLocation(&kept, QStringLiteral("/a"), 2);
    find::RememberLocation(&kept, QStringLiteral("/c"), 2);
    QCOMPARE(kept, (QStringList{"/c", "/a"}));
  }

  void split_data() {
    QTest::addColumn<QString>("named");
    QTest::addColumn<QStringList>("segments");
    QTest::newRow("empty") << "" << QStringList{};
    QTest::newRow("one") << "a" << QStringList{"a"};
    QTest::newRow("trailing semicolon") << "a;" << QStringList{"a"};
    QTest::newRow("leading semicolon") << ";a" << QStringList{"", "a"};
    QTest::newRow("double semicolon") << "a;;b" << QStringList{"a", "", "b"};
    QTest::newRow("lone semicolon") << ";" << QStringList{""};
    QTest::newRow("two trailing") << "a;;" << QStringList{"a", ""};
    QTest::newRow("blanks kept") << " a ; b" << QStringList{" a ", " b"};
  }
  void split() {
    QFETCH(QString, named);
    QFETCH(QStringList, segments);
    QCOMPARE(find::SplitNamePatterns(named), segments);
  }

  void normalise_data() {
    QTest::addColumn<QString>("named");
    QTest::addColumn<bool>("exact");
    QTest::addColumn<QStringList>("patterns");
    const QStringList all{"*.*"};
    // Names that stand for every file, with and without Exact match.
    for (const char* n : {"", "*", "**", ".", "...", "*.", ".*", "**.**"})
      for (bool exact : {false, true}) QTest::addRow("'%s'%s", n, exact ? " exact" : "") << n << exact << all;
    QTest::newRow("81 dots exact") << QString(81, u'.') << true << QStringList{QString(81, u'.')};
    QTest::newRow("bare word") << "word" << false << QStringList{"*word*"};
    QTest::newRow("bare word exact") << "word" << true << QStringList{"word"};
    QTest::newRow("question mark") << "?" << false << QStringList{"*?*"};
    QTest::newRow("trailing semicolon") << "a;" << false << QStringList{"*a*"};
    QTest::newRow("leading semicolon") << ";a" << false << all;
    QTest::newRow("double semicolon") << "*.c;;*.h" << true << all;
    QTest::newRow("blank after semicolon") << "*.txt; *.doc" << false << QStringList{"*.txt", " *.doc"};
    QTest::newRow("all first") << "*.*;*.txt" << false << all;
    QTest::newRow("all later replaces list") << "*.txt;x;*.*" << false << all;
    QTest::newRow("two kept in order") << "x;*.TXT" << false << QStringList{"*x*", "*.TXT"};
    QTest::newRow("upper case not collapsed") << "*.*X" << false << QStringList{"*.*X"};
    const QString longWord(10000, u'a');
    QTest::newRow("10000 characters") << longWord << false << QStringList{u'*' + longWord + u'*'};
  }
  void normalise() {
    QFETCH(QString, named);
    QFETCH(bool, exact);
    QFETCH(QStringList, patterns);
    QCOMPARE(find::NormalisePatterns(named, exact), patterns);
  }

  void sizeBound_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("emptyValue");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<qint64>("bound");
    QTest::newRow("empty lower") << "" << 0 << 0 << true << qint64(0);
    QTest::newRow("empty upper") << "  " << 2 << 2147483647 << true << qint64(2147483647);
    QTest::newRow("1 KB") << "1" << 1 << 0 << true << qint64(1024);
    QTest::newRow("2047 MB") << "2047" << 2 << 0 << true << qint64(2146435072);
    QTest::newRow("2048 MB overflows") << "2048" << 2 << 0 << false << qint64(0);
    QTest::newRow("largest") << "2147483647" << 0 << 0 << true << qint64(2147483647);
    QTest::newRow("one more overflows") << "2147483648" << 0 << 0 << false << qint64(0);
    QTest::newRow("smallest") << "-2147483648" << 0 << 0 << true << qint64(-2147483648LL);
    QTest::newRow("below smallest") << "-2147483649" << 0 << 0 << false << qint64(0);
    QTest::newRow("letters") << "abc" << 0 << 2147483647 << true << qint64(0);
    QTest::newRow("negative") << "-5" << 0 << 0 << true << qint64(-5);
    QTest::newRow("leading number") << "12abc" << 0 << 0 << true << qint64(12);
    QTest::newRow("fraction KB") << "1.5" << 1 << 0 << true << qint64(1536);
    QTest::newRow("half to even down") << "2.5" << 0 << 0 << true << qint64(2);
    QTest::newRow("half to even up") << "3.5" << 0 << 0 << true << qint64(4);
    QTest::newRow("exponent") << "1e3" << 0 << 0 << true << qint64(1000);
    QTest::newRow("huge exponent") << "1e999" << 0 << 0 << false << qint64(0);
    QTest::newRow("blanks around") << "  7 " << 0 << 0 << true << qint64(7);
  }
  void sizeBound() {
    QFETCH(QString, text);
    QFETCH(int, unit);
    QFETCH(int, emptyValue);
    QFETCH(bool, ok);
    QFETCH(qint64, bound);
    const auto v = find::SizeBound(text, unit, emptyValue);
    QCOMPARE(v.has_value(), ok);
    if (ok) QCOMPARE(qint64(*v), bound);
  }

  void dateBox_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<qint64>("fileTime");
    QTest::newRow("short date") << "1/2/2024" << true << Utc(2024, 1, 2);
    QTest::newRow("two-digit year, this century") << "1/2/24" << true << Utc(2024, 1, 2);
    QTest::newRow("two-digit year, last century") << "1/2/95" << true << Utc(1995, 1, 2);
    QTest::newRow("with seconds") << "1/2/2024 10:00:05 AM" << true << Utc(2024, 1, 2, 10, 0, 5);
    QTest::newRow("short time PM") << "1/2/2024 1:30 PM" << true << Utc(2024, 1, 2, 13, 30);
    QTest::newRow("as the box shows it") << "11/5/2023 5:04:09 PM" << true << Utc(2023, 11, 5, 17, 4, 9);
    QTest::newRow("24-hour") << "1/2/2024 13:30:07" << true << Utc(2024, 1, 2, 13, 30, 7);
    QTest::newRow("iso") << "2024-01-02 08:09" << true << Utc(2024, 1, 2, 8, 9);
    QTest::newRow("extra blanks") << "  1/2/2024   10:00:05 AM " << true << Utc(2024, 1, 2, 10, 0, 5);
    QTest::newRow("31 February") << "2/31/2024" << false << qint64(0);
    QTest::newRow("29 February leap") << "2/29/2024" << true << Utc(2024, 2, 29);
    QTest::newRow("29 February plain year") << "2/29/2023" << false << qint64(0);
    QTest::newRow("letters") << "abc" << false << qint64(0);
    QTest::newRow("empty") << "" << false << qint64(0);
    QTest::newRow("bad hour") << "1/2/2024 25:00" << false << qint64(0);
  }
  void dateBox() {
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(qint64, fileTime);
    qint64 t = -1;
    QCOMPARE(find::ParseDateBox(text, &t), ok);
    if (ok) QCOMPARE(t, fileTime);
  }

  void hex_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("message");
    QTest::newRow("pairs") << "4D5A" << true << QByteArray("MZ") << "";
    QTest::newRow("either case") << "4d5a ff" << true << QByteArray("MZ\xff") << "";
    QTest::newRow("blanks and line breaks") << " 4D 5A\r\n90\r\n 00 " << true << QByteArray("MZ\x90\x00", 4) << "";
    QTest::newRow("empty") << "" << true << QByteArray() << "";
    QTest::newRow("odd") << "4D5" << false << QByteArray() << find::kHexOddMessage;
    QTest::newRow("odd after blanks") << "4 D 5" << false << QByteArray() << find::kHexOddMessage;
    QTest::newRow("invalid") << "4G" << false << QByteArray() << find::kHexInvalidMessage;
    QTest::newRow("tab is no blank") << "4D\t5A0" << false << QByteArray() << find::kHexInvalidMessage;
    QTest::newRow("sign") << "-1" << false << QByteArray() << find::kHexInvalidMessage;
  }
  void hex() {
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, message);
    QByteArray out("untouched");
    QString why;
    QCOMPARE(find::ParseHexString(text, &out, &why), ok);
    QCOMPARE(out, ok ? bytes : QByteArray("untouched"));
    QCOMPARE(why, message);
  }

  void refusals_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("icon");
    QTest::newRow("look in") << 0 << "Couldn't find \"/no/such/folder\"\n\nRecheck the Look In combo..."
                             << int(find::CriteriaMessage::kInformation);
    QTest::newRow("size") << 1 << find::kSizeMessage << int(find::CriteriaMessage::kCritical);
    QTest::newRow("date") << 2 << find::kDateMessage << int(find::CriteriaMessage::kCritical);
    QTest::newRow("hex odd") << 3 << find::kHexOddMessage << int(find::CriteriaMessage::kCritical);
    QTest::newRow("hex invalid") << 4 << find::kHexInvalidMessage << int(find::CriteriaMessage::kCritical);
  }
  void refusals() {
    QFETCH(int, kind);
    QFETCH(QString, message);
    QFETCH(int, icon);
    FindTabValues v = Values(FindTabValues::kWatchName | FindTabValues::kWatchSize | FindTabValues::kWatchDate |
                             FindTabValues::kWatchText);
    v.dateFrom = v.dateTo = QStringLiteral("1/1/2024");
    v.containedText = QStringLiteral("41");
    v.isHex = true;
    switch (kind) {
      case 0: v.lookIn = QStringLiteral("/no/such/folder"); break;
      case 1: v.sizeMax = QStringLiteral("2048"), v.sizeUnit = find::kUnitMB; break;
      case 2: v.dateTo = QStringLiteral("2/31/2024"); break;
      case 3: v.containedText = QStringLiteral("414"); break;
      case 4: v.containedText = QStringLiteral("4x"); break;
    }
    find::FindCriteria c;
    c.patterns = QStringList{QStringLiteral("before")};
    find::CriteriaMessage m;
    QVERIFY(!find::BuildCriteria(v, {v.lookIn}, {}, &c, &m));
    QCOMPARE(m.text, message);
    QCOMPARE(int(m.icon), icon);
    QCOMPARE(c.patterns, QStringList{QStringLiteral("before")});  // nothing changed
  }

  // Groups whose toggle is off are neither checked nor applied.
  void inactiveGroupsAreNotChecked() {
    FindTabValues v = Values(FindTabValues::kWatchName | FindTabValues::kWatchExclude);
    v.sizeMax = QStringLiteral("9999");
    v.sizeUnit = find::kUnitMB;
    v.dateFrom = QStringLiteral("nonsense");
    v.containedText = QStringLiteral("zz");
    v.isHex = true;
    find::FindCriteria c;
    find::CriteriaMessage m;
    QVERIFY(find::BuildCriteria(v, {v.lookIn}, {}, &c, &m));
    QVERIFY(!c.sizeOn && !c.dateOn && !c.textOn && !c.attrOn);
    QVERIFY(!c.excludeOn);  // on, but with no entries
    // A tree root stands for its folders.
    const find::LookInRoot root{QStringLiteral("Computer"), {QStringLiteral("/a"), QStringLiteral("/b/")}};
    QVERIFY(find::BuildCriteria(v, {QStringLiteral("Computer"), dir_.path()}, root, &c, &m));
    QCOMPARE(c.locations, (QStringList{"/a/", "/b/", dir_.path() + u'/'}));
  }

  void bounds() {
    FindTabValues v = Values(FindTabValues::kWatchSize | FindTabValues::kWatchDate | FindTabValues::kWatchAttributes |
                             FindTabValues::kWatchExclude | FindTabValues::kWatchText);
    v.sizeMin = QStringLiteral("1");
    v.sizeUnit = find::kUnitKB;
    v.dateFrom = QStringLiteral("1/2/2024 10:00:00 AM");
    v.dateTo = QStringLiteral("1/2/2024 10:00:05 AM");
    v.rangeNot = true;
    v.dateKind = find::kDateCreatedOrModified;
    v.attrMust = 2 | 4;
    v.attrMustNot = 1;
    v.excludes = QStringList{QStringLiteral("/TMP/")};
    v.containedText = QStringLiteral("müller");
    find::FindCriteria c;
    find::CriteriaMessage m;
    QVERIFY(find::BuildCriteria(v, {v.lookIn}, {}, &c, &m));
    QCOMPARE(c.patterns, QStringList{QStringLiteral("*.*")});  // Name toggle off
    QCOMPARE(c.sizeMin, 1024);
    QCOMPARE(c.sizeMax, 2147483647);
    QCOMPARE(c.dateFrom, Utc(2024, 1, 2, 10, 0, 0));
    QCOMPARE(c.dateTo, Utc(2024, 1, 2, 10, 0, 5) + 9'990'000);
    QVERIFY(c.dateNot);
    QCOMPARE(c.dateKind, 3);
    QCOMPARE(c.attrMust, 6u);
    QCOMPARE(c.attrMustNot, 1u);
    QVERIFY(c.excludeOn);
    QCOMPARE(c.locations, QStringList{dir_.path() + u'/'});
    QCOMPARE(c.text, QStringLiteral("müller").toUtf8());
    QVERIFY(!c.caseSensitive);

    v.dateFrom = QStringLiteral("1/1/2024");  // a bare date ends at midnight
    v.dateTo = QStringLiteral("1/2/2024");
    v.containedText = QStringLiteral("4D 5A");
    v.isHex = true;
    v.caseSensitive = true;
    QVERIFY(find::BuildCriteria(v, {v.lookIn}, {}, &c, &m));
    QCOMPARE(c.dateTo, Utc(2024, 1, 2) + 9'990'000);
    QCOMPARE(c.text, QByteArray("MZ"));
    QVERIFY(c.caseSensitive && c.isHex);

    v.dateFrom = QStringLiteral("(unknown)");  // skips the check of both
    v.dateTo = QStringLiteral("garbage");
    QVERIFY(find::BuildCriteria(v, {v.lookIn}, {}, &c, &m));
    QCOMPARE(c.dateFrom, 0);
    QCOMPARE(c.dateTo, 0);
  }

  void describe() {
    FindTabValues v = Values(FindTabValues::kWatchName | FindTabValues::kWatchSize | FindTabValues::kWatchDate |
                             FindTabValues::kWatchAttributes | FindTabValues::kWatchText);
    v.named = QStringLiteral("*.txt");
    v.sizeMin = QStringLiteral("1");
    v.sizeUnit = find::kUnitKB;
    v.dateKind = find::kDateCreatedOrModified;
    v.dateFrom = QStringLiteral("1/1/2024");
    v.dateTo = QStringLiteral("1/2/2024");
    v.rangeNot = true;
    v.attrMust = 2;
    v.attrMustNot = 1;
    v.containedText = QString(61, u'x');
    v.excludes = QStringList{QStringLiteral("tmp")};
    QCOMPARE(find::DescribeCriteria(v, {QStringLiteral("/home")}, QStringLiteral("Total: 3 bytes")),
             QStringLiteral("Location(s)\r\n /home\r\nInclude subfolders: True\r\nFilters\r\n Named: *.txt\r\n"
                            " Size: at least 1, at most (no limit) KB\r\n"
                            " Date: created or modified between 1/1/2024 and 1/2/2024 NOT\r\n"
                            " Attributes: Not Read-only, Hidden\r\n Containing Text: ") +
                 QString(60, u'x') +
                 QStringLiteral(" [...]\r\n Exclude Folders: [ignored]\r\nResults: Total: 3 bytes\r\n"));
  }

  void relativeRanges_data() {
    QTest::addColumn<int>("item");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<bool>("rangeNot");
    const QDateTime now(QDate(2024, 3, 31), QTime(12, 30, 15));
    QTest::newRow("5 minutes") << 0 << now << now.addSecs(-300) << false;
    QTest::newRow("15 minutes") << 1 << now << now.addSecs(-900) << false;
    QTest::newRow("hour") << 2 << now << now.addSecs(-3600) << false;
    QTest::newRow("day") << 3 << now << now.addDays(-1) << false;
    QTest::newRow("week") << 4 << now << now.addDays(-7) << false;
    // 31 February runs over into March as date arithmetic does.
    QTest::newRow("month from the 31st") << 5 << now << QDateTime(QDate(2024, 3, 2), QTime(12, 30, 15)) << false;
    QTest::newRow("month in January")
        << 5 << QDateTime(QDate(2024, 1, 15), QTime(8, 0)) << QDateTime(QDate(2023, 12, 15), QTime(8, 0)) << false;
    QTest::newRow("year from 29 February")
        << 6 << QDateTime(QDate(2024, 2, 29), QTime(9, 0)) << QDateTime(QDate(2023, 3, 1), QTime(9, 0)) << false;
    QTest::newRow("more than a year ago") << 7 << now << QDateTime(QDate(2023, 3, 31), QTime(12, 30, 15)) << true;
  }
  void relativeRanges() {
    QFETCH(int, item);
    QFETCH(QDateTime, now);
    QFETCH(QDateTime, start);
    QFETCH(bool, rangeNot);
    const find::DateFill fill = find::RelativeRange(item, now);
    QCOMPARE(fill.from, find::DateBoxText(start));
    QCOMPARE(fill.to, find::DateBoxText(now));
    QCOMPARE(fill.rangeNot, rangeNot);
  }

  void otherQuickFilters() {
    const QDateTime now(QDate(2024, 5, 16), QTime(14, 0, 1));  // a Thursday
    QCOMPARE(find::PeriodRange(find::kToday, now).from, QStringLiteral("5/16/2024 12:00:00 AM"));
    QCOMPARE(find::PeriodRange(find::kThisWeek, now).from, QStringLiteral("5/12/2024 12:00:00 AM"));  // Sunday
    QCOMPARE(find::PeriodRange(find::kThisMonth, now).from, QStringLiteral("5/1/2024 12:00:00 AM"));
    QCOMPARE(find::PeriodRange(find::kThisYear, now).to, QStringLiteral("5/16/2024 2:00:01 PM"));
    const find::DateFill similar = find::SimilarRange(now);
    QCOMPARE(similar.from, QStringLiteral("5/16/2024 1:50:01 PM"));
    QCOMPARE(similar.to, QStringLiteral("5/16/2024 2:10:01 PM"));
    QCOMPARE(find::SimilarCaption(QStringLiteral("x")), QStringLiteral("Similar to 'x' (+- 10 minutes)"));
    QCOMPARE(find::LikeCaption(QStringLiteral("x")), QStringLiteral("Like 'x'"));
    QCOMPARE(find::UnknownRange().from, QStringLiteral("(unknown)"));
  }
};

QTEST_GUILESS_MAIN(TestCriteria)
#include "TestCriteria.moc"
