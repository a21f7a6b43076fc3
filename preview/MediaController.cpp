#include "preview/MediaController.h"

#include <QComboBox>
#include <QLabel>
#include <QMessageBox>
#include <QTimer>

#include "preview/MciDevice.h"
#include "preview/MediaPane.h"

namespace preview {

MediaController::MediaController(QObject* parent)
    : QObject(parent), device_(new MciDevice(this)), pane_(new MediaPane), tmrSound_(new QTimer(this)) {
  session_ = std::make_unique<modMCIsnd::MediaSession>(device_);
  tmrSound_->setObjectName(QStringLiteral("tmrSound"));
  tmrSound_->setInterval(50);
  connect(tmrSound_, &QTimer::timeout, this, &MediaController::tick);

  QPointer<VideoArea> video = pane_->picVideo;
  modMCIsnd::MediaHost host;
  host.visible = [video] { return video && video->isVisible(); };
  host.windowHandle = [video] { return video ? video->handle() : QString(); };
  host.size = [video] { return video ? video->size() : QSize(); };
  host.busy = [video](bool on) {
    if (!video) return;
    if (on) video->setCursor(Qt::WaitCursor);
    else video->unsetCursor();
  };
  host.videoClosed = [video] {
    if (!video) return;
    video->clear();
    video->window()->activateWindow();
  };
  session_->setHost(host);
  session_->setErrorBox([this](const QString& title, const QString& text) {
    QMessageBox::critical(pane_.data(), title, text);
  });
  setStatusHandler(nullptr);

  connect(pane_->picProg, &ProgressBox::barMouse, this, &MediaController::barMouse);
  connect(pane_->cboTrack, &QComboBox::activated, this, [this](int index) {
    session_->TrackChosen(index);
    tmrSound_->start();
  });
}

MediaController::~MediaController() {
  tmrSound_->stop();
  session_->StopMedia(false);
  // The pane belongs to whoever shows it; unshown, it is ours.
  if (pane_ && !pane_->parent()) delete pane_.data();
}

void MediaController::setStatusHandler(std::function<void(int)> status) {
  if (!status) status = [this](int code) {
      if (pane_) pane_->showStatus(code);
    };
  session_->setStatusHandler(std::move(status));
}

bool MediaController::Preview(const QString& file) {
  Stop();
  if (!pane_) return false;
  pane_->reset();
  if (!videoWired_) {
    // The media framework starts here, not with the window.
    QPointer<VideoArea> video = pane_->picVideo;
    device_->SetVideoWindow(video->handle(), video->sink(), [video](const QRect& r) {
      if (video) video->place(r);
    });
    videoWired_ = true;
  }
  if (!session_->PreviewMedia(file)) return false;
  if (session_->mediaClass() == modMCIsnd::kNoMedia) return true;
  pane_->lblFormat->setText(session_->FormatLabel());
  pane_->lblWav->setText(session_->LengthText());
  const QStringList tracks = session_->TrackNames();
  if (!tracks.isEmpty()) {
    pane_->cboTrack->addItems(tracks);
    pane_->cboTrack->setVisible(true);
  }
  tmrSound_->start();
  return true;
}

void MediaController::Stop() {
  tmrSound_->stop();
  session_->StopMedia(false);
}

void MediaController::tick() {
  if (!pane_) {
    Stop();
    return;
  }
  const modMCIsnd::Progress p = session_->Tick();
  if (p.fill) pane_->picProg->setFraction(p.fraction);
  pane_->lblWav->setText(p.label);
  if (p.track > 0 && p.track <= pane_->cboTrack->count()) {
    pane_->cboTrack->blockSignals(true);
    pane_->cboTrack->setCurrentIndex(p.track - 1);
    pane_->cboTrack->blockSignals(false);
  }
  if (p.finished) tmrSound_->stop();
}

void MediaController::barMouse(bool left, double x, double width) {
  switch (session_->BarMouse(left, x, width)) {
    case modMCIsnd::BarAction::kStopTimer: tmrSound_->stop(); break;
    case modMCIsnd::BarAction::kStartTimer: tmrSound_->start(50); break;
    case modMCIsnd::BarAction::kNone: break;
  }
}

}  // namespace preview
