#pragma once
#include <QObject>
#include <QString>
#include <QStringList>

namespace find {
class FindFilesTab;
}

namespace browser {

class frmMain;

// Puts the "Find Files" tab into the main window and runs its finds: builds
// the criteria from the tab ("F&ind Now", or the folder selected in the tree
// while automatic find is on), refuses bad criteria with their message
// before the list is touched, and walks with the list in Find mode.
class FindRunner : public QObject {
  Q_OBJECT
 public:
  explicit FindRunner(frmMain* window);

  find::FindFilesTab* tab() const { return tab_; }
  // The tab's values to and from the settings record.
  void LoadValues();
  void StoreValues();

  // Runs a find over the tab's criteria; `folder` replaces "Look in" when
  // given. False when the criteria were refused or a job is running.
  bool RunFind(const QString& folder = QString());
  // Offers in "Look in" the tree's root, the folder shown, the volumes and
  // the recent locations.
  void UpdateLookIn();

 private:
  frmMain* window_;
  find::FindFilesTab* tab_;
  QStringList recent_;  // "Look in" of the finds run, newest first
};

}  // namespace browser
