#pragma once
#include <QObject>
#include <QString>
#include <QStringList>

class QAction;
class QMimeData;

namespace browser {

class frmMain;

// Puts the file operations into the main window: the File menu's new
// items, clipboard, delete, backup, folder structure and the Copy To / Move
// To favourites; the list's drops; each through the file-operation engine
// with its progress dialog, refreshing the list once at the end.
class FileOpsRunner : public QObject {
  Q_OBJECT
 public:
  explicit FileOpsRunner(frmMain* window);

  // Copies or moves into `target` (the list's folder when empty); true when the job ran.
  bool Transfer(const QStringList& sources, const QString& target, bool move);
  // A drop on list row `hit`: into that row's folder, or the list's folder.
  void DropOnList(const QStringList& paths, Qt::DropAction action, int hit);
  void CopyToClipboard(bool cut);
  void Paste();
  void Delete(bool forGood);
  void NewFolder();
  void NewTextFile();
  void Backup(const QString& destination = QString());
  void CreateFolderStructure(const QString& source = QString());

  // The clipboard contents for a file list: URIs, the desktops' cut marker and plain paths.
  static QMimeData* FileListData(const QStringList& paths, bool cut);
  // The paths on a clipboard file list and whether they were cut.
  static QStringList PathsFromData(const QMimeData* data, bool* cut);

 private:
  QString folder() const;
  void Refresh(const QString& focus);
  void FillFavouriteMenu(bool move);
  QAction* Add(const QString& text, const char* name, const QString& keys);

  frmMain* window_;
  QAction* before_ = nullptr;  // new entries go above the Exit separator
};

}  // namespace browser
