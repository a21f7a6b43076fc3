#include "core/Settings.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "core/CProfile.h"
#include "platform/NativePath.h"

namespace core {

namespace {

// Moves each channel of a COLORREF `percent` of the way to the target.
quint32 Tint(quint32 color, int r, int g, int b, int percent) {
  auto mix = [percent](int from, int to) { return from + (to - from) * percent / 100; };
  const int cr = int(color & 0xFF), cg = int((color >> 8) & 0xFF), cb = int((color >> 16) & 0xFF);
  return quint32(mix(cr, r)) | (quint32(mix(cg, g)) << 8) | (quint32(mix(cb, b)) << 16);
}

}  // namespace

DefaultsContext DefaultsContext::ForScreen(int screenWidth, int screenHeight) {
  DefaultsContext c;
  c.screenWidth = screenWidth;
  c.screenHeight = screenHeight;
  c.homeFolder = platform::WithSeparator(QDir::homePath());
  return c;
}

QRect DefaultWindowRect(int screenWidth, int screenHeight) {
  const int width = std::min(screenWidth - 64, 800);
  const int height = std::min(screenHeight - 96, 600);
  const int left = std::max(0, (screenWidth - width) >> 1);
  const int top = std::max(0, (screenHeight - height) >> 1);
  return QRect(left, top, width, height);
}

quint32 DefaultFindBackColor(quint32 windowColor) { return Tint(windowColor, 51, 102, 204, 8); }

AppSettings DefaultSettings(const DefaultsContext& context) {
  AppSettings s;
  const QRect window = DefaultWindowRect(context.screenWidth, context.screenHeight);
  s.general.winX = window.x();
  s.general.winY = window.y();
  s.general.winW = window.width();
  s.general.winH = window.height();
  s.general.startPath = context.homeFolder;
  s.general.findBackColor = qint32(DefaultFindBackColor(context.windowColor));
  s.general.selRowColor = qint32(context.highlightColor);
  s.find.lookIn = context.homeFolder;
  for (int m = 0; m < kModeCount; ++m) s.lists[size_t(m)] = DefaultModeRecord(m);
  return s;
}

void ResetToDefaults(AppSettings& settings, const DefaultsContext& context) { settings = DefaultSettings(context); }

void GeneralWR(CProfile& p, AppSettings::General& g) {
  p.setProfileSection(QStringLiteral("General"));
  p.Value(QStringLiteral("WinW"), g.winW);
  p.Value(QStringLiteral("WinH"), g.winH);
  p.Value(QStringLiteral("WinX"), g.winX);
  p.Value(QStringLiteral("WinY"), g.winY);
  p.Value(QStringLiteral("WinZ"), g.winZ);
  p.Value(QStringLiteral("WinState"), g.winState);
  p.Value(QStringLiteral("SplitPos"), g.splitPos);
  p.Value(QStringLiteral("PanelHeight"), g.panelHeight);
  p.Value(QStringLiteral("StartPath"), g.startPath);
  p.Value(QStringLiteral("FindBackColor"), g.findBackColor);
  p.Value(QStringLiteral("SelRowColor"), g.selRowColor);
  p.Value(QStringLiteral("LastTab"), g.lastTab);
  p.Value(QStringLiteral("LastTabFind"), g.lastTabFind);
  p.Value(QStringLiteral("LastTabRep"), g.lastTabRep);
  p.Value(QStringLiteral("HistNewestLast"), g.histNewestLast);
  p.Value(QStringLiteral("PanelShow"), g.panelShow);
}

void OptionsWR(CProfile& p, AppSettings::Options& o) {
  p.setProfileSection(QStringLiteral("Settings"));
  p.Value(QStringLiteral("LastTab"), o.lastTab);
  p.Value(QStringLiteral("NoAccessedTime"), o.noAccessedTime);
  p.Value(QStringLiteral("NoFloppies"), o.noFloppies);
  p.Value(QStringLiteral("SaveSettingsOnExit"), o.saveSettingsOnExit);
  p.Value(QStringLiteral("SortFoldersApart"), o.sortFoldersApart);
  p.Value(QStringLiteral("ScrollHist"), o.scrollHist);
  p.Value(QStringLiteral("RelPath"), o.relPath);
  p.Value(QStringLiteral("ShowFolderSize"), o.showFolderSize);
  p.Value(QStringLiteral("RepOFCur"), o.repOFCur);
  p.Value(QStringLiteral("RepOFDate"), o.repOFDate);
  p.Value(QStringLiteral("RepOFAppend"), o.repOFAppend);
  p.Value(QStringLiteral("Zoom"), o.zoom);
  p.Value(QStringLiteral("Grid"), o.grid);
  p.Value(QStringLiteral("Bord"), o.bord);
  p.Value(QStringLiteral("FullBlack"), o.fullBlack);
  p.Value(QStringLiteral("FullZoom"), o.fullZoom);
  p.Value(QStringLiteral("FullName"), o.fullName);
  p.Value(QStringLiteral("NoPrevI"), o.noPrevI);
  p.Value(QStringLiteral("NoPrevAV"), o.noPrevAV);
  p.Value(QStringLiteral("NoVid"), o.noVid);
}

void FileViewWR(CProfile& p, AppSettings::FileView& f) {
  p.setProfileSection(QStringLiteral("FileView"));
  p.Value(QStringLiteral("Font"), f.font);
  p.Value(QStringLiteral("LineNum"), f.lineNum);
  p.Value(QStringLiteral("Wrap"), f.wrap);
  p.Value(QStringLiteral("Hex"), f.hex);
  p.Value(QStringLiteral("Extract"), f.extract);
  p.Value(QStringLiteral("Inter"), f.inter);
}

void ReportWR(CProfile& p, AppSettings::Report& r) {
  p.setProfileSection(QStringLiteral("Report"));
  p.Value(QStringLiteral("CopyRecurse"), r.copyRecurse);
  p.Value(QStringLiteral("CopyOnlySel"), r.copyOnlySel);
  p.Value(QStringLiteral("InclDate"), r.inclDate);
  p.Value(QStringLiteral("IncludeHeaders"), r.includeHeaders);
  p.Value(QStringLiteral("InclSpecs"), r.inclSpecs);
  p.Value(QStringLiteral("optRepFver"), r.optRepFver);
  p.Value(QStringLiteral("optSep"), r.optSep);
  p.ControlText(QStringLiteral("Sep"), r.sep);
  p.Value(QStringLiteral("Path"), r.path);
  p.Value(QStringLiteral("File"), r.file);
}

void StylesWR(CProfile& p, AppSettings::Styles& s) {
  p.setProfileSection(QStringLiteral("Styles"));
  p.Value(QStringLiteral("TreeStyle"), s.treeStyle);
  p.Value(QStringLiteral("ListStyle"), s.listStyle);
  p.Value(QStringLiteral("AltFont"), s.altFont);
  p.Value(QStringLiteral("UseAltFont"), s.useAltFont);
}

void ListModeWR(CProfile& p, ModeRecord& r) {
  p.setProfileSection(QStringLiteral("List") + r.name);
  p.Value(QStringLiteral("AltColor"), r.altColor);
  p.Value(QStringLiteral("NumStyle"), r.sizeFormat);
  p.Value(QStringLiteral("DateStyle"), r.dateStyle);
  p.Value(QStringLiteral("TimeStyle"), r.timeStyle);
  p.Value(QStringLiteral("Age"), r.age);
  p.Value(QStringLiteral("VisList"), r.visible);
  p.Value(QStringLiteral("PosList"), r.positions);
  p.Value(QStringLiteral("SortOrder"), r.sortOrder);
}

void NumberedListWR(CProfile& p, const QString& section, const QString& prefix, QStringList& entries) {
  p.setProfileSection(section);
  // "Count" is a 16-bit number, which also bounds what a damaged file can ask for.
  qint16 count = qint16(std::min<qsizetype>(entries.size(), 32767));
  if (p.fProfRead()) {
    if (p.Value(QStringLiteral("Count"), count) == 0) return;
    entries = QStringList(std::max<qint16>(count, 0), QString());
  } else {
    p.Value(QStringLiteral("Count"), count);
  }
  for (qint16 i = 0; i < count && i < entries.size(); ++i) p.Value(prefix + QString::number(i), entries[i]);
}

SettingsResult IniWR(CProfile& p, AppSettings& s, QStringView mode) {
  SettingsResult result;
  const bool reading = mode == u"read";
  if (!reading && mode != u"write") {
    result.ok = false;
    result.error = QStringLiteral("settings: unknown direction \"%1\"").arg(mode.toString());
    return result;
  }
  p.setProfRead(reading);
  p.ClearError();
  const bool ownBatch = !p.InBatch();
  if (ownBatch && !p.BeginBatch()) {
    // Unreadable: reading keeps the defaults, writing must not replace it.
    p.TakeBatch();
    result.ok = false;
    result.error = p.LastError();
    return result;
  }
  if (reading && p.SourceSize() < kMinSettingsFileSize) {
    if (ownBatch) p.TakeBatch();
    return result;
  }

  FindTabValuesWR(p, s.find);
  GeneralWR(p, s.general);
  OptionsWR(p, s.settings);
  FileViewWR(p, s.fileView);
  ReportWR(p, s.report);
  StylesWR(p, s.styles);
  for (ModeRecord& r : s.lists) ListModeWR(p, r);
  NumberedListWR(p, QStringLiteral("CopyTo"), QStringLiteral("CopyTo"), s.copyTo);
  NumberedListWR(p, QStringLiteral("MoveTo"), QStringLiteral("MoveTo"), s.moveTo);
  NumberedListWR(p, QStringLiteral("Favorites"), QStringLiteral("Fav"), s.favorites);

  if (reading) {
    // Values come back as written; the tables they index guard themselves.
    result.used = true;
    if (ownBatch) p.TakeBatch();
  } else if (ownBatch) {
    p.EndBatch();
  }
  result.ok = !p.HasError();
  result.error = p.LastError();
  return result;
}

SettingsResult LoadSettingsAtStart(CProfile& profile, const QString& path, AppSettings& settings) {
  profile.setProfileFile(path);
  return IniWR(profile, settings, u"read");
}

SettingsResult SaveSettingsAtExit(CProfile& profile, AppSettings& settings) {
  const QString folder = QFileInfo(profile.ProfileFile()).absolutePath();
  if (!QFileInfo::exists(folder)) QDir().mkpath(folder);  // a failure shows as the write's error
  if (settings.settings.saveSettingsOnExit) return IniWR(profile, settings, u"write");

  SettingsResult result;
  profile.ClearError();
  profile.setProfRead(false);
  profile.setProfileSection(QStringLiteral("Settings"));
  result.ok = profile.Value(QStringLiteral("SaveSettingsOnExit"), settings.settings.saveSettingsOnExit) > 0;
  result.error = profile.LastError();
  if (!result.ok && result.error.isEmpty()) result.error = QStringLiteral("settings not saved: %1").arg(profile.ProfileFile());
  return result;
}

}  // namespace core
