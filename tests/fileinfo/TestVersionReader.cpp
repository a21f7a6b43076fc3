// The version reader on executables built byte by byte (PE32, PE32+, NE)
// and by the mingw-w64 tool chain when it is installed.
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include "VersionFixtures.h"
#include "fileinfo/PeResourceLocator.h"
#include "fileinfo/VersionDisplay.h"
#include "fileinfo/modVerFixedInfo.h"
#include "fileinfo/modVerStringInfo.h"

using fixtures::Fixed;
using fixtures::Table;
using Strings = QVector<QPair<QString, QString>>;
using Rows = QStringList;  // "caption=value" for labels 10..17, then "item=value"

namespace {

const Strings kStrings = {{"CompanyName", "Пример ООО 株式会社"}, {"FileDescription", "Demo"}, {"FileVersion", "1.2.3.4"},
                          {"LegalCopyright", "(c) us"},          {"ProductName", "Alpha"}};

Rows RowsOf(const fileinfo::VersionDisplay& d) {
  Rows rows;
  for (int label = 10; label < 18; ++label) rows << d.label(label);
  for (const auto& item : d.items) rows << item.text + u'=' + d.values.value(item.index);
  return rows;
}

}  // namespace

class TestVersionReader : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;
  int serial_ = 0;

  QString Write(const QByteArray& bytes) {
    const QString path = dir_.filePath(QStringLiteral("f%1.dll").arg(++serial_));
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size()) qFatal("cannot write fixture");
    return path;
  }

 private Q_SLOTS:
  void display_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<Rows>("rows");
    const QString kFlags = QStringLiteral("Contains debug information. PreRelease. ");
    Fixed driver;
    driver.flags = 0x03;
    driver.type = 3;
    driver.subtype = 14;
    const Rows common = {"Company Name=Пример ООО 株式会社", "Product Name=Alpha"};
    QTest::newRow("PE32, driver, flags 3")
        << fixtures::WrapPe(fixtures::Block(true, driver, {{"040904B0", kStrings}}, {{0x409, 1200}}), false)
        << (Rows{"1.2.3.4", "Demo", "(c) us", "Driver of type 14", "1.02.03.04", "5.00.2195.01", kFlags,
                 "Win32-API on Windows NT", "Language=English (United States)", "Character Set=Unicode"} + common);
    Fixed six;
    six.type = 6;
    six.os = 0x00010001;
    QTest::newRow("PE32+, type 6")
        << fixtures::WrapPe(fixtures::Block(true, six, {{"040904B0", kStrings}}, {{0x409, 1200}}), true)
        << (Rows{"1.2.3.4", "Demo", "(c) us", "Type 6", "1.02.03.04", "5.00.2195.01", "(none)", "DOS-Win16",
                 "Language=English (United States)", "Character Set=Unicode"} + common);
    Fixed win16;
    win16.os = 0x00000001;
    const Strings cyrillic = {{"CompanyName", "Пример"}, {"FileVersion", "3.1"}};
    QTest::newRow("NE, 8-bit Cyrillic table")
        << fixtures::WrapNe(fixtures::Block(false, win16, {{"041904E3", cyrillic}}, {{0x419, 1251}}, 1251))
        << Rows{"3.1", "", "", "Dynamic link library", "1.02.03.04", "5.00.2195.01", "(none)", "16-bit Windows",
                "Language=Russian (Russia)", "Character Set=Windows - Cyrillic", "Company Name=Пример"};
    // The walk is bounded by the StringFileInfo, so the second table's header
    // becomes a key; every value still comes from the first table.
    QTest::newRow("two translations")
        << fixtures::WrapPe(fixtures::Block(true, Fixed(),
                                            {{"040904B0", {{"CompanyName", "First"}}},
                                             {"040704B0", {{"CompanyName", "Zweite"}}}},
                                            {{0x409, 1200}, {0x407, 1200}}),
                            false)
        << Rows{"", "", "", "Dynamic link library", "1.02.03.04", "5.00.2195.01", "(none)", "Win32-API on Windows NT",
                "Languages=English (United States), German (Germany)", "Character Sets=Unicode, Unicode",
                "Company Name=First", "040704B0="};
    QTest::newRow("translation names a missing table")
        << fixtures::WrapPe(fixtures::Block(true, Fixed(), {{"040904E4", {{"ProductName", "Fallback"}}}}, {{0x407, 1200}}),
                            false)
        << Rows{"", "", "", "Dynamic link library", "1.02.03.04", "5.00.2195.01", "(none)", "Win32-API on Windows NT",
                "Language=English (United States)", "Character Set=Windows - Multilingual (U.S. Standard)",
                "Product Name=Fallback"};
    QTest::newRow("no translation: keys unlisted")
        << fixtures::WrapPe(fixtures::Block(true, Fixed(), {{"040704B0", kStrings}}, {}), false)
        << Rows{"", "", "", "Dynamic link library", "1.02.03.04", "5.00.2195.01", "(none)", "Win32-API on Windows NT"};
    // A block whose first "V" is neither at 5 nor at 7 counts as no version info.
    QByteArray shifted = fixtures::Block(true, Fixed(), {{"040904B0", kStrings}}, {{0x409, 1200}});
    shifted[2] = 'V';
    QTest::newRow("first V elsewhere") << fixtures::WrapPe(shifted, false)
                                       << Rows{"[No version info contained]", "", "", "", "", "", "", ""};
    QTest::newRow("no resource") << QByteArray("MZ plain bytes")
                                 << Rows{"[No version info contained]", "", "", "", "", "", "", ""};
  }
  void display() {
    QFETCH(QByteArray, file);
    QFETCH(Rows, rows);
    QCOMPARE(RowsOf(fileinfo::VersionDisplay::Read(Write(file))), rows);
  }

  void versionText_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("fixedText");
    QTest::addColumn<QString>("stringText");
    const QByteArray block = fixtures::Block(true, Fixed(), {{"040904B0", kStrings}}, {{0x409, 1200}});
    QTest::newRow("both") << fixtures::WrapPe(block, true) << "ver 1.02.03.04"
                          << "ver 1.2.3.4";
    Fixed unsigned_;
    unsigned_.signature = 0;
    QTest::newRow("no fixed part")
        << fixtures::WrapPe(fixtures::Block(true, unsigned_, {{"040904B0", kStrings}}, {{0x409, 1200}}), false) << ""
        << "ver 1.2.3.4";
    QTest::newRow("no FileVersion key")
        << fixtures::WrapPe(fixtures::Block(true, Fixed(), {{"040904B0", {{"ProductName", "x"}}}}, {{0x409, 1200}}), false)
        << "ver 1.02.03.04" << "";
    QTest::newRow("no block") << QByteArray(100, 'x') << "" << "";
  }
  void versionText() {
    QFETCH(QByteArray, file);
    const QString path = Write(file);
    QTEST(modVerStringInfo::GetFileVersionText(true, path, QStringLiteral("ver ")), "fixedText");
    QTEST(modVerStringInfo::GetFileVersionText(false, path, QStringLiteral("ver ")), "stringText");
  }

  // Lying lengths and offsets give no or partial information, never a
  // crash or a read outside the file (the sanitizer build checks that).
  void badInput_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("hasInfo");
    const QByteArray block = fixtures::Block(true, Fixed(), {{"040904B0", kStrings}}, {{0x409, 1200}});
    const QByteArray pe = fixtures::WrapPe(block, false);
    auto patched = [](QByteArray b, int at, QByteArray bytes) { return b.replace(at, bytes.size(), bytes); };
    const int section = 0x58 + 224, rsrc = 0x200;
    QTest::newRow("truncated headers") << pe.left(0x60) << false;
    QTest::newRow("truncated section table") << pe.left(section + 20) << false;
    QTest::newRow("section past the end") << patched(pe, section + 20, QByteArray("\x00\x00\x00\x10", 4)) << false;
    QTest::newRow("directory loops to itself") << patched(pe, rsrc + 0x14, QByteArray("\x00\x00\x00\x80", 4)) << false;
    QTest::newRow("entry count 65535") << patched(pe, rsrc + 0x0E, "\xFF\xFF") << true;
    QTest::newRow("data size larger than the file") << patched(pe, rsrc + 0x4C, QByteArray("\x00\x00\x10\x00", 4)) << false;
    QTest::newRow("odd data offset") << patched(pe, rsrc + 0x48, QByteArray("\x59\x10\x00\x00", 4)) << false;
    QTest::newRow("block lengths lie") << patched(pe, rsrc + 0x58, "\xFF\xFF") << true;
    QByteArray unterminated = block;
    unterminated.truncate(unterminated.indexOf(QByteArray("C\0o\0m", 5)) + 5);
    QTest::newRow("UTF-16 key without its zero") << fixtures::WrapPe(unterminated, false) << true;
    const QByteArray block16 = fixtures::Block(false, Fixed(), {{"040904E4", kStrings}}, {{0x409, 1252}});
    QTest::newRow("NE shift 0") << fixtures::WrapNe(block16, 0) << true;
    QTest::newRow("NE shift 31") << fixtures::WrapNe(block16, 31) << false;
    QTest::newRow("NE truncated block") << fixtures::WrapNe(block16).left(0x200 + 90) << true;
  }
  void badInput() {
    QFETCH(QByteArray, file);
    QStringList tags;
    modVerStringInfo::SetErrorReport([&tags](const QString& tag, const QString&) { tags << tag; });
    const fileinfo::VersionDisplay d = fileinfo::VersionDisplay::Read(Write(file));
    modVerStringInfo::SetErrorReport(nullptr);
    QTEST(d.hasInfo, "hasInfo");
  }

  // A walk that runs off the block keeps its keys and reports the fault once.
  void walkFault_data() {
    QTest::addColumn<bool>("wide");
    QTest::addColumn<QString>("tag");
    QTest::newRow("32-bit") << true << "BinaryReadNTError";
    QTest::newRow("16-bit") << false << "BinaryRead95Error";
  }
  void walkFault() {
    QFETCH(bool, wide);
    QByteArray block = fixtures::Block(wide, Fixed(), {{"040904E4", {{"CompanyName", "A"}}}}, {});
    const qsizetype sfi = wide ? block.indexOf(QByteArray("\x01\x00S\x00t\x00r", 7)) - 3
                               : block.indexOf(QByteArray("\0\0StringFileInfo", 16)) - 2;
    block.truncate(sfi + (wide ? 60 + 36 : 36 + 16));  // String node: [sfi+60/36, +36/16)
    block.append('\x01');                               // one byte where the next entry would start
    qToLittleEndian<quint16>(0xFFF0, block.data() + sfi);  // StringFileInfo claims more
    QStringList tags;
    modVerStringInfo::SetErrorReport([&tags](const QString& tag, const QString&) { tags << tag; });
    modVerStringInfo::LoadVersionBlockFromBytes(block);
    QStringList names, values;
    QVERIFY(modVerStringInfo::ReadLoadedVersionInfo(&names, &values));
    modVerStringInfo::SetErrorReport(nullptr);
    QCOMPARE(names.mid(7), QStringList{"CompanyName"});
    QTEST(tags.value(0), "tag");
    QCOMPARE(tags.size(), 1);
  }

  void decoders_data() {
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("expected");
    using namespace modVerFixedInfo;
    using modVerStringInfo::CharSetName;
    using modVerStringInfo::LanguageName;
    QTest::newRow("version 1.2.3.4") << FormatVersion(0x00010002, 0x00030004) << "1.02.03.04";
    QTest::newRow("version 4.0.0.950") << FormatVersion(0x00040000, 950) << "4.00.00.950";
    QTest::newRow("version parts above 32767") << FormatVersion(0x8000FFFF, 0) << "-32768.-1.00.00";
    QTest::newRow("flags 0") << FileFlagsText(0) << "(none)";
    QTest::newRow("flags 0x3F") << FileFlagsText(0x3F)
                                << "Contains debug information. PreRelease. Patched. Private build. Resource "
                                   "dynamically allocated. Special build.";
    QTest::newRow("display driver") << FileTypeText(3, 4) << "Display driver";
    QTest::newRow("input method driver") << FileTypeText(3, 11) << "Input method driver";
    QTest::newRow("font 7") << FileTypeText(4, 7) << "Font of type 7";
    QTest::newRow("TrueType") << FileTypeText(4, 3) << "TrueType Font";
    QTest::newRow("static library") << FileTypeText(7, 0) << "Static link library";
    QTest::newRow("OS 0") << FileOSText(0) << "Undefinded or unknown";
    QTest::newRow("OS by parts is not matched") << FileOSText(0x00040001) << "OS type 262145";
    QTest::newRow("char set 949") << CharSetName(949) << "Windows - Korea";
    QTest::newRow("char set other") << CharSetName(0x3A8) << "(unknown: 3A8)";
    QTest::newRow("language 0x0409") << LanguageName(0x0409) << "English (United States)";
    QTest::newRow("language 0x0411") << LanguageName(0x0411) << "Japanese (Japan)";
    QTest::newRow("language unknown") << LanguageName(0x0000) << "(unknown)";
  }
  void decoders() {
    QFETCH(QString, actual);
    QFETCH(QString, expected);
    QCOMPARE(actual, expected);
  }

  // Only headers and the resource tree are read, however large the file.
  void readsOnlyTheTree() {
    const QByteArray pe = fixtures::WrapPe(fixtures::Block(true, Fixed(), {{"040904B0", kStrings}}, {{0x409, 1200}}), false);
    for (qint64 size : {qint64(pe.size()), qint64(1) << 29}) {
      fileinfo::PeResourceLocator locator(
          [&pe](qint64 offset, char* buffer, qint64 len) -> qint64 {
            const qint64 n = qBound<qint64>(0, qMin<qint64>(len, pe.size() - offset), len);
            if (n > 0) memcpy(buffer, pe.constData() + offset, size_t(n));
            if (n < len) memset(buffer + qMax<qint64>(n, 0), 0, size_t(len - qMax<qint64>(n, 0)));
            return len;
          },
          size);
      fileinfo::PeResourceLocator::Span span;
      QVERIFY(locator.FindVersionResource(&span));
      QVERIFY2(locator.bytesRead() < 1024, qPrintable(QString::number(locator.bytesRead())));
    }
  }

  // The same reader on DLLs the mingw-w64 tool chain builds from a resource script.
  void realDll_data() {
    QTest::addColumn<QString>("prefix");
    QTest::newRow("PE32") << "i686-w64-mingw32-";
    QTest::newRow("PE32+") << "x86_64-w64-mingw32-";
  }
  void realDll() {
    QFETCH(QString, prefix);
    const QString windres = QStandardPaths::findExecutable(prefix + "windres");
    const QString gcc = QStandardPaths::findExecutable(prefix + "gcc");
    if (windres.isEmpty() || gcc.isEmpty()) QSKIP("mingw-w64 is not installed");
    QFile rc(dir_.filePath("r.rc")), c(dir_.filePath("r.c"));
    QVERIFY(rc.open(QIODevice::WriteOnly) && c.open(QIODevice::WriteOnly));
    rc.write("1 VERSIONINFO\nFILEVERSION 1,2,3,4\nPRODUCTVERSION 1,2,0,0\nFILEOS 0x40004\nFILETYPE 2\n"
             "BEGIN\n BLOCK \"StringFileInfo\"\n BEGIN\n  BLOCK \"040904B0\"\n  BEGIN\n"
             "   VALUE \"CompanyName\", \"\xD0\x9F\xD1\x80\xD0\xB8\xD0\xBC\xD0\xB5\xD1\x80 \xE6\xA0\xAA\"\n"
             "   VALUE \"FileVersion\", \"1.2.3.4\"\n  END\n END\n"
             " BLOCK \"VarFileInfo\"\n BEGIN\n  VALUE \"Translation\", 0x409, 1200\n END\nEND\n");
    c.write("int f(void) { return 1; }\n");
    rc.close();
    c.close();
    const QString obj = dir_.filePath(prefix + "r.o"), dll = dir_.filePath(prefix + "r.dll");
    QCOMPARE(QProcess::execute(windres, {"-c", "65001", rc.fileName(), "-O", "coff", "-o", obj}), 0);
    QCOMPARE(QProcess::execute(gcc, {"-shared", "-o", dll, c.fileName(), obj}), 0);
    const fileinfo::VersionDisplay d = fileinfo::VersionDisplay::Read(dll);
    QCOMPARE(RowsOf(d), (Rows{"1.2.3.4", "", "", "Dynamic link library", "1.02.03.04", "1.02.00.00", "(none)",
                              "Win32-API on Windows NT", "Language=English (United States)", "Character Set=Unicode",
                              "Company Name=Пример 株"}));
  }
};

QTEST_GUILESS_MAIN(TestVersionReader)
#include "TestVersionReader.moc"
