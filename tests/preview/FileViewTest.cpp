#include <QTemporaryDir>
#include <QtTest>

#include "cli/CliContext.h"
#include "preview/FileViewDocument.h"
#include "preview/modFileView.h"
#include "tests/TestSupport.h"

using namespace preview;

namespace cli {
int RunViewCommand(CliContext& ctx);
}

class FileViewTest : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;
  int files_ = 0;

  QString Make(const QByteArray& bytes) {
    const QString path = dir_.filePath(QStringLiteral("f%1.bin").arg(++files_));
    testsupport::MakeFile(path, bytes);
    return path;
  }
  static QByteArray Zeros(int n) { return QByteArray(n, '\0'); }

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void classify_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("kind");
    QTest::newRow("empty") << QByteArray() << int(kKindEmpty);
    QTest::newRow("text") << QByteArray("hello") << int(kKindText);
    QTest::newRow("zero in the first kilobyte") << QByteArray(1023, 'a') + Zeros(1) << int(kKindBinary);
    QTest::newRow("first zero is byte 1025") << QByteArray(1024, 'a') + Zeros(1) << int(kKindText);
  }
  void classify() {
    QFETCH(QByteArray, bytes);
    qint64 length = -1;
    QString error;
    QTEST(int(ClassifyFile(Make(bytes), &length, &error)), "kind");
    QCOMPARE(length, qint64(bytes.size()));
    QVERIFY(ClassifyFile(dir_.filePath("missing"), &length, &error) == kKindUnreadable && !error.isEmpty());
    QVERIFY(ClassifyFile(dir_.path(), &length, &error) == kKindUnreadable);  // a folder
  }

  // The text view's line ends: the first CR LF against the first LF and CR.
  void textLines_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("dos") << QByteArray("a\r\nb\r\n") << "ASCII-DOS" << QStringList{"a", "b", ""};
    QTest::newRow("no line end") << QByteArray("abc") << "ASCII-DOS" << QStringList{"abc"};
    QTest::newRow("dos keeps a lone LF") << QByteArray("a\r\nb\nc") << "ASCII-DOS" << QStringList{"a", "b\nc"};
    QTest::newRow("LF before the first CR LF") << QByteArray("a\nb\r\nc") << "ASCII-UNIX" << QStringList{"a", "b\r", "c"};
    QTest::newRow("CR before the first CR LF") << QByteArray("a\rb\r\nc") << "ASCII-MAC" << QStringList{"a", "b", "\nc"};
    QTest::newRow("only CR bytes") << QByteArray("\r\r\r") << "ASCII-MAC" << QStringList{"", "", "", ""};
    QTest::newRow("utf-8 shown as such") << QByteArray("gr\xC3\xBC\xC3\x9F") << "ASCII-DOS" << QStringList{"grüß"};
    QTest::newRow("other bytes as Windows-1252") << QByteArray("\x80 \xE9") << "ASCII-DOS" << QStringList{"€ é"};
  }
  void textLines() {
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, lines);
    FileViewDocument doc;
    doc.load(Make(bytes), {});
    QTEST(doc.kindText(), "kind");
    QStringList got;
    for (qint64 n = 0; n < doc.lineCount(); ++n) got.append(doc.line(n));
    QCOMPARE(got, lines);
  }

  void hexLines() {
    QByteArray bytes = "0123456789abcdef";
    bytes += '\x7F';
    FileViewDocument doc;
    doc.load(Make(bytes), {true, false, false});
    QCOMPARE(doc.lineCount(), 2);
    QCOMPARE(doc.headerLine(0), QStringLiteral("           0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f   0123456789abcdef"));
    QCOMPARE(doc.line(0), QStringLiteral("00000000: 30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 ; 0123456789abcdef"));
    QCOMPARE(doc.line(1), QStringLiteral("00000010: 7F") + QString(45, u' ') + QStringLiteral(" ; \x7F") + QString(15, u' '));
    QCOMPARE(doc.line(1).size(), 76);
    const unsigned char low[] = {0x00, 0x1F, 0x20, 0xA9};
    QCOMPARE(FormatHexLine(low, 4, 0x100000000LL, HexOffsetDigits(0x100000010LL)).mid(0, 22), QStringLiteral("100000000: 00 1F 20 A9"));
    QVERIFY(FormatHexLine(low, 4, 0).endsWith(QStringLiteral("; .. ©            ")));
  }

  void runs_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("international");
    QTest::addColumn<QString>("runs");  // offset:length ...
    QTest::newRow("caret ends a run") << QByteArray("a^bcdef") << false << "2:5";
    QTest::newRow("four letters") << Zeros(3) + "abcd" + Zeros(3) << false << "";
    QTest::newRow("five letters") << Zeros(3) + "abcde" + Zeros(3) << false << "3:5";
    QTest::newRow("backquote and control") << QByteArray("abcde`fghij\x01klmno") << false << "0:5 6:5 12:5";
    QTest::newRow("across a block boundary") << Zeros(2045) + "abcdefghij" + Zeros(1) << false << "2045:10";
    QTest::newRow("open at the end of a whole block") << Zeros(2043) + "abcde" << false << "";
    QTest::newRow("international off") << QByteArray("\xC0\xC1\xC2\xC3\xC4") << false << "";
    QTest::newRow("international on") << QByteArray("\xC0\xC1\xC2\xC3\xC4") << true << "0:5";
  }
  void runs() {
    QFETCH(QByteArray, bytes);
    QFETCH(bool, international);
    PackedOffsets runs(true);
    QVERIFY(ScanTextRuns(Make(bytes), international, &runs));
    QStringList got;
    runs.forEach([&](qint64 offset, quint32 length) { got.append(QStringLiteral("%1:%2").arg(offset).arg(length)); });
    QTEST(got.join(u' '), "runs");
  }

  void extractedPageAndStatus() {
    FileViewDocument doc;
    doc.load(Make(Zeros(2) + "hello" + Zeros(1) + "worlds!" + Zeros(1)), {false, true, false});
    QCOMPARE(doc.headerLine(1), QStringLiteral("Offset    Text 2/2    7 bytes     Total: 12 bytes"));
    QCOMPARE(doc.line(0), QStringLiteral("00000002: hello"));
    QCOMPARE(doc.viewText(), QStringLiteral("Text view: 2 lines"));
    doc.load(Make(Zeros(9)), {false, true, false});
    QCOMPARE(doc.headerLine(0), QStringLiteral("No text found"));
    doc.load(Make(QByteArray(1232, 'x') + "\r\n"), {});
    QCOMPARE(doc.fileText(), QStringLiteral("ASCII-DOS file: 1,234 bytes"));
    QVERIFY(QRegularExpression(QStringLiteral("^Load time: \\d\\.\\d{3} sec$")).match(doc.loadTimeText()).hasMatch());
    doc.load(Make(QByteArray(77 * 16, 'x')), {true, false, false});
    QCOMPARE(doc.viewText(), QStringLiteral("Hex view: 77 lines"));
  }

  void writtenLinesStopWhenAsked() {
    FileViewDocument doc;
    doc.load(Make("a\nb\nc\n"), {});
    QStringList out;
    int asked = 0;
    QVERIFY(!doc.writeLines({0, 2, 3}, [&](const QString& l) { out.append(l); }, [&] { return ++asked > 2; }));
    QCOMPARE(out, (QStringList{"a", "c", "*** Job terminated by user ***"}));
  }

  // A file that shrinks after loading shows what is left.
  void shrunkFile() {
    const QString path = Make(QByteArray(100, 'x') + "\n" + QByteArray(100, 'y'));
    FileViewDocument doc;
    doc.load(path, {});
    QVERIFY(QFile::resize(path, 10));
    QCOMPARE(doc.line(0), QString(10, u'x'));
    QCOMPARE(doc.line(1), QString());
  }

  void command_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");
    QTest::newRow("text lines") << QStringList{} << 0 << "one\ntwo\\tx\nthree\n\n";
    QTest::newRow("a slice") << QStringList{"--lines", "2:2"} << 0 << "two\\tx\n";
    QTest::newRow("open slice") << QStringList{"--lines", "3:"} << 0 << "three\n\n";
    QTest::newRow("hex") << QStringList{"--hex", "--lines", "1:1"} << 0
                         << "           0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f   0123456789abcdef\n"
                            "00000000: 6F 6E 65 0A 74 77 6F 09 78 0A 74 68 72 65 65 0A ; one.two.x.three.\n";
    QTest::newRow("bad lines") << QStringList{"--lines", "3:1"} << 2 << "";
  }
  void command() {
    QFETCH(QStringList, args);
    QFETCH(int, status);
    const QString path = Make("one\ntwo\tx\nthree\n");
    QString out, err;
    QTextStream o(&out), e(&err);
    cli::CliContext ctx{args + QStringList{path}, o, e, QString()};
    QCOMPARE(cli::RunViewCommand(ctx), status);
    o.flush();
    QTEST(out, "out");
  }
};

QTEST_GUILESS_MAIN(FileViewTest)
#include "FileViewTest.moc"
