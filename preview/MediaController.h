#pragma once
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <memory>

#include "preview/MediaPane.h"
#include "preview/modMCIsnd.h"

class QTimer;
class QWidget;

namespace preview {

class MciDevice;

// Plays the selected media file in a MediaPane: opens it through the media
// session, shows the format and length, runs the progress timer `tmrSound`
// and passes the mouse on the bar and the track combo to the session.
class MediaController : public QObject {
  Q_OBJECT
 public:
  explicit MediaController(QObject* parent = nullptr);
  ~MediaController() override;

  MediaPane* pane() const { return pane_; }
  modMCIsnd::MediaSession& session() { return *session_; }
  MciDevice* device() const { return device_; }
  QTimer* tmrSound() const { return tmrSound_; }

  // Stops and closes what plays, then previews `file`; true when it is a
  // media file (the pane is to be shown rather than a picture).
  bool Preview(const QString& file);
  void Stop();
  // Where the preview status codes go; the pane's own label by default.
  void setStatusHandler(std::function<void(int)> status);

 private:
  void tick();
  void barMouse(bool left, double x, double width);

  MciDevice* device_;
  std::unique_ptr<modMCIsnd::MediaSession> session_;
  // The tab that shows the pane owns it and may delete it first.
  QPointer<MediaPane> pane_;
  QTimer* tmrSound_;
  bool videoWired_ = false;
};

}  // namespace preview
