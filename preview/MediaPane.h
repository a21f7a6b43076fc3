#pragma once
#include <QFrame>
#include <QImage>
#include <QRect>
#include <QWidget>

class QComboBox;
class QLabel;
class QVideoFrame;
class QVideoSink;

namespace preview {

// The picture host for video: frames from its sink, painted into the
// rectangle the device was told ("put ... window at"), black around.
class VideoArea : public QWidget {
  Q_OBJECT
 public:
  explicit VideoArea(QWidget* parent = nullptr);
  // Made on first use: the media framework starts with it.
  QVideoSink* sink();
  QString handle() const;
  void place(const QRect& rect);
  void clear();
  const QImage& lastFrame() const { return frame_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void frameArrived(const QVideoFrame& frame);

  QVideoSink* sink_ = nullptr;
  QImage frame_;
  QRect target_;
};

// The progress bar: `picProg` draws the filled part; `imgProg` lies over it
// and takes the mouse.
class ProgressBox : public QFrame {
  Q_OBJECT
 public:
  explicit ProgressBox(QWidget* parent = nullptr);
  void setFraction(double f);
  double fraction() const { return fraction_; }

 Q_SIGNALS:
  // A press or double click on imgProg: left button or not, x from the left edge, the width.
  void barMouse(bool left, double x, double width);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* imgProg_;
  double fraction_ = 0;
};

// The media player page of the "Preview" tab: video area, progress bar,
// position/length label `lblWav`, format label `lblFormat`, track combo
// `cboTrack` (audio CD only) and a status label for standalone use.
class MediaPane : public QWidget {
  Q_OBJECT
 public:
  explicit MediaPane(QWidget* parent = nullptr);

  VideoArea* picVideo;
  ProgressBox* picProg;
  QLabel* lblWav;
  QLabel* lblFormat;
  QComboBox* cboTrack;
  QLabel* lblMediaStatus;

  void reset();
  void showStatus(int code);
};

}  // namespace preview
