#pragma once
#include <QMainWindow>
#include <QString>
#include <functional>

#include "browser/FolderHistory.h"
#include "core/CProfile.h"
#include "core/Settings.h"

class QSplitter;
class QTimer;

namespace browser {

class BrowseFlow;
class CRellList;
class CRellTree;
class CTabCtrl;
class FileOpsRunner;
class FindRunner;
class KeyHeldTracker;
class MainMenus;
class StatusLine;

// The main window: folder tree, file list, info panel, menus and status
// line. It reads the settings at start, turns tree selections into list
// fills (BrowseFlow), stops running jobs before it closes and saves the
// settings once on the way out.
class frmMain : public QMainWindow {
  Q_OBJECT
 public:
  struct StartOptions {
    QString iniFile;      // --ini FILE; empty: the usual location
    QString startFolder;  // overrides "StartPath" for this run
    bool saveAtExit = true;  // false: a run that must leave the settings alone
  };

  explicit frmMain(const StartOptions& options, QWidget* parent = nullptr);
  ~frmMain() override;

  // Start-up: mode records and columns, date styles, settings read, colours,
  // geometry, splitter and panel. The start folder is shown by ShowStartFolder.
  void Load();
  // Selects the start folder in the tree, which fills the list.
  void ShowStartFolder();

  // The status line's job operation (modes -1, 0, 1, 3, 4, 5); mode 3 shows
  // `text`, or when it is empty the summary made from the find's counters.
  void ShowJobStatus(int mode, const QString& text = QString(), double foldersScanned = 0, double nameHits = 0);

  // Switches the list to a mode: keeps the present layout in the old mode's
  // record, then shows the new mode's columns, formats and sort order.
  void SwitchMode(int mode);
  int mode() const { return mode_; }

  // The find feature runs the search for a folder selected in Find mode
  // while "&Automatic File Find when Browsing" is checked.
  void SetAutoFindHandler(std::function<void(const QString& folder)> handler) { autoFind_ = std::move(handler); }

  // Parts the features plug into.
  CRellTree* tree() const { return tree_; }
  CRellList* list() const { return list_; }
  CTabCtrl* tabs() const { return tabs_; }
  StatusLine* statusLine() const { return status_; }
  MainMenus* menus() const { return menus_; }
  FindRunner* finder() const { return finder_; }
  // The folder the list shows ("" for the drives).
  const QString& listFolder() const { return listFolder_; }
  BrowseFlow* flow() const { return flow_; }
  KeyHeldTracker* keys() const { return keys_; }
  core::AppSettings& settings() { return settings_; }
  const QString& settingsFile() const { return iniFile_; }
  const FolderHistory& history() const { return history_; }

  // The key-held test of the browse flow.
  bool KeyHeld() const;
  // "&Reset to Defaults..." without asking.
  void ResetToDefaults();
  int settingsSaveCount() const { return saveCount_; }

 Q_SIGNALS:
  // A fill started by the browse flow has ended (`aborted`: stopped early).
  void ListFilled(const QString& folder, bool aborted);
  // Refresh the visible info tab for `file`; the tabs' features listen here.
  void InfoRefresh(const QString& file, int tab);
  // Settings were written at exit (`ok` false: the write failed).
  void SettingsSaved(bool ok);

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildUi();
  void ConnectMenus();
  void ApplySettings();
  void CollectSettings();
  void SaveSettingsOnce();
  void FillList(const QString& folder);
  void RunFill(int mode, const QString& folder);
  void ShowFolderInfo(const QString& folder);
  void UpdateSortMenu();
  void UpdateHistoryMenu();
  void GoToFolder(const QString& folder);
  void ShowAbout();
  void ShowTreePopup(const QString& path, const QPoint& globalPos);
  void OpenFromList(const QString& path);
  void ChooseSizeFormat(int option);
  void ChooseDateStyle(int style);
  void ChooseTimeStyle(int style);
  void CloseRetryTick();
  core::ModeRecord& Record() { return settings_.lists[size_t(mode_)]; }

  StartOptions options_;
  QString iniFile_;
  core::CProfile profile_;
  core::DefaultsContext defaults_;
  core::AppSettings settings_;
  qint16 mode_ = 0;

  CRellTree* tree_ = nullptr;
  CRellList* list_ = nullptr;
  CTabCtrl* tabs_ = nullptr;
  StatusLine* status_ = nullptr;
  QSplitter* splitMain_ = nullptr;   // tree | list
  QSplitter* splitPanel_ = nullptr;  // tree and list / info panel
  MainMenus* menus_ = nullptr;
  FindRunner* finder_ = nullptr;
  BrowseFlow* flow_ = nullptr;
  KeyHeldTracker* keys_ = nullptr;
  QTimer* tmrCloseRetry = nullptr;
  FolderHistory history_;
  std::function<void(const QString&)> autoFind_;

  QString listFolder_;  // the folder the list shows ("" for the drives)
  bool closePending_ = false;
  bool finalClose_ = false;
  bool settingsSaved_ = false;
  bool resetPending_ = false;  // a reset waits for the running job
  int saveCount_ = 0;
};

}  // namespace browser
