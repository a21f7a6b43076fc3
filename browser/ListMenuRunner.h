#pragma once
#include <QObject>
#include <QPoint>
#include <QString>

class QAction;
class QMenu;

namespace browser {

class frmMain;

// The list's own file commands: "&Open", "Rena&me", "P&roperties" and
// "Copy &Info" at the top of the File menu; the inline rename (F2) through
// the no-clobber rename; and the list's right-click menu, made of the File
// menu's actions for what was hit (or for the folder, on empty space).
class ListMenuRunner : public QObject {
  Q_OBJECT
 public:
  explicit ListMenuRunner(frmMain* window);

  // The list's QueryRename: renames, or shows why not and refuses.
  void Rename(const QString& path, const QString& newName, bool* accept);
  // The list's QueryPopup. Builds the menu into `menu` (tests look at it);
  // Popup shows it.
  void BuildPopup(QMenu* menu, int hit);
  void Popup(int hit, const QPoint& globalPos);

  QAction* menOpen;
  QAction* menRename;
  QAction* menProperties;

 private:
  QAction* Action(const char* name) const;
  void UpdateActions();
  void ShowProperties();

  frmMain* window_;
};

}  // namespace browser
