#pragma once
#include <QObject>
#include <QString>

namespace fileinfo {
class VersionTab;
}

namespace browser {

class frmMain;

// Puts the "Version" tab into the main window and keeps it on the selected
// file: refreshed by the window's delayed info refresh while the tab is
// visible, and when the tab is brought up on a file it has not shown yet.
// Faults of the reader go to the status line.
class VersionRunner : public QObject {
  Q_OBJECT
 public:
  explicit VersionRunner(frmMain* window);

  fileinfo::VersionTab* tab() const { return tab_; }

 private:
  void Refresh(const QString& file);
  void Copy(int index);

  frmMain* window_;
  fileinfo::VersionTab* tab_;
  QString pending_;  // the file selected last
};

}  // namespace browser
