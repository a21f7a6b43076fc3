#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include "core/CProfile.h"
#include "core/ColorContrast.h"
#include "core/IniFile.h"
#include "core/Settings.h"
#include "core/SettingsLocation.h"
#include "tests/TestSupport.h"

using core::AppSettings;
using core::CProfile;
using core::Flag16;
using core::ModeRecord;

namespace {

QByteArray ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

core::DefaultsContext Context() {
  core::DefaultsContext c;
  c.screenWidth = 1920;
  c.screenHeight = 1080;
  c.homeFolder = "/home/tester/";
  return c;
}

// A file of exactly `size` bytes: the given lines, then a comment filling up.
QByteArray Padded(const QByteArray& lines, qsizetype size) {
  QByteArray out = lines + "; ";
  out += QByteArray(size - out.size() - 1, '-');
  out += '\n';
  return out;
}

bool SameMode(const ModeRecord& a, const ModeRecord& b) {
  return a.sortOrder == b.sortOrder && a.sizeFormat == b.sizeFormat && a.dateStyle == b.dateStyle &&
         a.timeStyle == b.timeStyle && a.age == b.age && a.altColor == b.altColor && a.visible == b.visible &&
         a.positions == b.positions && a.name == b.name;
}

bool SameSettings(const AppSettings& a, const AppSettings& b) {
  bool lists = true;
  for (size_t m = 0; m < a.lists.size(); ++m) lists = lists && SameMode(a.lists[m], b.lists[m]);
  return a.find == b.find && a.general == b.general && a.settings == b.settings && a.fileView == b.fileView &&
         a.report == b.report && a.styles == b.styles && lists && a.copyTo == b.copyTo && a.moveTo == b.moveTo &&
         a.favorites == b.favorites;
}

// A value differing from its default in every field of the catalogue.
AppSettings Unusual() {
  AppSettings s = core::DefaultSettings(Context());
  core::FindTabValues& f = s.find;
  f.exactMatch = true;
  f.includeSubfolders = false;
  f.rangeNot = true;
  f.dateKind = 3;
  f.dateFrom = "1/2/2003 4:05:06 AM";
  f.dateTo = "(unknown)";
  f.sizeMin = " 1 ";
  f.sizeMax = "2048";
  f.sizeUnit = 2;
  f.attrMust = 2 | 4;
  f.attrMustNot = 1 | 2048;
  f.containedText = "  \"quoted\" text  ";
  f.caseSensitive = true;
  f.isHex = true;
  f.watch = 63;
  f.named = " *.txt;;x ";
  f.lookIn = "/data/Grüße/";
  f.excludeInput = "typing";
  f.excludes = {"/proc/", " node_modules ", "'q'"};

  AppSettings::General& g = s.general;
  g.winW = 1001;
  g.winH = 702;
  g.winX = -3;
  g.winY = 14;
  g.winZ = "z";
  g.winState = 2;
  g.splitPos = 321;
  g.panelHeight = 333;
  g.startPath = "/mnt/with blanks/";
  g.findBackColor = 0x00ABCDEF;
  g.selRowColor = 0x00123456;
  g.lastTab = 4;
  g.lastTabFind = 1;
  g.lastTabRep = 1;
  g.histNewestLast = true;
  g.panelShow = false;

  AppSettings::Options& o = s.settings;
  o.lastTab = 3;
  o.noAccessedTime = false;
  o.noFloppies = true;
  o.saveSettingsOnExit = Flag16::FromRaw(5);  // a hand-edited number stays
  o.sortFoldersApart = false;
  o.scrollHist = o.relPath = o.showFolderSize = o.repOFCur = o.repOFDate = o.repOFAppend = true;
  o.zoom = o.grid = o.bord = o.fullBlack = o.fullZoom = o.fullName = true;
  o.noPrevI = "wmf,ico";
  o.noPrevAV = "avi";
  o.noVid = false;

  s.fileView.font = false;
  s.fileView.lineNum = s.fileView.wrap = s.fileView.hex = s.fileView.extract = s.fileView.inter = true;

  AppSettings::Report& r = s.report;
  r.copyRecurse = r.copyOnlySel = r.inclDate = true;
  r.includeHeaders = r.inclSpecs = false;
  r.optRepFver = true;
  r.optSep = 3;
  r.sep = " ";
  r.path = "/tmp/reports/";
  r.file = "list.txt";

  s.styles.treeStyle = 5;
  s.styles.listStyle = 255;
  s.styles.altFont = "DejaVu Sans";
  s.styles.useAltFont = true;

  for (size_t m = 0; m < s.lists.size(); ++m) {
    ModeRecord& l = s.lists[m];
    l.altColor = !l.altColor;
    l.sizeFormat = 6 + int(m);
    l.dateStyle = 2;
    l.timeStyle = 3;
    l.age = true;
    l.visible[1] = u'0';
    l.positions = "Name.200,Ext.40";
    l.sortOrder = qint32(0x80000002u);
  }
  s.copyTo = {"/a/", "/b c/"};
  s.moveTo = {"/m/"};
  s.favorites = {"/f0/", "/f1/", "/f2/"};
  return s;
}

}  // namespace

class SettingsTest : public QObject {
  Q_OBJECT

  QTemporaryDir dir_;
  int files_ = 0;
  QString NewPath() { return dir_.filePath(QStringLiteral("s%1/Quorvane.ini").arg(++files_)); }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
  }

  void windowGeometry_data() {
    QTest::addColumn<QSize>("screen");
    QTest::addColumn<QRect>("window");
    QTest::newRow("large") << QSize(1920, 1080) << QRect(560, 240, 800, 600);
    QTest::newRow("exact") << QSize(864, 696) << QRect(32, 48, 800, 600);
    QTest::newRow("small") << QSize(800, 600) << QRect(32, 48, 736, 504);
    QTest::newRow("odd halves") << QSize(1023, 767) << QRect(111, 83, 800, 600);
    QTest::newRow("tiny") << QSize(40, 50) << QRect(32, 48, -24, -46);
  }
  void windowGeometry() {
    QFETCH(QSize, screen);
    QFETCH(QRect, window);
    QCOMPARE(core::DefaultWindowRect(screen.width(), screen.height()), window);
  }

  // The defaults that depend on the context or the mode; Reset brings them all back.
  void defaults() {
    const AppSettings s = core::DefaultSettings(Context());
    QCOMPARE(s.general.winW, 800);
    QCOMPARE(s.general.winX, 560);
    QCOMPARE(s.general.startPath, QStringLiteral("/home/tester/"));
    QCOMPARE(s.find.lookIn, QStringLiteral("/home/tester/"));
    QVERIFY(!s.lists[core::kModeBrowse].altColor && s.lists[core::kModeFind].altColor && !s.lists[core::kModeDrives].altColor);
    QCOMPARE(s.lists[core::kModeBrowse].visible, QStringLiteral("11111111"));
    QCOMPARE(s.lists[core::kModeFind].visible, QStringLiteral("111111111"));
    QCOMPARE(s.lists[core::kModeDrives].visible, QStringLiteral("11111111"));
    QVERIFY(s.general.findBackColor != s.general.selRowColor);
    QCOMPARE(quint32(s.general.selRowColor), Context().highlightColor);  // the system's selection colour
    QVERIFY(core::DefaultsContext::ForScreen(100, 100).homeFolder.endsWith(u'/'));
    QCOMPARE(AppSettings().lists[core::kModeDrives].name, QStringLiteral("Drives"));

    AppSettings changed = Unusual();
    core::ResetToDefaults(changed, Context());
    QVERIFY(SameSettings(changed, s));
  }

  // Every key written, then read back into a fresh default record, unchanged.
  void wholeCatalogueRoundTrip() {
    const QString path = NewPath();
    CProfile out;
    out.setProfileFile(path);
    AppSettings written = Unusual();
    QDir().mkpath(QFileInfo(path).absolutePath());
    const core::SettingsResult w = core::IniWR(out, written, u"write");
    QVERIFY2(w.ok, qPrintable(w.error));

    const core::IniFile file = [&] { core::IniFile f; f.load(path); return f; }();
    QCOMPARE(file.sections(), (QStringList{"Find", "General", "Settings", "FileView", "Report", "Styles", "ListBrowse",
                                           "ListFind", "ListDrives", "CopyTo", "MoveTo", "Favorites"}));
    // The key names themselves: a misspelt one would still round-trip.
    const QStringList mode{"AltColor", "NumStyle", "DateStyle", "TimeStyle", "Age", "VisList", "PosList", "SortOrder"};
    const QList<QPair<QString, QString>> catalogue{
        {"Find", "ExactMatch,InclSubs,RangeNot,Date,DateFrom,DateTo,SizeMin,SizeMax,SizeUnit,AttrFindCheck,"
                 "AttrFindNotCheck,ContText,CaseSens,Hex,Mind,Named,Count,LookIn,ExcludeFolders,ExcludePath0,"
                 "ExcludePath1,ExcludePath2"},
        {"General", "WinW,WinH,WinX,WinY,WinZ,WinState,SplitPos,PanelHeight,StartPath,FindBackColor,SelRowColor,"
                    "LastTab,LastTabFind,LastTabRep,HistNewestLast,PanelShow"},
        {"Settings", "LastTab,NoAccessedTime,NoFloppies,SaveSettingsOnExit,SortFoldersApart,ScrollHist,RelPath,"
                     "ShowFolderSize,RepOFCur,RepOFDate,RepOFAppend,Zoom,Grid,Bord,FullBlack,FullZoom,FullName,"
                     "NoPrevI,NoPrevAV,NoVid"},
        {"FileView", "Font,LineNum,Wrap,Hex,Extract,Inter"},
        {"Report", "CopyRecurse,CopyOnlySel,InclDate,IncludeHeaders,InclSpecs,optRepFver,optSep,Sep,Path,File"},
        {"Styles", "TreeStyle,ListStyle,AltFont,UseAltFont"},
        {"ListBrowse", mode.join(u',')}, {"ListFind", mode.join(u',')}, {"ListDrives", mode.join(u',')}};
    for (const auto& [section, keys] : catalogue) QCOMPARE(file.keys(section).join(u','), keys);
    QCOMPARE(file.keys(u"Favorites"), (QStringList{"Count", "Fav0", "Fav1", "Fav2"}));
    QCOMPARE(file.value(u"Settings", u"NoVid").value(), QStringLiteral("0"));
    QCOMPARE(file.value(u"Settings", u"NoFloppies").value(), QStringLiteral("-1"));
    QCOMPARE(file.value(u"General", u"HistNewestLast").value(), QStringLiteral("1"));

    CProfile in;
    AppSettings read = core::DefaultSettings(Context());
    const core::SettingsResult r = core::LoadSettingsAtStart(in, path, read);
    QVERIFY(r.ok && r.used);
    QVERIFY(SameSettings(read, written));

    // Writing the same state again changes no byte.
    const QByteArray first = ReadAll(path);
    QVERIFY(core::IniWR(in, read, u"write").ok);
    QCOMPARE(ReadAll(path), first);
  }

  // The selected row's text reads on whatever "SelRowColor" holds.
  void selectedTextReads_data() {
    QTest::addColumn<quint32>("fill");  // COLORREF
    QTest::addColumn<quint32>("text");
    const quint32 white = 0xFFFFFF, black = 0;  // COLORREF
    QTest::newRow("system blue keeps white") << 0xD77800u << white;
    QTest::newRow("desktop blue keeps white") << 0xC68C30u << white;
    QTest::newRow("light tint takes black") << 0xFFE6CCu << black;
    QTest::newRow("yellow takes black") << 0x00FFFFu << black;
    QTest::newRow("dark red keeps white") << 0x000080u << white;
  }
  void selectedTextReads() {
    QFETCH(quint32, fill);
    const quint32 text = core::ReadableTextColor(fill, 0xFFFFFF);
    QTEST(text, "text");
    QVERIFY(core::ContrastRatio(fill, text) >= core::kReadableContrast);
  }

  void emptyTextsComeBackAsOneBlank() {
    const QString path = NewPath();
    CProfile p;
    p.setProfileFile(path);
    AppSettings s = core::DefaultSettings(Context());
    s.styles.altFont.clear();
    s.report.sep.clear();  // a control text: stored as "" and read as nothing
    QDir().mkpath(QFileInfo(path).absolutePath());
    QVERIFY(core::IniWR(p, s, u"write").ok);
    QVERIFY(ReadAll(path).contains("\nAltFont= \n"));
    QVERIFY(ReadAll(path).contains("\nSep=\"\"\n"));
    AppSettings back = core::DefaultSettings(Context());
    back.report.sep = "keep";
    QVERIFY(core::LoadSettingsAtStart(p, path, back).used);
    QCOMPARE(back.styles.altFont, QStringLiteral(" "));
    QCOMPARE(back.settings.noPrevI, QStringLiteral(" "));
    QCOMPARE(back.report.sep, QStringLiteral("keep"));
  }

  void numberedLists_data() {
    QTest::addColumn<QByteArray>("section");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("count 0") << QByteArray("[CopyTo]\nCount=0\nCopyTo0=/x/\n") << QStringList();
    QTest::newRow("count above keys") << QByteArray("[CopyTo]\nCount=3\nCopyTo0=/x/\nCopyTo2=/z/\n")
                                      << QStringList{"/x/", "", "/z/"};
    QTest::newRow("count below keys") << QByteArray("[CopyTo]\nCount=1\nCopyTo0=/x/\nCopyTo1=/y/\n")
                                      << QStringList{"/x/"};
    QTest::newRow("negative count") << QByteArray("[CopyTo]\nCount=-4\n") << QStringList();
    QTest::newRow("no count keeps") << QByteArray("[CopyTo]\nCopyTo0=/x/\n") << QStringList{"/default/"};
    QTest::newRow("count garbage") << QByteArray("[CopyTo]\nCount=two\nCopyTo0=/x/\n") << QStringList();
  }
  void numberedLists() {
    QFETCH(QByteArray, section);
    QFETCH(QStringList, expected);
    const QString path = NewPath();
    QVERIFY(testsupport::MakeFile(path, Padded(section, 600)));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    s.copyTo = {"/default/"};
    QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
    QCOMPARE(s.copyTo, expected);
  }

  void smallFileIsIgnored_data() {
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("used");
    QTest::newRow("absent") << -1 << false;
    QTest::newRow("499 bytes") << 499 << false;
    QTest::newRow("500 bytes") << 500 << true;
  }
  void smallFileIsIgnored() {
    QFETCH(int, size);
    QFETCH(bool, used);
    const QString path = NewPath();
    if (size >= 0) QVERIFY(testsupport::MakeFile(path, Padded("[General]\nSplitPos=77\n[Settings]\nNoVid=0\n", size)));
    QCOMPARE(QFileInfo(path).size(), qMax(size, 0));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    const core::SettingsResult r = core::LoadSettingsAtStart(p, path, s);
    QVERIFY(r.ok);
    QCOMPARE(r.used, used);
    QCOMPARE(s.general.splitPos, used ? 77 : 190);
    QCOMPARE(bool(s.settings.noVid), !used);
    QCOMPARE(p.ProfileFile(), path);
    if (!used) QVERIFY(SameSettings(s, core::DefaultSettings(Context())));
  }

  // SaveSettingsOnExit off: exactly that one key changes, every other byte stays.
  void exitWritesOneKeyWhenSavingIsOff() {
    const QByteArray head(
        "; my settings, edited by hand\r\n[General]\r\nWinW=640\r\nUnknown = keep me\r\n\r\n"
        "[Settings]\r\nNoVid=-1\r\n  saveSETTINGSonexit = -1  \r\nZoom=0\r\n");
    const QByteArray original = Padded(head, 700);
    const QString path = NewPath();
    QVERIFY(testsupport::MakeFile(path, original));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
    QCOMPARE(s.general.winW, 640);
    s.settings.saveSettingsOnExit = false;
    s.general.winW = 999;  // changed but not to be saved
    s.favorites = {"/nope/"};
    const core::SettingsResult r = core::SaveSettingsAtExit(p, s);
    QVERIFY2(r.ok, qPrintable(r.error));
    QByteArray expected = original;
    expected.replace("  saveSETTINGSonexit = -1  \r\n", "  saveSETTINGSonexit = 0\r\n");
    QCOMPARE(ReadAll(path), expected);
  }

  void exitWithoutFileMakesFolderAndStub() {
    const QString path = dir_.filePath("deep/er/Quorvane.ini");
    CProfile p;
    p.setProfileFile(path);
    AppSettings s = core::DefaultSettings(Context());
    s.settings.saveSettingsOnExit = false;
    QVERIFY(core::SaveSettingsAtExit(p, s).ok);
    QCOMPARE(ReadAll(path), QByteArray("[Settings]\nSaveSettingsOnExit=0\n"));
    // The stub is too small to count: next start keeps every default.
    AppSettings next = core::DefaultSettings(Context());
    QVERIFY(!core::LoadSettingsAtStart(p, path, next).used);
    QVERIFY(next.settings.saveSettingsOnExit);
  }

  // A hand-written file keeps its comments, blank lines, unknown keys and
  // sections and the spelling of names through a full save.
  void handEditedFileKeepsItsLines() {
    const QByteArray head(
        "# top comment\n\n[general]\n; window\nwinw = 700\nMyOwnKey=42\n\n"
        "[Strange Section]\nx=1\n\n[Favorites]\nCount=1\nfav0=/old/\n; end of favourites\n");
    const QByteArray original = Padded(head, 520);
    const QString path = NewPath();
    QVERIFY(testsupport::MakeFile(path, original));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
    QCOMPARE(s.favorites, QStringList{"/old/"});
    s.general.winW = 750;
    s.favorites = {"/new/", "/second/"};
    QVERIFY(core::SaveSettingsAtExit(p, s).ok);

    const QList<QByteArray> after = ReadAll(path).split('\n');
    QVERIFY(after.contains("winw = 750"));
    QVERIFY(after.contains("fav0=/new/"));
    // Every line that is not one of the rewritten keys is still there, in order.
    qsizetype at = 0;
    for (const QByteArray& line : original.split('\n')) {
      if (line == "winw = 700" || line == "Count=1" || line == "fav0=/old/") continue;
      while (at < after.size() && after[at] != line) ++at;
      QVERIFY2(at < after.size(), line.constData());
    }
    const qsizetype comment = after.indexOf("; end of favourites");
    QCOMPARE(after[comment - 1], QByteArray("Fav1=/second/"));  // new key after the section's last key
  }

  void readOnlyFileReportsAndKeepsIt() {
    const QString path = NewPath();
    const QByteArray original = Padded("[General]\nSplitPos=77\n", 600);
    QVERIFY(testsupport::MakeFile(path, original));
    QVERIFY(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
    QCOMPARE(s.general.splitPos, 77);
    s.general.splitPos = 80;
    for (bool all : {true, false}) {
      s.settings.saveSettingsOnExit = all;
      const core::SettingsResult r = core::SaveSettingsAtExit(p, s);
      QVERIFY(!r.ok);
      QVERIFY(r.error.contains(path));
      QCOMPARE(ReadAll(path), original);
    }
  }

  // Damaged files: nothing crashes, what is readable is read, the rest defaults.
  void damagedFiles_data() {
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no sections") << Padded("WinW=5\nSplitPos=6\n", 600);
    QTest::newRow("garbage lines") << Padded("[General\nSplitPos=2x\n]]]\n=\n==\n[]\nSplitPos\n[General]\nSplitPos=3\n", 600);
    QTest::newRow("duplicate sections") << Padded("[General]\nSplitPos=2\n[General]\nSplitPos=3\nWinW=9\n", 600);
    QTest::newRow("nul bytes") << Padded(QByteArray("[General]\nSplitPos=2\0\0\n\0[\0]\n", 28), 600);
  }
  void damagedFiles() {
    QFETCH(QByteArray, content);
    const QString path = NewPath();
    QVERIFY(testsupport::MakeFile(path, content));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
    const AppSettings d = core::DefaultSettings(Context());
    const QByteArray tag = QTest::currentDataTag();
    QCOMPARE(s.general.splitPos, tag == "no sections" ? 190 : 2);
    QCOMPARE(s.general.winW, d.general.winW);
    QCOMPARE(s.general.winState, 0);
    QVERIFY(SameMode(s.lists[core::kModeFind], d.lists[core::kModeFind]));
  }

  // Values outside what the menus offer, and the blank of an empty text:
  // read and saved again, each key holds what it held.
  void valuesComeBackAsWritten_data() {
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::newRow("size format 12") << "ListFind" << "NumStyle" << "12";
    QTest::newRow("size format 9") << "ListBrowse" << "NumStyle" << "9";
    QTest::newRow("negative date style") << "ListFind" << "DateStyle" << "-1";
    QTest::newRow("time style 7") << "ListDrives" << "TimeStyle" << "7";
    QTest::newRow("short VisList") << "ListBrowse" << "VisList" << "1";
    QTest::newRow("VisList of other characters") << "ListFind" << "VisList" << "12";
    QTest::newRow("blank PosList") << "ListFind" << "PosList" << " ";
    QTest::newRow("window state 9") << "General" << "WinState" << "9";
    QTest::newRow("find date kind 4") << "Find" << "Date" << "4";
    QTest::newRow("find size unit 7") << "Find" << "SizeUnit" << "7";
    QTest::newRow("separator choice -3") << "Report" << "optSep" << "-3";
  }
  void valuesComeBackAsWritten() {
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    const QString path = NewPath();
    const QByteArray line = '[' + section.toUtf8() + "]\n" + key.toUtf8() + '=' + value.toUtf8() + '\n';
    QVERIFY(testsupport::MakeFile(path, Padded(line, 600)));
    CProfile p;
    AppSettings s = core::DefaultSettings(Context());
    QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
    QVERIFY(core::SaveSettingsAtExit(p, s).ok);
    const QByteArray saved = ReadAll(path);
    const QByteArray wanted = '\n' + key.toUtf8() + '=' + value.toUtf8() + '\n';
    QVERIFY2(saved.contains(wanted), saved.constData());
  }

  void binaryFilesNeverCrash() {
    QRandomGenerator rng(99);
    for (int round = 0; round < 40; ++round) {
      QByteArray bytes(500 + int(rng.bounded(4000)), Qt::Uninitialized);
      for (char& c : bytes) c = char(rng.bounded(256));
      if (round % 8 == 1) bytes.prepend("[General]\nCount=32767\n[CopyTo]\nCount=32767\n");
      const QString path = NewPath();
      QVERIFY(testsupport::MakeFile(path, bytes));
      CProfile p;
      AppSettings s = core::DefaultSettings(Context());
      QVERIFY(core::LoadSettingsAtStart(p, path, s).used);
      QVERIFY(s.copyTo.size() <= 32767);
      // The first save normalises what was read; from then on the state is stable.
      QVERIFY(core::SaveSettingsAtExit(p, s).ok);
      const QByteArray saved = ReadAll(path);
      AppSettings again = core::DefaultSettings(Context());
      QVERIFY(core::LoadSettingsAtStart(p, path, again).used);
      QVERIFY(core::SaveSettingsAtExit(p, again).ok);
      QCOMPARE(ReadAll(path), saved);
    }
  }

  void location_data() {
    QTest::addColumn<QString>("override");
    QTest::addColumn<QString>("program");  // relative to the test folder; "-" none
    QTest::addColumn<QString>("xdg");
    QTest::addColumn<QString>("expected");  // "@" = test folder, "~" = home
    QTest::newRow("override") << "@/x/my.ini" << "@/prog" << "/cfg" << "@/x/my.ini";
    QTest::newRow("writable program folder") << "" << "@/prog" << "/cfg" << "@/prog/Quorvane.ini";
    QTest::newRow("holding the file") << "" << "@/hold" << "/cfg" << "@/hold/Quorvane.ini";
    QTest::newRow("no program folder") << "" << "@/missing" << "/cfg" << "/cfg/quorvane/Quorvane.ini";
    QTest::newRow("relative XDG ignored") << "" << "@/missing" << "rel" << "~/.config/quorvane/Quorvane.ini";
    QTest::newRow("XDG unset") << "" << "@/missing" << "" << "~/.config/quorvane/Quorvane.ini";
  }
  void location() {
    QFETCH(QString, override);
    QFETCH(QString, program);
    QFETCH(QString, xdg);
    QFETCH(QString, expected);
    const QString base = dir_.filePath("loc");
    QVERIFY(testsupport::MakeFolder(base + "/prog"));
    QVERIFY(testsupport::MakeFile(base + "/hold/Quorvane.ini", "[S]\n"));
    auto expand = [&](QString s) { return s.replace("@", base).replace("~", QDir::homePath()); };
    const QByteArray saved = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", xdg.toUtf8());
    const QString got = core::SettingsFilePath(expand(override), expand(program));
    qputenv("XDG_CONFIG_HOME", saved);
    QCOMPARE(got, expand(expected));
  }
};

QTEST_GUILESS_MAIN(SettingsTest)
#include "tst_Settings.moc"
