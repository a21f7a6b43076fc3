#include "preview/MediaPane.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <QVideoFrame>
#include <QVideoSink>

namespace preview {

VideoArea::VideoArea(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("picVideo"));
  setMinimumSize(80, 60);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QVideoSink* VideoArea::sink() {
  if (!sink_) {
    sink_ = new QVideoSink(this);
    connect(sink_, &QVideoSink::videoFrameChanged, this, &VideoArea::frameArrived);
  }
  return sink_;
}

QString VideoArea::handle() const { return QString::number(reinterpret_cast<quintptr>(this)); }

void VideoArea::place(const QRect& rect) {
  // A picture placed over the whole host keeps filling it when the host grows.
  target_ = rect == QRect(QPoint(0, 0), size()) ? QRect() : rect;
  update();
}

void VideoArea::clear() {
  frame_ = QImage();
  target_ = QRect();
  update();
}

void VideoArea::frameArrived(const QVideoFrame& frame) {
  if (!frame.isValid()) return;
  frame_ = frame.toImage();
  update();
}

void VideoArea::paintEvent(QPaintEvent*) {
  QPainter p(this);
  p.fillRect(rect(), Qt::black);
  if (frame_.isNull()) return;
  const QRect target = target_.isValid() ? target_ : rect();
  p.setRenderHint(QPainter::SmoothPixmapTransform);
  p.drawImage(target, frame_);
}

ProgressBox::ProgressBox(QWidget* parent) : QFrame(parent), imgProg_(new QWidget(this)) {
  setObjectName(QStringLiteral("picProg"));
  imgProg_->setObjectName(QStringLiteral("imgProg"));
  imgProg_->installEventFilter(this);
  setFrameShape(QFrame::StyledPanel);
  setFixedHeight(14);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void ProgressBox::setFraction(double f) {
  fraction_ = f;
  update();
}

void ProgressBox::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  imgProg_->setGeometry(rect());
}

void ProgressBox::paintEvent(QPaintEvent* event) {
  QFrame::paintEvent(event);
  if (fraction_ <= 0) return;
  QPainter p(this);
  // From the left edge to f x width less one pixel, over the height less three.
  const int w = int(std::min(fraction_, 1.0) * width()) - 1;
  if (w > 0) p.fillRect(QRect(1, 1, w, height() - 3), palette().color(QPalette::Highlight));
}

bool ProgressBox::eventFilter(QObject* watched, QEvent* event) {
  if (watched == imgProg_ &&
      (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)) {
    const auto* me = static_cast<QMouseEvent*>(event);
    Q_EMIT barMouse(me->button() == Qt::LeftButton, me->position().x(), imgProg_->width());
    return true;
  }
  return QFrame::eventFilter(watched, event);
}

MediaPane::MediaPane(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("MediaPane"));
  picVideo = new VideoArea(this);
  picProg = new ProgressBox(this);
  lblWav = new QLabel(this);
  lblWav->setObjectName(QStringLiteral("lblWav"));
  lblFormat = new QLabel(this);
  lblFormat->setObjectName(QStringLiteral("lblFormat"));
  cboTrack = new QComboBox(this);
  cboTrack->setObjectName(QStringLiteral("cboTrack"));
  cboTrack->setVisible(false);
  lblMediaStatus = new QLabel(this);
  lblMediaStatus->setObjectName(QStringLiteral("lblMediaStatus"));
  lblMediaStatus->setVisible(false);

  auto* row = new QHBoxLayout;
  row->addWidget(lblWav);
  row->addWidget(cboTrack);
  row->addStretch(1);
  row->addWidget(lblFormat);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(lblMediaStatus);
  layout->addWidget(picVideo, 1);
  layout->addWidget(picProg);
  layout->addLayout(row);
}

void MediaPane::reset() {
  picVideo->clear();
  picProg->setFraction(0);
  lblWav->clear();
  lblFormat->clear();
  cboTrack->blockSignals(true);
  cboTrack->clear();
  cboTrack->blockSignals(false);
  cboTrack->setVisible(false);
}

void MediaPane::showStatus(int code) {
  static const char* const texts[] = {"", "Loading...", "Cannot decode.",
                                      "File type excluded from preview in configuration."};
  const bool shown = code >= 1 && code <= 3;
  lblMediaStatus->setText(shown ? QString::fromLatin1(texts[code]) : QString());
  lblMediaStatus->setVisible(shown);
}

}  // namespace preview
