#pragma once
#include <QObject>
#include <QStringList>
#include <vector>

#include "fileops/RenameSpecial.h"

class QAction;

namespace browser {

class frmMain;

// Puts the batch renamer into the main window: the File menu's "R&ename
// Special" entries run on the list's selection in display order after a
// confirmation, "&Undo Rename Special" puts the last batch back; each batch
// goes to the undo log beside the settings file. The list is filled once
// afterwards, with the selection on the same entries under their new names.
class RenameRunner : public QObject {
  Q_OBJECT
 public:
  explicit RenameRunner(frmMain* window);

  // Runs transformation `index` (the caption's position) on the selection.
  void Run(int index);
  void Undo();

 private:
  // Renames the batch, reports, refreshes; `selection` holds the paths to select after.
  void Execute(std::vector<fileops::RenameItem>* items, QStringList selection, const QString& title);

  frmMain* window_;
  QAction* menRenUndo_ = nullptr;
  std::vector<fileops::RenameItem> last_;  // the last batch's items, done ones to undo
};

}  // namespace browser
