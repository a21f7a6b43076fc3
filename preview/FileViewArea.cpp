#include "preview/FileViewArea.h"

#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

#include "preview/FileViewDocument.h"

namespace preview {

FileViewArea::FileViewArea(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("picFileView"));
  setFocusPolicy(Qt::StrongFocus);
  setAutoFillBackground(true);
  setBackgroundRole(QPalette::Base);
}

void FileViewArea::setDocument(const FileViewDocument* doc) {
  doc_ = doc;
  selected_.assign(doc ? size_t(doc->lineCount()) : 0, false);
  top_ = column_ = focus_ = anchor_ = 0;
  update();
  Q_EMIT scrolled();
}

void FileViewArea::setLineNumbers(bool on) {
  lineNumbers_ = on;
  update();
}

void FileViewArea::setWrap(bool on) {
  wrap_ = on;
  column_ = 0;
  update();
  Q_EMIT scrolled();
}

void FileViewArea::setTopLine(qint64 line) {
  const qint64 count = doc_ ? doc_->lineCount() : 0;
  line = std::clamp<qint64>(line, 0, std::max<qint64>(0, count - 1));
  if (line == top_) return;
  top_ = line;
  update();
  Q_EMIT scrolled();
}

void FileViewArea::setFirstColumn(qint64 column) {
  column = std::max<qint64>(0, column);
  if (column == column_) return;
  column_ = column;
  update();
  Q_EMIT scrolled();
}

int FileViewArea::pageLines() const {
  const int header = doc_ && doc_->hasHeader() ? 1 : 0;
  return std::max(1, height() / fontMetrics().height() - header);
}

int FileViewArea::pageColumns() const {
  return std::max(1, (width() - gutterWidth()) / std::max(1, fontMetrics().horizontalAdvance(QLatin1Char('0'))));
}

int FileViewArea::gutterWidth() const {
  if (!lineNumbers_ || !doc_) return 0;
  const int digits = int(QString::number(doc_->lineCount()).size());
  return fontMetrics().horizontalAdvance(QLatin1Char('0')) * (digits + 1);
}

void FileViewArea::paintEvent(QPaintEvent*) {
  QPainter p(this);
  formatted_ = 0;
  if (!doc_ || doc_->mode() == kViewNone) return;
  const QFontMetrics fm = fontMetrics();
  const int h = fm.height(), charW = std::max(1, fm.horizontalAdvance(QLatin1Char('0')));
  const int gutter = gutterWidth();
  const int columns = pageColumns();
  int y = 0;
  if (doc_->hasHeader()) {
    p.setPen(palette().color(QPalette::PlaceholderText));
    p.drawText(gutter, y + fm.ascent(), doc_->headerLine(top_).mid(wrap_ ? 0 : column_));
    y += h;
  }
  for (qint64 n = top_; n < doc_->lineCount() && y < height(); ++n) {
    // Only what fits is read: a slice of a long line, a few rows of a wrapped one.
    const qint64 rowsLeft = (height() - y + h - 1) / h;
    const QString text = wrap_ ? doc_->line(n, 0, qint64(columns) * rowsLeft) : doc_->line(n, column_, columns + 1);
    ++formatted_;
    const int rows = wrap_ ? std::max<int>(1, int((text.size() + columns - 1) / columns)) : 1;
    const bool selected = isSelected(n);
    if (selected) p.fillRect(0, y, width(), rows * h, palette().color(QPalette::Highlight));
    if (gutter) {
      p.setPen(palette().color(selected ? QPalette::HighlightedText : QPalette::PlaceholderText));
      p.drawText(0, y + fm.ascent(), QString::number(n + 1));
    }
    p.setPen(palette().color(selected ? QPalette::HighlightedText : QPalette::Text));
    for (int r = 0; r < rows && y < height(); ++r, y += h)
      p.drawText(gutter, y + fm.ascent(), wrap_ ? text.mid(qsizetype(r) * columns, columns) : text);
    if (n == focus_ && hasFocus()) {
      p.setPen(QPen(palette().color(QPalette::Text), 1, Qt::DotLine));
      p.drawRect(0, y - rows * h, width() - 1, rows * h - 1);
    }
  }
  Q_UNUSED(charW);
}

qint64 FileViewArea::lineAt(int y) const {
  if (!doc_) return -1;
  const int h = fontMetrics().height();
  const int header = doc_->hasHeader() ? h : 0;
  if (y < header) return -1;
  // With wrap a line may take several rows: walk down from the top.
  if (wrap_) {
    const int columns = pageColumns();
    int at = header;
    for (qint64 n = top_; n < doc_->lineCount(); ++n) {
      const int rows = std::max<int>(1, int((doc_->line(n, 0, qint64(columns) * 64).size() + columns - 1) / columns));
      at += rows * h;
      if (y < at) return n;
    }
    return -1;
  }
  const qint64 n = top_ + (y - header) / h;
  return n < doc_->lineCount() ? n : -1;
}

void FileViewArea::selectRange(qint64 a, qint64 b) {
  std::fill(selected_.begin(), selected_.end(), false);
  for (qint64 n = std::min(a, b); n <= std::max(a, b) && n < qint64(selected_.size()); ++n) selected_[size_t(n)] = true;
}

void FileViewArea::selectAll() {
  std::fill(selected_.begin(), selected_.end(), true);
  update();
}

std::vector<qint64> FileViewArea::selectedLines() const {
  std::vector<qint64> out;
  for (size_t n = 0; n < selected_.size(); ++n)
    if (selected_[n]) out.push_back(qint64(n));
  return out;
}

void FileViewArea::ensureVisible(qint64 line) {
  if (line < top_) setTopLine(line);
  else if (line >= top_ + pageLines()) setTopLine(line - pageLines() + 1);
}

void FileViewArea::moveFocus(qint64 line, Qt::KeyboardModifiers modifiers) {
  if (!doc_ || doc_->lineCount() == 0) return;
  line = std::clamp<qint64>(line, 0, doc_->lineCount() - 1);
  focus_ = line;
  if (modifiers & Qt::ShiftModifier) selectRange(anchor_, line);
  else if (!(modifiers & Qt::ControlModifier)) {
    anchor_ = line;
    selectRange(line, line);
  }
  ensureVisible(line);
  update();
}

void FileViewArea::keyPressEvent(QKeyEvent* event) {
  if (!doc_) return QWidget::keyPressEvent(event);
  const Qt::KeyboardModifiers m = event->modifiers();
  if (event->matches(QKeySequence::SelectAll)) return selectAll();
  if (event->matches(QKeySequence::Copy)) return Q_EMIT copyRequested();
  const qint64 page = std::max(1, pageLines() - 1);
  switch (event->key()) {
    case Qt::Key_Up: return moveFocus(focus_ - 1, m);
    case Qt::Key_Down: return moveFocus(focus_ + 1, m);
    case Qt::Key_PageUp: return moveFocus(focus_ - page, m);
    case Qt::Key_PageDown: return moveFocus(focus_ + page, m);
    case Qt::Key_Home: return moveFocus(0, m);
    case Qt::Key_End: return moveFocus(doc_->lineCount() - 1, m);
    case Qt::Key_Left: return setFirstColumn(column_ - 8);
    case Qt::Key_Right: return setFirstColumn(column_ + 8);
    case Qt::Key_Space:
      if (m & Qt::ControlModifier && focus_ < qint64(selected_.size())) {
        selected_[size_t(focus_)] = !selected_[size_t(focus_)];
        update();
      }
      return;
    default: QWidget::keyPressEvent(event);
  }
}

void FileViewArea::mousePressEvent(QMouseEvent* event) {
  setFocus();
  const qint64 n = lineAt(int(event->position().y()));
  if (n < 0 || event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  if (event->modifiers() & Qt::ControlModifier) {
    selected_[size_t(n)] = !selected_[size_t(n)];
    focus_ = anchor_ = n;
    update();
    return;
  }
  moveFocus(n, event->modifiers() & Qt::ShiftModifier);
}

void FileViewArea::mouseMoveEvent(QMouseEvent* event) {
  if (!(event->buttons() & Qt::LeftButton)) return;
  const int y = int(event->position().y());
  if (y < 0) setTopLine(top_ - 1);
  else if (y >= height()) setTopLine(top_ + 1);
  const qint64 n = lineAt(std::clamp(y, 0, height() - 1));
  if (n >= 0) moveFocus(n, Qt::ShiftModifier);
}

void FileViewArea::wheelEvent(QWheelEvent* event) {
  const int steps = event->angleDelta().y() / 40;
  if (steps) setTopLine(top_ - steps);
}

}  // namespace preview
