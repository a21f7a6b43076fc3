#pragma once
#include <QImage>
#include <QWidget>

namespace preview {

// The picture of the "Preview" tab: drawn centred at the size it was decoded
// for, optionally over a grid (so that transparent parts show) and inside a
// border.
class PictureView : public QWidget {
  Q_OBJECT
 public:
  static constexpr int kMargin = 2;  // room for the border on every side
  static constexpr int kGridCell = 8;

  explicit PictureView(QWidget* parent = nullptr);

  void setPicture(const QImage& image);
  void clear();
  const QImage& picture() const { return picture_; }
  void setGrid(bool on);
  void setBorder(bool on);
  // The area pictures are fitted to.
  QSize fitArea() const;
  // Where the picture is drawn; a picture decoded for a larger area than
  // the present one is drawn reduced until it is decoded again.
  QRect pictureRect() const;
  // The picture as it is shown, with grid and border.
  QImage shownImage() const;

 Q_SIGNALS:
  void Resized();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void draw(QPainter& p, const QRect& target) const;

  QImage picture_;
  bool grid_ = false;
  bool border_ = false;
};

}  // namespace preview
