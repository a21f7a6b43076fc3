#include "browser/frmMain.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScreen>
#include <QSplitter>
#include <QTimer>
#include <QUrl>

#include "browser/BrowseFlow.h"
#include "browser/CRellTree.h"
#include "browser/CTabCtrl.h"
#include "browser/IconTheme.h"
#include "browser/KeyHeldTracker.h"
#include "browser/MainMenus.h"
#include "browser/StatusLine.h"
#include "browser/FileViewRunner.h"
#include "browser/FileOpsRunner.h"
#include "browser/RenameRunner.h"
#include "browser/FindRunner.h"
#include "browser/ListMenuRunner.h"
#include "browser/VersionRunner.h"
#include "browser/ReportRunner.h"
#include "browser/PreviewRunner.h"
#include "browser/UiYield.h"
#include "browser/list/CRellList.h"
#include "core/DateStyles.h"
#include "core/DriveText.h"
#include "core/JobFlags.h"
#include "core/SettingsLocation.h"
#include "platform/NativePath.h"

namespace browser {

namespace {

// COLORREF (0x00BBGGRR) and back.
quint32 ColorRef(const QColor& c) { return quint32(c.red()) | (quint32(c.green()) << 8) | (quint32(c.blue()) << 16); }
QColor FromColorRef(qint32 ref) {
  const quint32 v = quint32(ref);
  return QColor(int(v & 0xFF), int((v >> 8) & 0xFF), int((v >> 16) & 0xFF));
}

// The nearest colour the screen can show: on a display of fewer than 24
// bits the tint would otherwise be dithered.
QColor Displayable(const QColor& c) {
  const QScreen* s = QGuiApplication::primaryScreen();
  const int depth = s ? s->depth() : 24;
  if (depth >= 24) return c;
  if (depth >= 15) return QColor(c.red() & 0xF8, c.green() & 0xFC, c.blue() & 0xF8);
  return QColor(c.red() & 0xC0, c.green() & 0xC0, c.blue() & 0xC0);
}

// Sets the busy flag for the length of one fill.
struct BusyGuard {
  BusyGuard() { core::JobFlags::SetBusy(true); }
  ~BusyGuard() { core::JobFlags::SetBusy(false); }
};

constexpr int kMinWindowW = 320;
constexpr int kMinWindowH = 240;
constexpr int kMinPanelH = 60;

}  // namespace

frmMain::frmMain(const StartOptions& options, QWidget* parent) : QMainWindow(parent), options_(options) {
  BuildUi();
  ConnectMenus();
}

frmMain::~frmMain() { qApp->removeEventFilter(this); }

void frmMain::BuildUi() {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("Quorvane"));
  IconTheme::Setup();
  setWindowIcon(IconTheme::Get(QStringLiteral("system-file-manager"), QStringLiteral("folder")));

  keys_ = new KeyHeldTracker(this);
  flow_ = new BrowseFlow(this);
  flow_->setKeyHeldTest([this] { return KeyHeld(); });
  flow_->setModeSource([this] { return int(mode_); });

  tree_ = new CRellTree;
  list_ = new CRellList;
  if (list_->objectName().isEmpty()) list_->setObjectName(QStringLiteral("CRellList"));
  splitMain_ = new QSplitter(Qt::Horizontal);
  splitMain_->setObjectName(QStringLiteral("splitMain"));
  splitMain_->addWidget(tree_);
  splitMain_->addWidget(list_);
  splitMain_->setStretchFactor(0, 0);  // the tree keeps its width, the list takes the rest
  splitMain_->setStretchFactor(1, 1);
  splitMain_->setChildrenCollapsible(false);

  tabs_ = new CTabCtrl;
  splitPanel_ = new QSplitter(Qt::Vertical);
  splitPanel_->setObjectName(QStringLiteral("splitPanel"));
  splitPanel_->addWidget(splitMain_);
  splitPanel_->addWidget(tabs_);
  splitPanel_->setStretchFactor(0, 1);
  splitPanel_->setStretchFactor(1, 0);  // the panel keeps its height
  splitPanel_->setChildrenCollapsible(false);
  setCentralWidget(splitPanel_);

  status_ = new StatusLine(this);
  setStatusBar(status_);
  menus_ = new MainMenus(menuBar(), this);

  tmrCloseRetry = new QTimer(this);
  tmrCloseRetry->setObjectName(QStringLiteral("tmrCloseRetry"));
  tmrCloseRetry->setInterval(10);
  connect(tmrCloseRetry, &QTimer::timeout, this, &frmMain::CloseRetryTick);

  connect(tree_, &CRellTree::FolderSelected, flow_, &BrowseFlow::FolderSelected);
  connect(tree_, &CRellTree::QueryPopup, this, &frmMain::ShowTreePopup);
  connect(flow_, &BrowseFlow::FillRequested, this, &frmMain::FillList);
  connect(flow_, &BrowseFlow::RefreshInfo, this, [this](const QString& file) { Q_EMIT InfoRefresh(file, tabs_->currentIndex()); });
  connect(list_, &CRellList::FileSelected, flow_, &BrowseFlow::FileSelected);
  connect(list_, &CRellList::BeforeBrowse, this, &frmMain::GoToFolder);
  connect(list_, &CRellList::OpenFile, this, &frmMain::OpenFromList);
  connect(list_, &CRellList::StatusObjects, status_, [this](const QString& text, int) { status_->ShowStatus(text); });
  connect(list_, &CRellList::StatusDisks, status_, [this](const QString& text, int) { status_->ShowStatus(text); });
  finder_ = new FindRunner(this);
  new FileViewRunner(this);
  new VersionRunner(this);
  new PreviewRunner(this);
  new FileOpsRunner(this);
  new ReportRunner(this);
  new RenameRunner(this);
  new ListMenuRunner(this);

  // Escape must reach the main window before any control (the window previews keys).
  qApp->installEventFilter(this);
}

void frmMain::ConnectMenus() {
  MainMenus* m = menus_;
  connect(m->menExit, &QAction::triggered, this, &QWidget::close);
  connect(m, &MainMenus::SizeFormatChosen, this, &frmMain::ChooseSizeFormat);
  connect(m, &MainMenus::DateStyleChosen, this, &frmMain::ChooseDateStyle);
  connect(m, &MainMenus::TimeStyleChosen, this, &frmMain::ChooseTimeStyle);
  connect(m->menAge, &QAction::toggled, this, [this](bool on) {
    if (on == Record().age) return;
    Record().age = on;
    list_->model().setAge(on);
    list_->setFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle);
  });
  connect(m, &MainMenus::TreeStyleToggled, this, [this](int bit, bool on) {
    const int bits = on ? tree_->styles() | bit : tree_->styles() & ~bit;
    tree_->setStyles(bits);
    settings_.styles.treeStyle = quint8(bits);
  });
  connect(m, &MainMenus::ListStyleToggled, this, [this](int bit, bool on) {
    list_->setStyleOption(CRellList::StyleOption(bit), on);
    settings_.styles.listStyle = quint8(list_->styles());
  });
  connect(m->menShowPanel, &QAction::toggled, this, [this](bool on) {
    tabs_->setVisible(on);
    settings_.general.panelShow = on;
  });
  connect(m->menAltColor, &QAction::triggered, this, [this](bool on) {
    Record().altColor = on;
    list_->setAlternateColor(on);
  });
  connect(m->menSortFoldersApart, &QAction::triggered, this, [this](bool on) {
    settings_.settings.sortFoldersApart = on;
    list_->model().setGrouping(on);
    // The group marks are part of each row's keys: the rows are made again.
    if (mode_ != core::kModeFind) flow_->FillCurrent();
  });
  connect(m->menRelPath, &QAction::triggered, this, [this](bool on) {
    settings_.settings.relPath = on;
    list_->model().setRelativePaths(on);
    list_->refresh();
  });
  connect(m->menRefresh, &QAction::triggered, this, [this] {
    tree_->RefreshFolder(listFolder_);
    flow_->FillCurrent();
  });
  connect(m->menResetDefaults, &QAction::triggered, this, [this] {
    if (QMessageBox::question(this, QStringLiteral("Reset to Defaults"),
                              QStringLiteral("Put every setting back to its default? The settings file is "
                                             "written with them when Quorvane closes.")) == QMessageBox::Yes)
      ResetToDefaults();
  });

  connect(m->menSort, &QMenu::aboutToShow, this, &frmMain::UpdateSortMenu);
  connect(m, &MainMenus::SortColumnChosen, this, [this](int column) { list_->sortBy(column, false); });
  connect(m->menAdjustWidths, &QAction::triggered, this, [this] { list_->adjustAllWidths(); });
  connect(m->menDefaultOrder, &QAction::triggered, this, [this] {
    const core::ListModeDef& def = core::kListModes[size_t(mode_)];
    list_->model().setColumnOrder(QString::fromLatin1(def.defaultOrder));
    list_->model().setVisibility(QString::fromLatin1(def.defaultVisible));
    list_->refresh();
  });
  connect(m->menOriginalOrder, &QAction::triggered, this, [this] {
    list_->model().originalOrder();
    list_->refresh();
  });

  connect(m->menAutoFind, &QAction::toggled, flow_, &BrowseFlow::setAutoFind);

  connect(m->menFavAdd, &QAction::triggered, this, [this] {
    const QString folder = tree_->CurrentPath();
    if (folder.isEmpty() || settings_.favorites.contains(folder)) return;
    settings_.favorites.append(folder);
    menus_->SetFavorites(settings_.favorites);
  });
  connect(m->menFavRemove, &QAction::triggered, this, [this] {
    settings_.favorites.removeAll(tree_->CurrentPath());
    menus_->SetFavorites(settings_.favorites);
  });
  connect(m, &MainMenus::FavoriteChosen, this, &frmMain::GoToFolder);
  connect(m->menHistBack, &QAction::triggered, this, [this] {
    if (history_.canGoBack()) GoToFolder(history_.GoBack());
  });
  connect(m->menHistForward, &QAction::triggered, this, [this] {
    if (history_.canGoForward()) GoToFolder(history_.GoForward());
  });
  connect(m, &MainMenus::HistoryChosen, this, [this](qsizetype index) { GoToFolder(history_.GoTo(index)); });
  connect(m->menAbout, &QAction::triggered, this, &frmMain::ShowAbout);
}

// ---- start-up ----

void frmMain::Load() {
  // 1. The three mode records with their defaults, and the columns of the mode shown.
  const QScreen* screen = QGuiApplication::primaryScreen();
  const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
  defaults_ = core::DefaultsContext::ForScreen(area.width(), area.height());
  defaults_.windowColor = ColorRef(palette().color(QPalette::Base));
  defaults_.highlightColor = ColorRef(palette().color(QPalette::Highlight));
  settings_ = core::DefaultSettings(defaults_);
  mode_ = core::kModeBrowse;
  list_->setMode(mode_, Record());
  // 2. Date and time styles, ShortDate4.
  core::SetupDateStyles();
  // 3. The settings file.
  iniFile_ = core::SettingsFilePath(options_.iniFile);
  const core::SettingsResult read = core::LoadSettingsAtStart(profile_, iniFile_, settings_);
  // 4. - 5. Colours, geometry, splitter, panel, styles, list modes.
  ApplySettings();
  if (!read.ok) status_->ShowStatus(read.error);
}

void frmMain::ApplySettings() {
  const core::AppSettings::General& g = settings_.general;

  QRect rect(g.winX, g.winY, g.winW, g.winH);
  bool onScreen = false;
  for (const QScreen* s : QGuiApplication::screens()) onScreen = onScreen || s->availableGeometry().intersects(rect);
  if (rect.width() < kMinWindowW || rect.height() < kMinWindowH || !onScreen)
    rect = core::DefaultWindowRect(defaults_.screenWidth, defaults_.screenHeight);
  setWindowState(Qt::WindowNoState);
  setGeometry(rect);
  if (g.winState == 2) setWindowState(Qt::WindowMaximized);

  const int split = std::clamp(g.splitPos, 0, std::max(0, rect.width() - 40));
  splitMain_->setSizes({split, std::max(1, rect.width() - split)});
  const int panel = std::max(kMinPanelH, g.panelHeight);
  splitPanel_->setSizes({std::max(1, rect.height() - panel), panel});
  menus_->menShowPanel->setChecked(g.panelShow.on());
  tabs_->setVisible(g.panelShow.on());
  if (g.lastTab >= 0 && g.lastTab < tabs_->count()) tabs_->setCurrentIndex(g.lastTab);
  if (g.lastTabRep >= 0 && g.lastTabRep < tabs_->reportTabs()->count()) tabs_->reportTabs()->setCurrentIndex(g.lastTabRep);

  list_->setAlternateRowColor(Displayable(FromColorRef(g.findBackColor)));
  list_->setSelectedRowColor(Displayable(FromColorRef(g.selRowColor)));

  list_->model().setGrouping(settings_.settings.sortFoldersApart.on());
  list_->model().setRelativePaths(settings_.settings.relPath.on());
  menus_->menSortFoldersApart->setChecked(settings_.settings.sortFoldersApart.on());
  menus_->menRelPath->setChecked(settings_.settings.relPath.on());

  tree_->setStyles(settings_.styles.treeStyle);
  list_->setStyles(settings_.styles.listStyle);
  menus_->ShowTreeStyles(tree_->styles());
  menus_->ShowListStyles(list_->styles());

  SwitchMode(mode_);
  menus_->SetFavorites(settings_.favorites);
  menus_->SetCopyMoveTargets(settings_.copyTo, settings_.moveTo);
  UpdateHistoryMenu();
  finder_->LoadValues();
}

void frmMain::SwitchMode(int mode) {
  if (mode < 0 || mode >= core::kModeCount) return;
  // The layout the user made (widths, order, sort) stays with the mode it was made in.
  if (mode != mode_) list_->model().storeInto(&Record());
  mode_ = qint16(mode);
  const core::ModeRecord& r = Record();
  list_->setMode(mode_, r);
  list_->setAlternateColor(r.altColor);
  menus_->ShowFormats(r.sizeFormat, r.dateStyle, r.timeStyle, r.age);
  menus_->menAltColor->setChecked(r.altColor);
  UpdateSortMenu();
}

void frmMain::ShowStartFolder() {
  if (!tree_->topLevelItemCount()) tree_->LoadVolumes();
  QString start = options_.startFolder.isEmpty() ? settings_.general.startPath.trimmed() : options_.startFolder;
  if (!start.isEmpty()) start = platform::WithSeparator(start);
  if (start.isEmpty() || !tree_->SelectPath(start)) tree_->SelectPath(defaults_.homeFolder);
}

// ---- browse flow ----

bool frmMain::KeyHeld() const { return keys_->held(); }

void frmMain::FillList(const QString& folder) {
  if (closePending_) return;  // the window is on its way out
  if (core::JobFlags::Busy()) {
    // Whatever asked (Refresh, a reset, a file operation, a re-entrant
    // click), rows of two jobs must never mix: stop the running one and
    // leave the fill to the browse timer.
    flow_->DeferFill();
    return;
  }
  if (folder.isEmpty()) {
    RunFill(core::kModeDrives, folder);
  } else if (mode_ == core::kModeFind && flow_->autoFind() && autoFind_) {
    listFolder_ = folder;
    autoFind_(folder);
    ShowFolderInfo(folder);
  } else {
    RunFill(core::kModeBrowse, folder);
  }
}

void frmMain::RunFill(int mode, const QString& folder) {
  if (mode != mode_) SwitchMode(mode);
  core::JobFlags::ClearAbort();
  core::JobFlags::ClearCancel();
  FillResult result;
  {
    BusyGuard busy;
    UiYield yield;
    FillContext context;
    context.abort = core::JobFlags::AbortPointer();
    context.yield = [&yield] { yield(); };
    result = mode == core::kModeDrives ? list_->fillDrives(context) : list_->fillBrowse(folder, context);
  }
  listFolder_ = folder;
  history_.Visit(folder.isEmpty() ? QString() : folder);
  UpdateHistoryMenu();
  ShowFolderInfo(folder);  // an unreadable folder is reported by the list itself
  Q_EMIT ListFilled(folder, result == FillResult::kAborted);
}

void frmMain::ShowFolderInfo(const QString& folder) {
  if (folder.isEmpty()) {
    setWindowTitle(QStringLiteral("Quorvane - Computer"));
    status_->ShowDrive(QString());
    return;
  }
  setWindowTitle(QStringLiteral("Quorvane - ") + platform::DisplayText(folder));
  status_->ShowDrive(core::DriveSpaceText(folder));
}

void frmMain::GoToFolder(const QString& folder) {
  if (!tree_->SelectPath(folder))
    status_->ShowStatus(QStringLiteral("Folder not found: ") + platform::DisplayText(folder));
}

void frmMain::OpenFromList(const QString& path) {
  if (mode_ == core::kModeDrives || path.endsWith(u'/')) {
    GoToFolder(platform::WithSeparator(path));
    return;
  }
  QDesktopServices::openUrl(QUrl::fromLocalFile(QFile::decodeName(platform::ToNative(path))));
}

void frmMain::ShowJobStatus(int mode, const QString& text, double foldersScanned, double nameHits) {
  status_->ShowJobStatus(mode, text, foldersScanned, nameHits);
}

// ---- menus ----

void frmMain::ChooseSizeFormat(int option) {
  Record().sizeFormat = option;
  list_->setFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle);
  menus_->ShowFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle, Record().age);
}

void frmMain::ChooseDateStyle(int style) {
  Record().dateStyle = qint16(style);
  list_->setFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle);
  menus_->ShowFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle, Record().age);
}

void frmMain::ChooseTimeStyle(int style) {
  Record().timeStyle = qint16(style);
  list_->setFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle);
  menus_->ShowFormats(Record().sizeFormat, Record().dateStyle, Record().timeStyle, Record().age);
}

void frmMain::UpdateSortMenu() {
  QStringList captions;
  const ColumnLayout& columns = list_->model().columns();
  for (int i = 0; i < columns.count(); ++i) captions.append(columns.column(i).caption);
  menus_->SetSortColumns(captions, list_->model().sortColumn());
}

void frmMain::UpdateHistoryMenu() {
  menus_->SetHistory(history_.entries(), history_.position(), settings_.general.histNewestLast);
}

void frmMain::ResetToDefaults() {
  if (core::JobFlags::Busy()) {
    // The reset switches the list's columns: not under a running fill.
    core::JobFlags::RequestStop();
    if (!resetPending_) {
      resetPending_ = true;
      QTimer::singleShot(BrowseFlow::kDelayMs, this, [this] {
        resetPending_ = false;
        ResetToDefaults();
      });
    }
    return;
  }
  core::ResetToDefaults(settings_, defaults_);
  ApplySettings();
  flow_->FillCurrent();
}

void frmMain::ShowAbout() {
  QMessageBox::about(this, QStringLiteral("About Quorvane"),
                     QStringLiteral("Quorvane\nVersion ") + QApplication::applicationVersion() +
                         QStringLiteral("\n\nExplore, find and inspect the files on your disks."));
}

void frmMain::ShowTreePopup(const QString& path, const QPoint& globalPos) {
  QMenu menu(this);
  QAction* refresh = menu.addAction(QStringLiteral("&Refresh"));
  QAction* favorite = menu.addAction(QStringLiteral("Add to F&avorites"));
  favorite->setEnabled(!path.isEmpty() && !settings_.favorites.contains(path));
  QAction* chosen = menu.exec(globalPos);
  if (chosen == refresh) {
    tree_->RefreshFolder(path);
    if (path == listFolder_) flow_->FillCurrent();
  } else if (chosen == favorite) {
    settings_.favorites.append(path);
    menus_->SetFavorites(settings_.favorites);
  }
}

// ---- keys and closing ----

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !watched->isWidgetType() || static_cast<QWidget*>(watched)->window() != this)
    return QMainWindow::eventFilter(watched, event);
  const auto* key = static_cast<QKeyEvent*>(event);
  if (key->key() == Qt::Key_Escape) {
    // Only asks running jobs to stop; the key goes on to the control.
    core::JobFlags::RequestStop();
    core::JobFlags::SetJobState(core::JobFlags::kStoppedByUser);
  } else if ((key->modifiers() & (Qt::AltModifier | Qt::ControlModifier | Qt::ShiftModifier)) == Qt::AltModifier &&
             (key->key() == Qt::Key_Left || key->key() == Qt::Key_Right)) {
    // History, also where the menu's shortcut is not in force; the tree and
    // the list never see it as a plain arrow.
    (key->key() == Qt::Key_Left ? menus_->menHistBack : menus_->menHistForward)->trigger();
    return true;
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmMain::closeEvent(QCloseEvent* event) {
  if (core::JobFlags::Busy()) {
    core::JobFlags::RequestStop();
    core::JobFlags::SetJobState(core::JobFlags::kStoppedForClose);
    if (!finalClose_) {
      // Let the job see the request and unwind; the close is asked again after it.
      closePending_ = true;
      event->ignore();
      tmrCloseRetry->start();
      return;
    }
    QCoreApplication::processEvents();
  }
  flow_->browseTimer()->stop();
  flow_->versionTimer()->stop();
  SaveSettingsOnce();  // a failure is said in the status line; the window closes all the same
  event->accept();
}

void frmMain::CloseRetryTick() {
  if (core::JobFlags::Busy()) return;
  tmrCloseRetry->stop();
  finalClose_ = true;
  close();
}

void frmMain::CollectSettings() {
  core::AppSettings::General& g = settings_.general;
  const bool restored = !(windowState() & (Qt::WindowMaximized | Qt::WindowMinimized | Qt::WindowFullScreen));
  const QRect r = restored ? geometry() : normalGeometry();
  if (r.width() > 0 && r.height() > 0) {
    g.winX = r.x();
    g.winY = r.y();
    g.winW = r.width();
    g.winH = r.height();
  }
  g.winState = (windowState() & Qt::WindowMinimized) ? 1 : (windowState() & Qt::WindowMaximized) ? 2 : 0;
  const QList<int> split = splitMain_->sizes();
  if (!split.isEmpty()) g.splitPos = split[0];
  if (!tabs_->isHidden()) {
    const QList<int> panel = splitPanel_->sizes();
    if (panel.size() == 2 && panel[1] > 0) g.panelHeight = panel[1];
  }
  g.panelShow = menus_->menShowPanel->isChecked();
  const QString shown = tree_->CurrentPath();
  if (!shown.isEmpty()) g.startPath = shown;
  g.lastTab = tabs_->currentIndex();
  g.lastTabRep = tabs_->reportTabs()->currentIndex();
  settings_.styles.treeStyle = quint8(tree_->styles());
  settings_.styles.listStyle = quint8(list_->styles());
  list_->model().storeInto(&Record());
  finder_->StoreValues();
}

void frmMain::SaveSettingsOnce() {
  if (settingsSaved_ || !options_.saveAtExit) return;
  settingsSaved_ = true;
  CollectSettings();
  const core::SettingsResult result = core::SaveSettingsAtExit(profile_, settings_);
  ++saveCount_;
  Q_EMIT SettingsSaved(result.ok);
  if (!result.ok) status_->ShowStatus(QStringLiteral("Settings not saved (") + result.error + QStringLiteral(")."));
}

}  // namespace browser
