#pragma once
#include <QObject>
#include <QString>

namespace preview {
class MediaController;
}

namespace browser {

class frmMain;

// Plays the selected media file on the "Preview" tab: while that tab is
// shown, each file the selection settles on is stopped-and-replaced there.
class MediaRunner : public QObject {
  Q_OBJECT
 public:
  explicit MediaRunner(frmMain* window);
  preview::MediaController* controller() const { return controller_; }

 private:
  void refresh(const QString& file, int tab);

  frmMain* window_;
  preview::MediaController* controller_;
  QString file_;   // the selection
  QString shown_;  // what the tab last previewed
};

}  // namespace browser
