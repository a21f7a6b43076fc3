#pragma once
#include <QObject>
#include <QString>

namespace preview {
class ImagePane;
class MediaController;
class PreviewTab;
}  // namespace preview

namespace browser {

class frmMain;

// The "Preview" tab: while it is shown, each file the selection settles on
// is previewed there, a media file on the player page (the one playing is
// stopped and replaced), any other on the picture page.
class PreviewRunner : public QObject {
  Q_OBJECT
 public:
  explicit PreviewRunner(frmMain* window);
  preview::MediaController* controller() const { return controller_; }
  preview::PreviewTab* tab() const { return tab_; }
  preview::ImagePane* image() const;

 private:
  void refresh(const QString& file, int tab);

  frmMain* window_;
  preview::MediaController* controller_;
  preview::PreviewTab* tab_;
  QString file_;   // the selection
  QString shown_;  // what the tab last previewed
};

}  // namespace browser
