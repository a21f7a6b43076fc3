#include "browser/list/CRellListHeader.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionHeader>

#include "browser/list/CRellList.h"

namespace browser {

namespace {
constexpr int kEdgeGrip = 4;
constexpr int kMinWidth = 8;
}  // namespace

CRellListHeader::CRellListHeader(CRellList* list) : QWidget(list), list_(list) {
  setObjectName(QStringLiteral("CRellListHeader"));
  setMouseTracking(true);
}

void CRellListHeader::setOffset(int x) {
  offset_ = x;
  update();
}

int CRellListHeader::leftOf(int position) const {
  const std::vector<int> columns = list_->model().columns().visibleInOrder();
  int x = list_->lineNumberWidth() - offset_;
  for (int i = 0; i < position && i < int(columns.size()); ++i)
    x += std::max(0, list_->model().columns().column(columns[size_t(i)]).width);
  return x;
}

int CRellListHeader::positionAt(int x) const {
  const std::vector<int> columns = list_->model().columns().visibleInOrder();
  int left = list_->lineNumberWidth() - offset_;
  for (size_t i = 0; i < columns.size(); ++i) {
    const int w = std::max(0, list_->model().columns().column(columns[i]).width);
    if (x >= left && x < left + w) return int(i);
    left += w;
  }
  return -1;
}

int CRellListHeader::edgeAt(int x) const {
  const std::vector<int> columns = list_->model().columns().visibleInOrder();
  int right = list_->lineNumberWidth() - offset_;
  for (size_t i = 0; i < columns.size(); ++i) {
    right += std::max(0, list_->model().columns().column(columns[i]).width);
    if (std::abs(x - right) <= kEdgeGrip) return int(i);
  }
  return -1;
}

void CRellListHeader::paintEvent(QPaintEvent*) {
  QPainter p(this);
  const ListModel& model = list_->model();
  const std::vector<int> columns = model.columns().visibleInOrder();
  int x = list_->lineNumberWidth() - offset_;
  QStyleOptionHeader blank;
  blank.initFrom(this);
  blank.rect = rect();
  style()->drawControl(QStyle::CE_HeaderEmptyArea, &blank, &p, this);
  for (size_t i = 0; i < columns.size(); ++i) {
    const ListColumn& c = model.columns().column(columns[i]);
    const int w = std::max(0, c.width);
    QStyleOptionHeader o;
    o.initFrom(this);
    o.rect = QRect(x, 0, w, height());
    o.section = int(i);
    o.orientation = Qt::Horizontal;
    o.position = QStyleOptionHeader::Middle;
    if (int(i) == pressed_ && !dragging_) o.state |= QStyle::State_Sunken;
    style()->drawControl(QStyle::CE_HeaderSection, &o, &p, this);
    QRect text = o.rect.adjusted(4, 0, -4, 0);
    if (columns[i] == model.sortColumn() && model.rowCount() > 0) {
      // The sort arrow sits at the right end; the caption keeps the rest.
      QStyleOptionHeader arrow = o;
      arrow.sortIndicator = model.sortDescending() ? QStyleOptionHeader::SortDown : QStyleOptionHeader::SortUp;
      arrow.rect = QRect(o.rect.right() - 12, o.rect.center().y() - 3, 8, 7);
      style()->drawPrimitive(QStyle::PE_IndicatorHeaderArrow, &arrow, &p, this);
      text.setRight(text.right() - 12);
    }
    p.setPen(palette().color(QPalette::ButtonText));
    const Qt::Alignment align = (c.rightAligned ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
    p.drawText(text, align, fontMetrics().elidedText(c.caption, Qt::ElideRight, text.width()));
    x += w;
  }
}

void CRellListHeader::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  const int x = int(event->position().x());
  pressX_ = x;
  dragging_ = false;
  resizing_ = edgeAt(x);
  if (resizing_ >= 0) {
    const int column = list_->model().columns().visibleInOrder()[size_t(resizing_)];
    startWidth_ = list_->model().columns().column(column).width;
    return;
  }
  pressed_ = positionAt(x);
  update();
}

void CRellListHeader::mouseMoveEvent(QMouseEvent* event) {
  const int x = int(event->position().x());
  if (resizing_ >= 0) {
    ColumnLayout& layout = list_->model().columns();
    layout.setWidth(layout.visibleInOrder()[size_t(resizing_)], std::max(kMinWidth, startWidth_ + x - pressX_));
    list_->refresh();
    return;
  }
  if (pressed_ >= 0 && (event->buttons() & Qt::LeftButton)) {
    if (list_->styleOption(CRellList::kColumnDrag) && std::abs(x - pressX_) > 4) dragging_ = true;
    return;
  }
  setCursor(edgeAt(x) >= 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
}

void CRellListHeader::mouseReleaseEvent(QMouseEvent* event) {
  const int x = int(event->position().x());
  if (resizing_ >= 0) {
    resizing_ = -1;
    return;
  }
  const int pressed = pressed_;
  pressed_ = -1;
  if (pressed < 0) return;
  ColumnLayout& layout = list_->model().columns();
  const std::vector<int> visible = layout.visibleInOrder();
  if (dragging_) {
    dragging_ = false;
    int target = positionAt(x);
    if (target < 0) target = x < leftOf(0) ? 0 : int(visible.size()) - 1;
    if (target != pressed) {
      // Visible positions to positions in the full display order.
      const std::vector<int>& order = layout.displayOrder();
      const auto from = std::find(order.begin(), order.end(), visible[size_t(pressed)]) - order.begin();
      const auto to = std::find(order.begin(), order.end(), visible[size_t(target)]) - order.begin();
      layout.moveColumn(int(from), int(to));
    }
    list_->refresh();
    return;
  }
  if (positionAt(x) == pressed) list_->sortBy(visible[size_t(pressed)], false);
  update();
}

void CRellListHeader::mouseDoubleClickEvent(QMouseEvent* event) {
  // A double click on a divider fits the column left of it.
  const int edge = edgeAt(int(event->position().x()));
  if (edge >= 0) list_->fitColumn(list_->model().columns().visibleInOrder()[size_t(edge)]);
}

}  // namespace browser
