#pragma once
#include <QWidget>

namespace browser {

class CRellList;

// The header row of CRellList: click to sort, drag a caption to reorder
// (when "Column Drag" is on), drag an edge to resize.
class CRellListHeader : public QWidget {
  Q_OBJECT

 public:
  explicit CRellListHeader(CRellList* list);
  void setOffset(int x);
  int offset() const { return offset_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  // Display position under x (content coordinates), -1 past the last column.
  int positionAt(int x) const;
  // Display position whose right edge is near x, -1 if none.
  int edgeAt(int x) const;
  int leftOf(int position) const;

  CRellList* list_;
  int offset_ = 0;
  int pressed_ = -1;
  int resizing_ = -1;
  int pressX_ = 0;
  int startWidth_ = 0;
  bool dragging_ = false;
};

}  // namespace browser
