#include <QRandomGenerator>
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

  // Random bytes with runs of every length, some across piece and block
  // edges: the pieces scanned two at a time and joined must give exactly
  // what one walk over the zero-padded 2048-byte blocks gives.
  void piecesMatchOneWalk_data() {
    QTest::addColumn<int>("pieceBytes");
    QTest::addColumn<bool>("international");
    QTest::addColumn<int>("size");
    QTest::newRow("7-byte pieces") << 7 << false << 20000;
    QTest::newRow("one word a piece") << 64 << false << 20000;
    QTest::newRow("65, international") << 65 << true << 20001;
    QTest::newRow("block pieces, whole blocks") << 2048 << false << 8 * 2048;
    QTest::newRow("odd pieces, whole blocks, international") << 3001 << true << 12 * 2048;
    QTest::newRow("one piece") << 0 << false << 30000;
  }
  void piecesMatchOneWalk() {
    QFETCH(int, pieceBytes);
    QFETCH(bool, international);
    QFETCH(int, size);
    QRandomGenerator random(uint(size + pieceBytes));
    QByteArray bytes;
    while (bytes.size() < size) {
      const int kind = int(random.bounded(4));
      const int n = kind == 3 ? int(random.bounded(4000)) : int(random.bounded(1, 12));
      for (int i = 0; i < n; ++i)
        bytes += kind == 0 ? char(random.bounded(256)) : kind == 1 ? char(random.bounded(185, 256)) : char(random.bounded(32, 127));
    }
    bytes.truncate(size);
    if (size % 2048 == 0) bytes.replace(size - 300, 300, QByteArray(300, 'z'));  // open at the very end
    QString expected;
    const QByteArray padded = bytes + QByteArray((2048 - size % 2048) % 2048, '\0');
    for (qsizetype i = 0, start = -1; i < padded.size(); ++i) {
      if (IsTextByte(uchar(padded[i]), international)) {
        if (start < 0) start = i;
      } else if (start >= 0) {
        if (i - start >= 5) expected += QStringLiteral("%1:%2 ").arg(start).arg(i - start);
        start = -1;
      }
    }
    PackedOffsets runs(true);
    QVERIFY(ScanTextRuns(Make(bytes), international, &runs, {}, pieceBytes));
    QString got;
    runs.forEach([&](qint64 offset, quint32 length) { got += QStringLiteral("%1:%2 ").arg(offset).arg(length); });
    QCOMPARE(got, expected);

    // Stopped halfway: the runs that ended before that point stay.
    PackedOffsets some(true);
    bool stopped = false;
    qint64 reached = 0, lastEnd = 0;
    QVERIFY(ScanTextRuns(Make(bytes), international, &some, [&](qint64 done, qint64) {
      reached = done;
      stopped = done >= size / 2;
      return !stopped;
    }, pieceBytes));
    QString part;
    some.forEach([&](qint64 offset, quint32 length) {
      lastEnd = offset + length;
      part += QStringLiteral("%1:%2 ").arg(offset).arg(length);
    });
    QVERIFY(expected.startsWith(part));
    if (stopped) QVERIFY(lastEnd < reached && part.size() < expected.size());
  }

  // The line index built in pieces against a plain split at the separator.
  void linePiecesMatchSplit_data() {
    QTest::addColumn<int>("pieceBytes");
    QTest::addColumn<QByteArray>("alphabet");  // line ends among letters
    QTest::addColumn<QByteArray>("separator");
    QTest::newRow("unix, 7-byte pieces") << 7 << QByteArray("ab\n\n") << QByteArray("\n");
    QTest::newRow("dos with lone CR and LF, 64") << 64 << QByteArray("abc\r\n\r\n\n\r") << QByteArray("\r\n");
    QTest::newRow("dos, CR LF across pieces") << 5 << QByteArray("abc\r\n\r\n") << QByteArray("\r\n");
    QTest::newRow("mac, 65") << 65 << QByteArray("abcdefgh\r") << QByteArray("\r");
    QTest::newRow("unix, long lines, one piece") << 0 << QByteArray("abcdefghijklmnopqrstuvwxyz\n") << QByteArray("\n");
  }
  void linePiecesMatchSplit() {
    QFETCH(int, pieceBytes);
    QFETCH(QByteArray, alphabet);
    QFETCH(QByteArray, separator);
    QRandomGenerator random(uint(pieceBytes + alphabet.size()));
    QByteArray bytes = separator == "\r\n" ? "x\r\n" : separator == "\r" ? "x\r\r\n" : "x\n";
    while (bytes.size() < 9000) bytes += alphabet[random.bounded(int(alphabet.size()))];
    QList<QByteArray> lines;
    for (qsizetype from = 0;;) {
      const qsizetype at = bytes.indexOf(separator, from);
      lines.append(bytes.mid(from, at < 0 ? -1 : at - from));
      if (at < 0) break;
      from = at + separator.size();
    }
    FileViewDocument doc;
    FileViewDocument::Options options;
    options.pieceBytes = pieceBytes;
    doc.load(Make(bytes), options);
    QCOMPARE(doc.lineCount(), qint64(lines.size()));
    qint64 widest = 0;
    for (qsizetype n = 0; n < lines.size(); ++n) {
      QCOMPARE(doc.line(n), QString::fromLatin1(lines[n]));
      widest = std::max<qint64>(widest, lines[n].size());
    }
    QCOMPARE(doc.maxLineWidth(), widest);
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
