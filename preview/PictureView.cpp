#include "preview/PictureView.h"

#include <QPainter>

#include "preview/modImgInfo.h"

namespace preview {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("picPreview"));
  setContextMenuPolicy(Qt::CustomContextMenu);
  setMinimumSize(32, 32);
}

void PictureView::setPicture(const QImage& image) {
  picture_ = image;
  update();
}

void PictureView::clear() { setPicture(QImage()); }

void PictureView::setGrid(bool on) {
  grid_ = on;
  update();
}

void PictureView::setBorder(bool on) {
  border_ = on;
  update();
}

QSize PictureView::fitArea() const {
  return QSize(std::max(1, width() - 2 * kMargin), std::max(1, height() - 2 * kMargin));
}

QRect PictureView::pictureRect() const {
  if (picture_.isNull()) return {};
  const QSize size = modImgInfo::FitPreviewSize(picture_.size(), fitArea(), false).shown;
  return QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
}

void PictureView::draw(QPainter& p, const QRect& r) const {
  if (grid_) {
    p.save();
    p.setClipRect(r);
    for (int y = r.top(); y <= r.bottom(); y += kGridCell)
      for (int x = r.left(); x <= r.right(); x += kGridCell) {
        const bool dark = (((x - r.left()) / kGridCell) + ((y - r.top()) / kGridCell)) % 2;
        p.fillRect(QRect(x, y, kGridCell, kGridCell), dark ? QColor(0xCC, 0xCC, 0xCC) : QColor(Qt::white));
      }
    p.restore();
  }
  p.setRenderHint(QPainter::SmoothPixmapTransform, r.size() != picture_.size());
  p.drawImage(r, picture_);
  if (border_) {
    p.setPen(palette().color(QPalette::WindowText));
    p.setBrush(Qt::NoBrush);
    p.drawRect(r.adjusted(-1, -1, 0, 0));
  }
}

QImage PictureView::shownImage() const {
  if (picture_.isNull()) return {};
  const QRect r = pictureRect();
  const int m = border_ ? 1 : 0;
  QImage out(r.size() + QSize(2 * m, 2 * m), QImage::Format_ARGB32_Premultiplied);
  out.fill(Qt::transparent);
  QPainter p(&out);
  draw(p, QRect(QPoint(m, m), r.size()));
  return out;
}

void PictureView::paintEvent(QPaintEvent*) {
  QPainter p(this);
  if (!picture_.isNull()) draw(p, pictureRect());
}

void PictureView::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  Q_EMIT Resized();
}

}  // namespace preview
