#include <QRegularExpression>
#include <QTest>
#include <ctime>
#include <thread>

#include "core/AgeText.h"
#include "core/AppendText.h"
#include "core/AttributeText.h"
#include "core/DateStyles.h"
#include "core/DriveText.h"
#include "core/NumberFormat.h"
#include "core/RowEscape.h"
#include "core/SizeFormat.h"
#include "platform/FileTime.h"
#include "platform/Volumes.h"
#include "tests/TestSupport.h"

using namespace core;

// 2024-03-05 14:07:09 UTC (the tests run with TZ=UTC).
static const qint64 kSampleTime = platform::FileTimeFromUnix(1709647629, 0);

class FormatsTest : public QObject {
  Q_OBJECT
 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void attributeString_data() {
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0u << "--------";
    QTest::newRow("read-only compressed") << 2049u << "R------C";
    QTest::newRow("read-only archived folder") << 49u << "R--DA---";
    QTest::newRow("bits outside the table") << (64u | 512u | 4096u) << "--------";
    QTest::newRow("all") << 0xFFFFFFFFu << "RHSDANTC";
  }
  void attributeString() {
    QFETCH(quint32, bits);
    QTEST(AttributeString(bits), "text");
  }

  // Option -1: the flexible size with the byte count; -2: clusters of unknown size.
  void formatSize_data() {
    QTest::addColumn<double>("bytes");
    QTest::addColumn<int>("option");
    QTest::addColumn<QString>("text");
    QTest::newRow("raw") << 1234567.0 << 0 << "1234567";
    QTest::newRow("raw 5 GB") << 5368709120.0 << 0 << "5368709120";
    QTest::newRow("bytes") << 1234567.0 << 1 << "1,234,567";
    QTest::newRow("KB rounded 0") << 0.0 << 2 << "0";
    QTest::newRow("KB rounded 1") << 1.0 << 2 << "1";
    QTest::newRow("KB rounded 1024") << 1024.0 << 2 << "1";
    QTest::newRow("KB rounded 1025") << 1025.0 << 2 << "2";
    QTest::newRow("KB rounded, half to even 0") << 0.5 << 2 << "0";
    QTest::newRow("KB rounded, half to even 2") << 1.5 << 2 << "1";
    QTest::newRow("KB rounded, 1024.5 to even") << 1024.5 << 2 << "1";
    QTest::newRow("KB rounded, 1025.5 to even") << 1025.5 << 2 << "2";
    QTest::newRow("KB rounded big") << 2147483647.0 << 2 << "2,097,152";
    QTest::newRow("KB rounded overflow") << 2147483648.0 << 2 << kOverflowText;
    QTest::newRow("KB rounded, 2^31 - 0.5 overflows") << 2147483647.5 << 2 << kOverflowText;
    QTest::newRow("KB") << 1536.0 << 3 << "1.50";
    QTest::newRow("MB") << 1048576.0 << 4 << "1.00";
    QTest::newRow("GB") << 536870912.0 << 5 << "0.50";
    QTest::newRow("flexible zero") << 0.0 << 6 << "0 bytes";
    QTest::newRow("flexible 1023") << 1023.0 << 6 << "1,023 bytes";
    QTest::newRow("flexible") << 2048.0 << 6 << "2.00KB";
    QTest::newRow("flexible 1.5 MB") << 1572864.0 << 6 << "1.50MB";
    QTest::newRow("flexible rounded 1024") << 1024.0 << 7 << "1KB";
    QTest::newRow("flexible rounded") << 2049.0 << 7 << "3KB";
    QTest::newRow("flexible rounded 1048575") << 1048575.0 << 7 << "1,024KB";
    QTest::newRow("flexible rounded 1 MB") << 1048576.0 << 7 << "1.00MB";
    QTest::newRow("flexible rounded 3 GB") << 3221225472.0 << 7 << "3.00GB";
    QTest::newRow("500 with bytes") << 500.0 << -1 << "500 bytes";
    QTest::newRow("4096 with bytes") << 4096.0 << -1 << "4.00KB (4,096 bytes)";
    QTest::newRow("clusters 0") << 0.0 << 8 << "0";
    QTest::newRow("clusters 4096") << 4096.0 << 8 << "1";
    QTest::newRow("clusters 4097") << 4097.0 << 8 << "2";
    QTest::newRow("clusters overflow") << 3e9 << 8 << kOverflowText;
    QTest::newRow("clusters of unknown size") << 10.0 << -2 << kDivisionByZeroText;
    QTest::newRow("option 9") << 1234.0 << 9 << "1,234";
    QTest::newRow("option 10") << 1234.0 << 10 << "1,234.00";
  }
  void formatSize() {
    QFETCH(double, bytes);
    QFETCH(int, option);
    const bool unknownCluster = option == -2;
    QTEST(option == -1 ? FlexibleSize(bytes, false, true)
                       : FormatSize(bytes, unknownCluster ? 8 : option, unknownCluster ? 0 : 4096),
          "text");
    if (option != kSizeRaw) return;
    // Rows append the raw size in place; a string shared with another stays as it was.
    QFETCH(QString, text);
    QString row = QStringLiteral("x\t");
    const QString shared = row;
    AppendNumber(&row, qint64(bytes));
    QCOMPARE(row, "x\t" + text);
    QCOMPARE(shared, QStringLiteral("x\t"));
  }

  void numbers_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("#,0") << "#,0" << 1234567.0 << "1,234,567";
    QTest::newRow("#,0 half even") << "#,0" << 2.5 << "2";
    QTest::newRow("0") << "0" << 1234.0 << "1234";
    QTest::newRow("00") << "00" << 7.0 << "07";
    QTest::newRow("0000") << "0000" << 42.0 << "0042";
    QTest::newRow("0.000") << "0.000" << 1.5 << "1.500";
    QTest::newRow("#,0.00%") << "#,0.00%" << 12.3456 << "1,234.56%";
    QTest::newRow("Standard") << "Standard" << 1234.5 << "1,234.50";
    QTest::newRow("locale rounds the decimal text") << "locale" << 0.005 << "0.01";
    QTest::newRow("locale tiny negative") << "locale" << -0.001 << "0.00";
    QTest::newRow("locale negative") << "locale" << -1234.567 << "-1,234.57";
    QTest::newRow("locale carries") << "locale" << 999.999 << "1,000.00";
    QTest::newRow("locale exponent form") << "locale" << 1e20 << "100,000,000,000,000,000,000.00";
    QTest::newRow("count 0") << "count" << 0.0 << "0 files";
    QTest::newRow("count 1") << "count" << 1.0 << "1 file";
    QTest::newRow("count 1000") << "count" << 1000.0 << "1,000 files";
  }
  void numbers() {
    QFETCH(QString, kind);
    QFETCH(double, value);
    if (kind == u"locale") QTEST(LocaleNumber(value), "text");
    else if (kind == u"count") QTEST(CountPhrase(value, u"file"), "text");
    else QTEST(FormatNumber(value, kind), "text");
  }

  void widenYear_data() {
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("widened");
    QTest::newRow("US") << "M/d/yy" << "M/d/yyyy";
    QTest::newRow("already four") << "dd.MM.yyyy" << "dd.MM.yyyy";
    QTest::newRow("two places") << "yy-MM-dd (yy)" << "yyyy-MM-dd (yyyy)";
    QTest::newRow("no year") << "dd/MM" << "dd/MM";
  }
  void widenYear() {
    QFETCH(QString, pattern);
    QTEST(WidenYear(pattern), "widened");
  }

  void fileTimeText_data() {
    QTest::addColumn<int>("dateStyle");
    QTest::addColumn<int>("timeStyle");
    QTest::addColumn<bool>("dateOnly");
    QTest::addColumn<QString>("text");
    QTest::newRow("general + hh:mm:ss") << 0 << 0 << false << "3/5/24 14:07:09";
    QTest::newRow("short date 4") << 1 << 0 << false << "3/5/2024 14:07:09";
    QTest::newRow("medium date, short time") << 2 << 1 << false << "05-Mar-24 14:07";
    QTest::newRow("long date, medium time") << 3 << 2 << false << "Tuesday, March 5, 2024 02:07 PM";
    QTest::newRow("time suppressed: two blanks") << 1 << 3 << false << "3/5/2024  ";
    QTest::newRow("date only") << 1 << 0 << true << "3/5/2024";
  }
  void fileTimeText() {
    QFETCH(int, dateStyle);
    QFETCH(int, timeStyle);
    QFETCH(bool, dateOnly);
    QTEST(FileTimeText(kSampleTime, DateStylePattern(dateStyle), TimeStylePattern(timeStyle), dateOnly), "text");
    QCOMPARE(FileTimeText(0, DateStylePattern(dateStyle), TimeStylePattern(timeStyle), dateOnly),
             QStringLiteral("(unknown)"));
  }

  void driveTexts() {
    QCOMPARE(VolumeSerialText(0x1A2B03C4), QStringLiteral("1A2B-03C4"));
    QCOMPARE(VolumeSerialText(0xBEEF), QStringLiteral("0000-BEEF"));
    const struct {
      int type;
      bool floppy;
      const char* name;
    } rows[] = {
        {platform::kDriveRemovable, true, "3\u00BD Inch Floppy Disk"}, {platform::kDriveRemovable, false, "Removable Disk"},
        {platform::kDriveFixed, false, "Local Disk"},   {platform::kDriveRemote, false, "Network Disk"},
        {platform::kDriveCdRom, false, "CD-ROM Disk"},  {platform::kDriveRamDisk, false, "RAM Disk"},
        {platform::kDriveUnknown, false, ""},
    };
    for (const auto& r : rows)
      QCOMPARE(DriveTypeName(r.type, r.floppy, QString::fromUtf8("3\u00BD Floppy (A:)")), QString::fromUtf8(r.name));
    const QString space = DriveSpaceText(QStringLiteral("/"));
    QVERIFY2(QRegularExpression(QStringLiteral(R"(^ \(/\) [\d,]+\.\d\dMB used, [\d,]+\.\d\dMB free \(\d+%\)$)"))
                 .match(space)
                 .hasMatch(),
             qPrintable(space));
  }

  void otherLocaleSeparators() {
    testsupport::PinLocale("de_DE");
    QCOMPARE(LocaleNumber(1234.5), QStringLiteral("1.234,50"));
    QCOMPARE(FlexibleSize(4096, false, true), QStringLiteral("4,00KB (4.096 bytes)"));
    QVERIFY(ShortDate4().contains(QStringLiteral("yyyy")));
    testsupport::PinLocale();
  }

  void ageText_data() {
    QTest::addColumn<double>("minutes");
    QTest::addColumn<QString>("text");
    QTest::newRow("now") << 0.0 << "0 min";
    QTest::newRow("just under two hours") << 119.9 << "119 min";
    QTest::newRow("two hours") << 120.0 << "2 h";
    QTest::newRow("one day is still hours") << 1440.0 << "24 h";
    QTest::newRow("three days") << 3 * 1440.0 + 5 << "3 days";
    QTest::newRow("seven months") << 7 * 43830.0 << "7 months";
    QTest::newRow("one year is still months") << 525960.0 << "12 months";
    QTest::newRow("two years") << 2 * 525960.0 << "2 years";
    QTest::newRow("future") << -300.0 << "in 5 h";
    QTest::newRow("clock skew under a minute") << -0.4 << "0 min";
  }
  void ageText() {
    QFETCH(double, minutes);
    QTEST(AgeText(minutes), "text");
    // Present local time in minutes since 1601 agrees with the FILETIME clock (TZ=UTC in tests).
    QVERIFY(qAbs(MinutesSince1601Now() - double(platform::FileTimeNow()) / platform::kTicksPerSecond / 60.0) < 1.0);
  }

  void rowField_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("field");
    QTest::newRow("plain") << "a b.txt" << "a b.txt";
    QTest::newRow("line ends and tab") << "new\nline\t.txt\r" << "new\\nline\\t.txt\\r";
    QTest::newRow("backslash first") << "a\\n" << "a\\\\n";
    QTest::newRow("control and delete") << QString(QChar(1)) + QChar(0x7F) << "\\x01\\x7F";
    QTest::newRow("raw byte") << QString(QChar(0xDCFF)) + "x" << "\\xFFx";
    QTest::newRow("valid pair kept") << QString::fromUtf8("\xF0\x9F\x98\x80") << QString::fromUtf8("\xF0\x9F\x98\x80");
    // Long fields are scanned in blocks of units: escapes inside, at the end of and after a block,
    // and the values just beside the escaped ranges left plain.
    const QString edges = QString("abcdefgh ~") + QChar(0x80) + QChar(0xDC7F) + QChar(0xDD00) + QChar(0xFF) + "xyz/p.txt";
    QTest::newRow("long plain, edge values") << edges << edges;
    QTest::newRow("long, escape in second block") << "/home/user/docs/a\x1F" "b" << "/home/user/docs/a\\x1Fb";
    QTest::newRow("long, control at block end") << QString("0123456") + QChar(0x1F) + "89abcdef" << "0123456\\x1F89abcdef";
    QTest::newRow("long, raw byte at last place") << QString("0123456789abcde") + QChar(0xDC80) << "0123456789abcde\\x80";
    QTest::newRow("long, delete in the tail") << QString("0123456789abcdefgh") + QChar(0x7F) << "0123456789abcdefgh\\x7F";
  }
  void rowField() {
    QFETCH(QString, text);
    QTEST(RowField(text), "field");
    // The whole-row look never calls a row plain that a field escape would change.
    QFETCH(QString, field);
    const QString row = "a\t" + text + "\t" + text + QString(9, u'x');
    if (RowFieldsPlain(row, 2)) QCOMPARE(field, text);
    if (field == text && text.size() > 8) QVERIFY(RowFieldsPlain(row, 2));
    QVERIFY(!RowFieldsPlain(row, 1));
  }
  // File times convert to the local time the system gives, across changes of
  // offset and far back where zones kept odd offsets.
  void localTimeInZones_data() {
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("summer time") << QByteArray("Europe/Berlin");
    QTest::newRow("half-hour offset") << QByteArray("America/St_Johns");
    QTest::newRow("half-hour summer time") << QByteArray("Australia/Lord_Howe");
    QTest::newRow("offset changed in 1986") << QByteArray("Asia/Kathmandu");
  }
  void localTimeInZones() {
    QFETCH(QByteArray, zone);
    qputenv("TZ", zone);
    tzset();
    QStringList wrong;
    // A fresh thread: conversions remember the zone per thread.
    std::thread([&] {
      auto check = [&](qint64 seconds) {
        LocalTime got;
        struct tm want {};
        const time_t t = time_t(seconds);
        if (!localtime_r(&t, &want) || !FileTimeToLocal(platform::FileTimeFromUnix(seconds, 0), &got)) return;
        if (got.year != want.tm_year + 1900 || got.month != want.tm_mon + 1 || got.day != want.tm_mday ||
            got.hour != want.tm_hour || got.minute != want.tm_min || got.second != want.tm_sec ||
            got.weekday % 7 != want.tm_wday)
          wrong.append(QString::number(seconds));
      };
      for (qint64 s = -2524521600; s < 2208988800; s += 3 * 86400 + 3607) check(s);  // 1890 to 2040
      for (qint64 s = 1711670400; s < 1712016000; s += 61) check(s);                 // end of March 2024
      for (qint64 s = 1729987200; s < 1730332800; s += 61) check(s);                 // end of October 2024
    }).join();
    qputenv("TZ", "UTC");
    tzset();
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join(u' ')));
  }
};

QTEST_GUILESS_MAIN(FormatsTest)
#include "FormatsTest.moc"
