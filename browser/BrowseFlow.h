#pragma once
#include <QObject>
#include <QString>
#include <functional>

class QTimer;

namespace browser {

// Turns folder selections in the tree into list fills and file selections in
// the list into info-panel refreshes, without flooding the machine while the
// user moves through either with a held key. A mouse selection fills at once
// when nothing runs; a keyboard selection, or any selection while a job runs,
// asks the job to stop and leaves the fill to the 25 ms browse timer, which
// fills only once nothing runs and no key is held.
class BrowseFlow : public QObject {
  Q_OBJECT
 public:
  static constexpr int kDelayMs = 25;

  explicit BrowseFlow(QObject* parent = nullptr);

  // The key-held test; without one no key counts as held.
  void setKeyHeldTest(std::function<bool()> test) { keyHeld_ = std::move(test); }
  // The current list mode (core::ListMode), asked at each selection.
  void setModeSource(std::function<int()> mode) { mode_ = std::move(mode); }
  // Tools menu "&Automatic File Find when Browsing".
  void setAutoFind(bool on) { autoFind_ = on; }
  bool autoFind() const { return autoFind_; }
  // When off, a mouse selection does not fill the list.
  void setFillListOnSelect(bool on) { fillOnSelect_ = on; }
  bool fillListOnSelect() const { return fillOnSelect_; }

  const QString& currentFolder() const { return current_; }
  const QString& previousFolder() const { return previous_; }
  // Whether the last selection named the folder of the last fill.
  bool sameAsPrevious() const { return sameAsPrevious_; }
  const QString& selectedFile() const { return file_; }
  bool selectedFileImmediate() const { return fileImmediate_; }
  const QString& selectedDrive() const { return drive_; }

  QTimer* browseTimer() const { return tmrBrowse; }
  QTimer* versionTimer() const { return tmrVersionDelay; }

 public Q_SLOTS:
  // The tree's FolderSelected event.
  void FolderSelected(const QString& folder, bool byKeyboard);
  // The list's FileSelected event.
  void FileSelected(const QString& path, bool immediate);
  // Fills the list for the current folder now (start-up, refresh).
  void FillCurrent();
  // A fill asked for while a job runs: stops the job and leaves the fill of
  // the current folder to the browse timer.
  void DeferFill();
  // The next selection of the same file refreshes again (after a refill).
  void ForgetFile() { file_.clear(); }

 Q_SIGNALS:
  // Runs the fill for `folder`; connected directly, it returns when the fill has ended.
  void FillRequested(const QString& folder);
  // Refresh the visible info tab for `file`.
  void RefreshInfo(const QString& file);

 private:
  void BrowseTick();
  void VersionTick();
  bool KeyHeld() const { return keyHeld_ && keyHeld_(); }
  int Mode() const;

  QTimer* tmrBrowse;
  QTimer* tmrVersionDelay;
  std::function<bool()> keyHeld_;
  std::function<int()> mode_;
  QString current_;
  QString previous_;
  QString file_;
  QString drive_;
  bool sameAsPrevious_ = false;
  bool fileImmediate_ = false;
  bool autoFind_ = false;
  bool fillOnSelect_ = true;
};

}  // namespace browser
