#pragma once
#include <QString>
#include <QStringList>
#include <QStringView>
#include <functional>
#include <memory>
#include <vector>

#include "browser/list/ColumnLayout.h"
#include "browser/list/RowStore.h"
#include "browser/list/TypeAhead.h"
#include "core/ListModes.h"

namespace browser {

// Keys the list reacts to (the widget maps Qt keys onto these).
enum class ListKey { Up, Down, Home, End, PageUp, PageDown, Space, Left, Right, F2, Character, Other };

// What a key press did.
struct KeyResult {
  bool handled = false;  // the key belongs to the list
  bool moved = false;    // the selection mover ran (focus or selection changed)
  bool rename = false;   // F2: start the inline rename of the focus row
  int target = -1;       // the target position, -1 for none
};

// The file list without its widget: columns, rows, display order, sort,
// selection, focus, type-ahead, keyboard targets and status texts. The
// widget paints from it; the command line prints from it.
class ListModel {
 public:
  ListModel();

  // ---- mode and columns ----
  // Defines the columns of a mode from its definition string, then applies
  // the record's column order, visibility, formats and sort order. Clears rows.
  void setMode(int mode, const core::ModeRecord& record);
  int mode() const { return mode_; }
  ColumnLayout& columns() { return columns_; }
  const ColumnLayout& columns() const { return columns_; }
  QString columnOrder() const { return columns_.columnOrder(); }
  void setColumnOrder(QStringView order) { columns_.setColumnOrder(order); }
  QString visibility() const { return columns_.visibility(); }
  void setVisibility(QStringView mask) { columns_.setVisibility(mask); }
  // Writes sort order, column order and visibility back into a record; the
  // column texts only where the user changed what setMode applied.
  void storeInto(core::ModeRecord* record) const;
  // The visibility mask that a stored "VisList" stands for with `columns` columns.
  static QString UsableMask(const QString& mask, const QString& defaultMask, int columns);

  // ---- formats ----
  void setFormats(int sizeFormat, int dateStyle, int timeStyle);
  int sizeFormat() const { return sizeFormat_; }
  int dateStyle() const { return dateStyle_; }
  int timeStyle() const { return timeStyle_; }
  // Ages instead of dates: the present is taken now and at each fill.
  void setAge(bool on);
  bool age() const { return age_; }
  void setClusterSize(qint64 bytes) { clusterSize_ = bytes; }
  qint64 clusterSize() const { return clusterSize_; }
  // Whether the size format applies to a column (the mode's size columns).
  bool isSizeColumn(int column) const;

  // ---- rows ----
  // "Path" relative to the location a row was found under ("RelPath"): the
  // longest of `bases` that the row's folder begins with is left out.
  void setPathBases(const QStringList& bases) { pathBases_ = bases; }
  const QStringList& pathBases() const { return pathBases_; }
  void setRelativePaths(bool on) { relativePaths_ = on; }
  bool relativePaths() const { return relativePaths_; }
  // Folder grouping: rows added while it is on carry the group mark.
  void setGrouping(bool on) { grouping_ = on; }
  bool grouping() const { return grouping_; }
  void clearRows();
  // A fill adds rows between these two; the first sort after a fill of more
  // than 3000 rows shows "Sorting...".
  void beginFill();
  void endFill();
  RowStore& store() { return rows_; }
  const RowStore& store() const { return rows_; }
  RowId addFileRow(const platform::DirEntry& entry, const QString& folder, quint16 type);
  RowId addTextRow(TextRowData data);

  int rowCount() const { return int(display_.size()); }
  RowId rowAt(int position) const { return display_[size_t(position)]; }
  const std::vector<RowId>& displayArray() const { return display_; }
  // Position of a row in the display array, -1 if not listed.
  int positionOf(RowId id) const;

  // Texts of a row by data index, made now in the present formats.
  QString dataText(RowId id, int dataIndex) const;
  // `raw`: names and paths keep their escaped bytes (for output that can
  // carry them) instead of showing them as U+FFFD.
  void appendDataText(QString* out, RowId id, int dataIndex, bool raw = false) const;
  // Text of the cell at display position and column (definition index).
  QString cellText(int position, int column) const;
  // Counts the cell texts made since the last reset (paint cost checks).
  quint64 cellsFormatted() const { return cellsFormatted_; }
  void resetCellsFormatted() { cellsFormatted_ = 0; }

  // The name as shown (escaped bytes made visible), and the real name/path for I/O.
  QString displayName(RowId id) const;
  QString name(RowId id) const;
  QString path(RowId id) const;  // folder + name; a text row's path
  bool isFolder(RowId id) const { return rows_.isFolder(id); }
  QString iconKey(RowId id) const;
  double sizeOf(RowId id) const;
  // The key text of a slot, as the string the sort stands for.
  QString sortKey(RowId id, int slot) const;

  // ---- sort ----
  // Header-click rule (keepDirection false) or re-sort by the stored order.
  void sort(int column, bool keepDirection);
  void sortAgain() { sort(sortColumn(), true); }
  quint32 sortOrder() const { return sortOrder_; }
  void setSortOrder(quint32 order) { sortOrder_ = order; }
  int sortColumn() const { return int(sortOrder_ & 0x7fffffffu); }
  bool sortDescending() const { return sortOrder_ & 0x80000000u; }
  // Restores addition order ("Original Order").
  void originalOrder();

  // ---- focus, selection, view ----
  int focus() const { return focus_; }
  int top() const { return top_; }
  void setTop(int position);
  int pageRows() const { return pageRows_; }
  void setPageRows(int rows);  // rows that fit in the view (>= 1)
  bool multiSelect() const { return multiSelect_; }
  void setMultiSelect(bool on) { multiSelect_ = on; }
  bool lastMoveWasJump() const { return jump_; }

  bool isSelectedAt(int position) const { return rows_.isSelected(display_[size_t(position)]); }
  int selectedCount() const { return selectedCount_; }
  std::vector<int> selectedPositions() const;
  void selectAll();
  void invertSelection();
  void clearSelection();
  void toggleSelectedAt(int position);
  // Mouse: click, Shift-click (range from the anchor), Ctrl-click (toggle).
  void click(int position, bool shift, bool ctrl);
  // The selection mover: target becomes focus; Shift extends from the anchor,
  // Ctrl moves the focus alone; the top row follows so the focus shows.
  void moveTo(int target, bool shift, bool ctrl);

  // ---- keyboard ----
  // The target of a key (clamped), or -1 where the key has none.
  int keyTarget(ListKey key, QChar ch, double nowSeconds);
  // Target + the "one row selected and no move" rule + the mover.
  KeyResult keyDown(ListKey key, QChar ch, bool shift, bool ctrl, bool alt, double nowSeconds);
  TypeAhead& typeAhead() { return typeAhead_; }

  // ---- status ----
  // StatusObjects / StatusDisks text for the present rows and selection.
  QString statusText() const;
  // After a search: "12 files found" (noun "file" or "object"); empty noun clears.
  void setFoundNoun(const QString& noun) { foundNoun_ = noun; }
  static QString FoundText(double count, QStringView noun);
  double bytesTotal() const;  // listed (or selected) bytes; drives: capacity
  double bytesFree() const;   // drives only

  // Called with "Sorting..." before a long sort; with busy true/false around it.
  void setStatusHook(std::function<void(const QString&)> hook) { statusHook_ = std::move(hook); }
  void setBusyHook(std::function<void(bool)> hook) { busyHook_ = std::move(hook); }

  // Bytes the rows take, for the memory figure.
  size_t memoryBytes() const;

 private:
  void clampFocus();
  void ensureFocusVisible();
  void recountSelection();
  qsizetype RelativeStart(QStringView folder) const;

  int mode_ = core::kModeBrowse;
  ColumnLayout columns_;
  QStringList sizeColumns_;
  RowStore rows_;
  std::vector<RowId> display_;
  quint32 sortOrder_ = 0;
  bool grouping_ = true;
  bool justFilled_ = false;
  int sizeFormat_ = 0, dateStyle_ = 0, timeStyle_ = 0;
  bool age_ = false;
  double ageNow_ = 0;  // minutes since 1601 UTC
  qint64 clusterSize_ = 4096;
  int focus_ = 0, top_ = 0, anchor_ = 0, pageRows_ = 1;
  int selectedCount_ = 0;
  bool multiSelect_ = true;
  bool jump_ = false;
  TypeAhead typeAhead_;
  QString foundNoun_;
  QString appliedOrder_, appliedVisible_;
  QStringList pathBases_;
  bool relativePaths_ = false;  // the layout setMode applied
  mutable quint64 cellsFormatted_ = 0;
  std::function<void(const QString&)> statusHook_;
  std::function<void(bool)> busyHook_;
  // Compiled formats, rebuilt by setFormats.
  struct Formats;
  std::shared_ptr<const Formats> formats_;
};

}  // namespace browser
