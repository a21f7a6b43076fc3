#pragma once
#include <QRect>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <array>

#include "core/FindTabValues.h"
#include "core/Flag16.h"
#include "core/ListModes.h"

namespace core {

class CProfile;

// A file smaller than this holds no settings: a stub with only the
// "SaveSettingsOnExit" line must not switch off every other default.
inline constexpr qint64 kMinSettingsFileSize = 500;

// What the defaults depend on. Colours are COLORREF values, 0x00BBGGRR.
struct DefaultsContext {
  int screenWidth = 1024;
  int screenHeight = 768;
  QString homeFolder;              // start folder, ends in "/"
  quint32 windowColor = 0xFFFFFF;     // the system window colour
  quint32 highlightColor = 0xD77800;  // the system selection colour

  // The current user's home folder and a white window.
  static DefaultsContext ForScreen(int screenWidth, int screenHeight);
};

// Every persistent setting, grouped by section, with its default. The
// comments name the key; the type decides how it is stored (see CProfile):
// bool "1"/"0", Flag16 "-1"/"0", integers in decimal, texts as they are.
struct AppSettings {
  struct General {  // section "General"
    qint32 winW = 0;  // the restored window rectangle
    qint32 winH = 0;
    qint32 winX = 0;
    qint32 winY = 0;
    QString winZ;            // "WinZ": free text kept with the geometry
    qint32 winState = 0;     // 0 normal, 1 minimised, 2 maximised
    qint32 splitPos = 190;   // tree / list splitter
    qint32 panelHeight = 200;
    QString startPath;       // folder shown at start, ends in "/"
    qint32 findBackColor = 0;  // COLORREF of alternate find rows
    qint32 selRowColor = 0;    // COLORREF of the selected row (its text is chosen to read on it)
    qint32 lastTab = 0;
    qint32 lastTabFind = 0;
    qint32 lastTabRep = 0;
    bool histNewestLast = false;
    Flag16 panelShow = true;
    friend bool operator==(const General&, const General&) = default;
  };
  struct Options {  // section "Settings": the configuration dialog
    qint32 lastTab = 0;
    Flag16 noAccessedTime = true;
    Flag16 noFloppies = false;
    Flag16 saveSettingsOnExit = true;
    Flag16 sortFoldersApart = true;
    Flag16 scrollHist = false;
    Flag16 relPath = false;
    Flag16 showFolderSize = false;
    Flag16 repOFCur = false;
    Flag16 repOFDate = false;
    Flag16 repOFAppend = false;
    Flag16 zoom = false;
    Flag16 grid = false;
    Flag16 bord = false;
    Flag16 fullBlack = false;
    Flag16 fullZoom = false;
    Flag16 fullName = false;
    QString noPrevI;
    QString noPrevAV;
    Flag16 noVid = true;
    friend bool operator==(const Options&, const Options&) = default;
  };
  struct FileView {  // section "FileView": the viewer's check boxes
    Flag16 font = true;
    bool lineNum = false;
    bool wrap = false;
    bool hex = false;
    bool extract = false;
    bool inter = false;
    friend bool operator==(const FileView&, const FileView&) = default;
  };
  struct Report {  // section "Report"
    bool copyRecurse = false;
    bool copyOnlySel = false;
    bool inclDate = false;
    bool includeHeaders = true;
    bool inclSpecs = true;
    bool optRepFver = false;  // option button: report with file versions
    qint16 optSep = 0;        // index of the chosen field separator
    QString sep;              // "Sep": the user's own separator (control text)
    QString path;             // last report folder
    QString file;             // last report file name
    friend bool operator==(const Report&, const Report&) = default;
  };
  struct Styles {  // section "Styles"
    quint8 treeStyle = 7;   // Show Icons, Show PlusMinus, Show Lines
    quint8 listStyle = 23;  // Show Icons, Column Drag, MultiSelect, Line Numbers
    QString altFont = QStringLiteral("Tahoma");
    Flag16 useAltFont = false;
    friend bool operator==(const Styles&, const Styles&) = default;
  };

  FindTabValues find;  // section "Find"
  General general;
  Options settings;
  FileView fileView;
  Report report;
  Styles styles;
  // "ListBrowse", "ListFind", "ListDrives"; the record's name names the section.
  std::array<ModeRecord, kModeCount> lists = {DefaultModeRecord(kModeBrowse), DefaultModeRecord(kModeFind),
                                              DefaultModeRecord(kModeDrives)};
  QStringList copyTo;     // "CopyTo": Count, CopyTo0...
  QStringList moveTo;     // "MoveTo": Count, MoveTo0...
  QStringList favorites;  // "Favorites": Count, Fav0...
};

// The restored window rectangle by default: at most 800 x 600, centred.
QRect DefaultWindowRect(int screenWidth, int screenHeight);
// A light tint of the window colour for alternate find rows. The selected
// row takes the system's selection colour unless "SelRowColor" says otherwise.
quint32 DefaultFindBackColor(quint32 windowColor);

AppSettings DefaultSettings(const DefaultsContext& context);
// "&Reset to Defaults...": every setting back to its default, file untouched.
void ResetToDefaults(AppSettings& settings, const DefaultsContext& context);

struct SettingsResult {
  bool ok = true;     // false: the file could not be read or written
  bool used = false;  // reading: the file was read (else the defaults stand)
  QString error;      // for the status line, once
};

// Walks the whole catalogue in its order, reading ("read") or writing
// ("write") every key; section "Find" comes first. Reading stops at once,
// leaving every default, when the file is absent or smaller than
// kMinSettingsFileSize. Every value is kept as written, also one out of the
// range its menu offers: whatever indexes a table with it checks. Without an
// open batch on the profile, the file is read once and (writing) saved once,
// atomically.
SettingsResult IniWR(CProfile& profile, AppSettings& settings, QStringView mode);

// One routine per group; each serves both directions.
void GeneralWR(CProfile& profile, AppSettings::General& general);
void OptionsWR(CProfile& profile, AppSettings::Options& options);
void FileViewWR(CProfile& profile, AppSettings::FileView& fileView);
void ReportWR(CProfile& profile, AppSettings::Report& report);
void StylesWR(CProfile& profile, AppSettings::Styles& styles);
void ListModeWR(CProfile& profile, ModeRecord& record);  // section "List" + record.name
void NumberedListWR(CProfile& profile, const QString& section, const QString& prefix, QStringList& entries);

// Start: points the profile at `path` and reads every setting into
// `settings`, which holds the defaults.
SettingsResult LoadSettingsAtStart(CProfile& profile, const QString& path, AppSettings& settings);
// Exit: the whole catalogue when SaveSettingsOnExit is on, else only that
// key in section "Settings". Creates the file's folder when missing.
SettingsResult SaveSettingsAtExit(CProfile& profile, AppSettings& settings);

}  // namespace core
