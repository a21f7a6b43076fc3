#pragma once
#include <QObject>
#include <QString>

namespace preview {
class FileViewTab;
}

namespace browser {

class frmMain;

// Puts the "File View" tab into the main window and loads the selected file
// into it when the info panel is refreshed with that tab showing, or when the
// tab is brought up on a file it has not shown yet.
class FileViewRunner : public QObject {
  Q_OBJECT
 public:
  explicit FileViewRunner(frmMain* window);
  preview::FileViewTab* tab() const { return tab_; }

 private:
  frmMain* window_;
  preview::FileViewTab* tab_;
  QString current_;  // the file the panel was last refreshed for
  QString shown_;    // the file the tab was last asked to show
};

}  // namespace browser
