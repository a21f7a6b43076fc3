#pragma once
#include <QAbstractScrollArea>
#include <QColor>
#include <QPoint>
#include <QString>
#include <QStringList>
#include <memory>

#include "browser/list/ListFill.h"
#include "browser/list/ListModel.h"
#include "core/ListModes.h"

class QLineEdit;

namespace browser {

class CRellListHeader;

// The program's owner-drawn file list: paints only the visible rows of its
// ListModel, keeps its own header and scroll bars, and tells its owner what
// happens through the signals below. It does no file I/O of its own: fills go
// through ListFill, renames and drops are the owner's.
class CRellList : public QAbstractScrollArea {
  Q_OBJECT

 public:
  // The Style List options, as bits in menu order.
  enum StyleOption : int {
    kShowIcons = 1,
    kColumnDrag = 2,
    kMultiSelect = 4,
    kHighlightRow = 8,
    kLineNumbers = 16,
    kAutoWidth = 32,  // "Column Width Auto-Adjustment"
  };

  explicit CRellList(QWidget* parent = nullptr);
  ~CRellList() override;

  ListModel& model() { return model_; }
  const ListModel& model() const { return model_; }

  // Switches mode: columns from the mode's definition, then the record's
  // layout, formats and sort order. Clears the rows.
  void setMode(int mode, const core::ModeRecord& record);
  void setFormats(int sizeFormat, int dateStyle, int timeStyle);

  // The fill dispatcher: fills, sorts with the direction kept, raises the
  // status signals and redraws.
  FillResult fillBrowse(const QString& folder, const FillContext& context);
  FillResult fillDrives(const FillContext& context);
  // For rows added by the owner (find results): begin, add through
  // model()/RowBuilder (refresh() shows the rows so far), then finish to sort
  // and show them.
  void beginFill();
  void finishFill();

  // Header-click rule or keep-direction re-sort; redraws.
  void sortBy(int column, bool keepDirection);
  // Redraw after the rows or formats changed outside the widget.
  void refresh();

  int styles() const { return styles_; }
  void setStyles(int bits);
  void setStyleOption(StyleOption option, bool on);
  bool styleOption(StyleOption option) const { return styles_ & option; }
  void setAlternateColor(bool on);
  void setAlternateRowColor(const QColor& color);
  void setSelectedRowColor(const QColor& color);
  QColor selectedRowColor() const { return selRowColor_; }
  // The text colour of selected cells: readable on the selected row's colour.
  QColor SelectedTextColor() const;

  void selectAll();
  void invertSelection();
  void adjustAllWidths();
  // Fits one column (layout index) to its caption and the rows on screen.
  void fitColumn(int column);
  void startRename();
  // As Enter on the focus row: opens the file or browses into the folder.
  void openFocus() { activate(model_.focus()); }

  int topIndex() const { return model_.top(); }
  int focusPosition() const { return model_.focus(); }
  void setFocusPosition(int position);
  QString focusPath() const;
  QStringList selectedPaths() const;
  // Selects the rows of `paths` that are listed (the first gets the focus),
  // in one pass over the list: a selection kept across a refill.
  void selectPaths(const QStringList& paths);
  int rowHeight() const { return rowHeight_; }
  // Cell texts made by the last paint (its cost must not grow with the rows).
  quint64 lastPaintCells() const { return lastPaintCells_; }
  CRellListHeader* header() const { return header_; }

 Q_SIGNALS:
  void BeforeBrowse(const QString& sFolder);
  void FileSelected(const QString& sFile, bool immediate);
  void OpenFile(const QString& sFile);
  void StatusObjects(const QString& sStatus, int cntSelected);
  void StatusDisks(const QString& sStatus, int cntSelected);
  void StatusBytes(double dBytesTotal, double dBytesFree);
  void Drop(const QStringList& sDropData, Qt::DropAction Effect, int lHit);
  void QueryPopup(int lHit, const QPoint& globalPos, bool byKey);
  // The owner renames the file and sets *accept (the row then shows the new
  // name), or leaves it false to refuse.
  void QueryRename(const QString& sFile, const QString& sNewName, bool* accept);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void scrollContentsBy(int dx, int dy) override;
  bool viewportEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  friend class CRellListHeader;
  void updateScrollBars();
  void afterMove(bool byKey);
  void raiseStatus();
  void activate(int position);
  int positionAt(const QPoint& viewportPoint) const;
  int totalWidth() const;
  int lineNumberWidth() const;
  void finishRename(bool commit);
  void startDrag();
  void autoAdjustWidths();

  ListModel model_;
  CRellListHeader* header_ = nullptr;
  QLineEdit* editor_ = nullptr;
  int editRow_ = -1;
  int styles_ = kShowIcons | kColumnDrag | kMultiSelect;
  bool altColor_ = false;
  QColor altRowColor_;
  QColor selRowColor_;
  int rowHeight_ = 18;
  quint64 lastPaintCells_ = 0;
  QPoint pressPos_;
  int pressRow_ = -1;
  bool dragReady_ = false;
  QString lastSelected_;
};

}  // namespace browser
