#pragma once
#include <QWidget>
#include <vector>

namespace preview {

class FileViewDocument;

// The viewer's drawing area (`picFileView`): draws the visible lines of a
// document, one at a time, with an optional line-number gutter and wrap;
// whole lines are selected with the mouse and the keys.
class FileViewArea : public QWidget {
  Q_OBJECT
 public:
  explicit FileViewArea(QWidget* parent = nullptr);

  void setDocument(const FileViewDocument* doc);  // resets scrolling and selection
  void setLineNumbers(bool on);
  void setWrap(bool on);

  qint64 topLine() const { return top_; }
  void setTopLine(qint64 line);
  qint64 firstColumn() const { return column_; }
  void setFirstColumn(qint64 column);
  // Lines that fit the area below the header.
  int pageLines() const;
  int pageColumns() const;

  std::vector<qint64> selectedLines() const;
  bool isSelected(qint64 line) const { return line >= 0 && line < qint64(selected_.size()) && selected_[size_t(line)]; }
  void selectAll();
  qint64 focusLine() const { return focus_; }
  // Lines formatted by the last paint, for tests of the paging cost.
  int linesFormattedLastPaint() const { return formatted_; }

 Q_SIGNALS:
  void scrolled();        // top line or first column changed
  void copyRequested();   // Ctrl+C

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  qint64 lineAt(int y) const;
  int gutterWidth() const;
  void moveFocus(qint64 line, Qt::KeyboardModifiers modifiers);
  void selectRange(qint64 a, qint64 b);
  void ensureVisible(qint64 line);

  const FileViewDocument* doc_ = nullptr;
  std::vector<bool> selected_;
  qint64 top_ = 0, column_ = 0, focus_ = 0, anchor_ = 0;
  bool lineNumbers_ = false, wrap_ = false;
  int formatted_ = 0;
};

}  // namespace preview
