#include "browser/list/ListModel.h"

#include <algorithm>
#include <array>

#include "browser/list/FoldCase.h"
#include "browser/list/ListSorter.h"
#include "core/AgeText.h"
#include "core/AppendText.h"
#include "core/AttributeText.h"
#include "core/DatePattern.h"
#include "core/DateStyles.h"
#include "core/NumberFormat.h"
#include "core/SizeFormat.h"
#include "platform/FileTime.h"
#include "platform/NativePath.h"

namespace browser {

// Date and time patterns compiled once per format change, not per cell.
// Where the date text depends on the day alone, the texts of recent days are
// kept: a folder's files share few days, and month names are costly to ask.
struct ListModel::Formats {
  Formats(QStringView datePattern, QStringView timePattern) : date(datePattern), time(timePattern) {
    core::LocalTime a{2001, 2, 3, 1, 2, 3, 4, 6};
    core::LocalTime b{2001, 2, 3, 13, 40, 50, 999, 6};
    dateByDay = date.format(a) == date.format(b);
    core::LocalTime c = a;
    c.millisecond = 500;
    bySecond = time.format(a) == time.format(c) && date.format(a) == date.format(c);
  }

  void appendDate(QString* out, const core::LocalTime& t) const {
    if (!dateByDay) {
      date.appendTo(out, t);
      return;
    }
    const qint32 key = (t.year * 13 + t.month) * 32 + t.day;
    Day& d = days[size_t(key) % days.size()];
    if (d.key != key) {
      const qsizetype at = out->size();
      date.appendTo(out, t);
      const qsizetype n = out->size() - at;
      if (n > qsizetype(std::size(d.text))) return;  // too long to keep
      std::copy(out->utf16() + at, out->utf16() + at + n, d.text);
      d.size = quint16(n);
      d.key = key;
      return;
    }
    core::AppendText(out, QStringView(d.text, d.size));
  }

  core::DatePattern date;
  core::DatePattern time;
  bool dateByDay = false;
  bool bySecond = false;  // the texts show no fraction of a second
  // The last text of each time column: files made or read together share
  // their second, and a text costs a zone lookup and a dozen pieces.
  struct Stamp {
    qint64 second = -1;
    QString text;
  };
  mutable std::array<Stamp, 3> stamps;
  // Kept in place (no string of its own to reach): dates of a listing
  // often jump between many days.
  struct Day {
    qint32 key = -1;
    quint16 size = 0;
    char16_t text[29];
  };
  mutable std::array<Day, 4096> days;
};

namespace {

constexpr int kSortingStatusRows = 3000;

bool IsEscape(char16_t c) { return c >= 0xDC80 && c <= 0xDCFF; }

// As platform::DisplayText, appending: escaped bytes show as U+FFFD.
void AppendDisplay(QString* out, QStringView text) {
  const char16_t* s = text.utf16();
  const qsizetype n = text.size();
  qsizetype i = 0;
  while (i < n && !IsEscape(s[i])) ++i;
  if (i == n) {
    out->append(text);
    return;
  }
  out->append(text.left(i));
  for (; i < n; ++i) {
    const bool pairHalf = i > 0 && QChar::isHighSurrogate(s[i - 1]);
    out->append(IsEscape(s[i]) && !pairHalf ? QChar(0xFFFD) : QChar(s[i]));
  }
}

}  // namespace

ListModel::ListModel() { setMode(core::kModeBrowse, core::DefaultModeRecord(core::kModeBrowse)); }

// ---- mode and columns ----

void ListModel::setMode(int mode, const core::ModeRecord& record) {
  if (mode < 0 || mode >= core::kModeCount) mode = core::kModeBrowse;
  mode_ = mode;
  const core::ListModeDef& def = core::kListModes[size_t(mode)];
  const QString sizeColumns = QString::fromLatin1(def.sizeColumns);
  columns_.define(QString::fromLatin1(def.columns), sizeColumns);
  sizeColumns_ = sizeColumns.split(u',');
  // An empty text is stored as one blank: blank or not, it means the default layout.
  columns_.setColumnOrder(record.positions.trimmed().isEmpty() ? QString::fromLatin1(def.defaultOrder)
                                                               : record.positions);
  columns_.setVisibility(UsableMask(record.visible, QString::fromLatin1(def.defaultVisible), columns_.count()));
  appliedOrder_ = columns_.columnOrder();
  appliedVisible_ = columns_.visibility();
  sortOrder_ = quint32(record.sortOrder);
  setFormats(record.sizeFormat, record.dateStyle, record.timeStyle);
  setAge(record.age);
  foundNoun_.clear();
  clearRows();
}

void ListModel::storeInto(core::ModeRecord* record) const {
  record->sortOrder = qint32(sortOrder_);
  record->sizeFormat = sizeFormat_;
  record->dateStyle = qint16(dateStyle_);
  record->timeStyle = qint16(timeStyle_);
  record->age = age_;
  // A layout the user left alone keeps the text it was read from.
  if (columns_.columnOrder() != appliedOrder_) record->positions = columns_.columnOrder();
  if (columns_.visibility() != appliedVisible_) record->visible = columns_.visibility();
}

QString ListModel::UsableMask(const QString& mask, const QString& defaultMask, int columns) {
  // A short mask (another version's columns) leaves the columns it does not
  // name as the default has them; a mask that would hide every column is
  // not one anybody chose.
  QString out = mask.left(columns);
  for (int i = int(out.size()); i < columns; ++i) out.append(i < defaultMask.size() ? defaultMask[i] : QChar(u'1'));
  return out.contains(u'1') ? out : defaultMask;
}

bool ListModel::isSizeColumn(int column) const {
  if (column < 0 || column >= columns_.count()) return false;
  return sizeColumns_.contains(columns_.column(column).caption);
}

// ---- formats ----

void ListModel::setFormats(int sizeFormat, int dateStyle, int timeStyle) {
  sizeFormat_ = sizeFormat;
  dateStyle_ = dateStyle;
  timeStyle_ = timeStyle;
  formats_ = std::make_shared<const Formats>(core::DateStylePattern(dateStyle), core::TimeStylePattern(timeStyle));
}

void ListModel::setAge(bool on) {
  age_ = on;
  ageNow_ = core::UtcMinutesSince1601Now();
}

// ---- rows ----

void ListModel::clearRows() {
  rows_.clear();
  display_.clear();
  display_.shrink_to_fit();
  focus_ = top_ = anchor_ = 0;
  selectedCount_ = 0;
  justFilled_ = false;
  jump_ = false;
  typeAhead_.reset();
}

void ListModel::beginFill() {
  clearRows();
  if (age_) ageNow_ = core::UtcMinutesSince1601Now();
  foundNoun_.clear();
}

void ListModel::endFill() { justFilled_ = true; }

RowId ListModel::addFileRow(const platform::DirEntry& entry, const QString& folder, quint16 type) {
  const RowId id = rows_.addFile(entry, rows_.internFolder(folder), type, grouping_);
  display_.push_back(id);
  return id;
}

RowId ListModel::addTextRow(TextRowData data) {
  const RowId id = rows_.addText(std::move(data));
  display_.push_back(id);
  return id;
}

int ListModel::positionOf(RowId id) const {
  const auto it = std::find(display_.begin(), display_.end(), id);
  return it == display_.end() ? -1 : int(it - display_.begin());
}

void ListModel::appendDataText(QString* out, RowId id, int dataIndex, bool raw) const {
  ++cellsFormatted_;
  if (IsTextRow(id)) {
    const TextRowData& t = rows_.text(id);
    const auto size = t.sizes.constFind(dataIndex);
    if (size != t.sizes.constEnd()) out->append(core::FormatSize(*size, sizeFormat_, clusterSize_));
    else if (dataIndex >= 0 && dataIndex < t.texts.size()) out->append(t.texts[dataIndex]);
    return;
  }
  const RowStore::FileRow& r = rows_.file(id);
  switch (dataIndex) {
    case core::kSlotName:
      if (!raw && (r.flags & RowStore::kEscaped)) AppendDisplay(out, rows_.name(r));
      else core::AppendText(out, rows_.name(r));
      break;
    case core::kSlotExt:
      if (!raw && (r.flags & RowStore::kEscaped)) AppendDisplay(out, rows_.extension(r));
      else core::AppendText(out, rows_.extension(r));
      break;
    case core::kSlotSize:
      if (sizeFormat_ == core::kSizeRaw) core::AppendNumber(out, r.size);
      else out->append(core::FormatSize(double(r.size), sizeFormat_, clusterSize_));
      break;
    case core::kSlotType: core::AppendText(out, rows_.type(r.type).name); break;
    case core::kSlotCreated:
    case core::kSlotModified:
    case core::kSlotAccessed: {
      const qint64 t = dataIndex == core::kSlotCreated ? r.created
                       : dataIndex == core::kSlotModified ? r.modified : r.accessed;
      Formats::Stamp& stamp = formats_->stamps[size_t(dataIndex - core::kSlotCreated) % 3];
      const qint64 second = t > 0 ? t / platform::kTicksPerSecond : -1;
      if (!age_ && formats_->bySecond && second >= 0 && stamp.second == second) {
        core::AppendText(out, stamp.text);
        break;
      }
      core::LocalTime local;
      if (t == 0 || !core::FileTimeToLocal(t, &local)) {
        out->append(QStringLiteral("(unknown)"));
        break;
      }
      if (age_) {
        core::AppendAgeText(out, ageNow_ - double(t) / double(platform::kTicksPerSecond * 60));
        break;
      }
      const qsizetype at = out->size();
      formats_->appendDate(out, local);
      core::AppendText(out, u' ');
      formats_->time.appendTo(out, local);
      if (formats_->bySecond && second >= 0) {
        stamp.second = second;
        stamp.text.resize(0);
        stamp.text.append(QStringView(*out).mid(at));
      }
      break;
    }
    case core::kSlotAttr: core::AppendAttributeString(out, r.attributes); break;
    case core::kSlotPath: {
      QStringView folder = rows_.folder(r.folder);
      if (relativePaths_) folder = folder.mid(RelativeStart(folder));
      if (raw) core::AppendText(out, folder);
      else AppendDisplay(out, folder);
      break;
    }
    default: break;
  }
}

qsizetype ListModel::RelativeStart(QStringView folder) const {
  qsizetype start = 0;
  for (const QString& base : pathBases_)
    if (base.size() > start && folder.startsWith(base)) start = base.size();
  return start;
}

QString ListModel::dataText(RowId id, int dataIndex) const {
  QString out;
  appendDataText(&out, id, dataIndex);
  return out;
}

QString ListModel::cellText(int position, int column) const {
  if (position < 0 || position >= rowCount() || column < 0 || column >= columns_.count()) return QString();
  return dataText(display_[size_t(position)], columns_.column(column).dataIndex);
}

QString ListModel::displayName(RowId id) const {
  if (IsTextRow(id)) return rows_.text(id).texts.value(0);
  QString out;
  AppendDisplay(&out, rows_.name(rows_.file(id)));
  return out;
}

QString ListModel::name(RowId id) const {
  if (IsTextRow(id)) return rows_.text(id).texts.value(0);
  return rows_.name(rows_.file(id)).toString();
}

QString ListModel::path(RowId id) const {
  if (IsTextRow(id)) return rows_.text(id).path;
  const RowStore::FileRow& r = rows_.file(id);
  QString out = rows_.folder(r.folder);
  out.append(rows_.name(r));
  return out;
}

QString ListModel::iconKey(RowId id) const {
  return IsTextRow(id) ? rows_.text(id).iconKey : rows_.type(rows_.file(id).type).iconKey;
}

double ListModel::sizeOf(RowId id) const { return IsTextRow(id) ? 0.0 : double(rows_.file(id).size); }

QString ListModel::sortKey(RowId id, int slot) const { return ListSorter::KeyText(rows_, id, slot); }

// ---- sort ----

void ListModel::sort(int column, bool keepDirection) {
  if (display_.empty() || columns_.count() == 0) return;
  if (column < 0 || column >= columns_.count()) column = 0;
  // The sort that follows a fill starts the view at the top; later sorts keep
  // the focus on its row.
  const int focusRow = !justFilled_ && focus_ < rowCount() ? int(display_[size_t(focus_)]) : -1;
  if (!keepDirection) {
    if (column == sortColumn()) {
      // The same header again: reverse, no comparison at all.
      sortOrder_ ^= 0x80000000u;
      std::reverse(display_.begin(), display_.end());
      justFilled_ = false;
      if (focusRow >= 0) focus_ = rowCount() - 1 - focus_;
      anchor_ = std::clamp(rowCount() - 1 - anchor_, 0, rowCount() - 1);
      ensureFocusVisible();
      return;
    }
    sortOrder_ = quint32(column) | (columns_.column(column).kind == ListColumn::kDate ? 0x80000000u : 0u);
  } else {
    sortOrder_ = quint32(column) | (sortOrder_ & 0x80000000u);
  }
  if (justFilled_ && rowCount() > kSortingStatusRows && statusHook_) statusHook_(QStringLiteral("Sorting..."));
  justFilled_ = false;
  if (busyHook_) busyHook_(true);
  const int primary = columns_.column(column).dataIndex;
  const int secondary = column != 0 ? core::kSlotName : (mode_ == core::kModeFind ? core::kSlotPath : -1);
  ListSorter::Sort(rows_, &display_, primary, secondary, sortDescending());
  if (busyHook_) busyHook_(false);
  if (focusRow >= 0) focus_ = positionOf(RowId(focusRow));
  clampFocus();
  ensureFocusVisible();
}

void ListModel::originalOrder() {
  std::vector<RowId> files, texts;
  for (RowId id : display_) (IsTextRow(id) ? texts : files).push_back(id);
  std::sort(files.begin(), files.end());
  std::sort(texts.begin(), texts.end());
  display_ = std::move(files);
  display_.insert(display_.end(), texts.begin(), texts.end());
  clampFocus();
  ensureFocusVisible();
}

// ---- focus, selection, view ----

void ListModel::clampFocus() {
  const int n = rowCount();
  focus_ = n == 0 ? 0 : std::clamp(focus_, 0, n - 1);
  anchor_ = n == 0 ? 0 : std::clamp(anchor_, 0, n - 1);
}

void ListModel::setTop(int position) {
  const int maxTop = std::max(0, rowCount() - pageRows_);
  top_ = std::clamp(position, 0, maxTop);
}

void ListModel::setPageRows(int rows) {
  pageRows_ = std::max(1, rows);
  setTop(top_);
}

void ListModel::ensureFocusVisible() {
  if (focus_ < top_) top_ = focus_;
  else if (focus_ > top_ + pageRows_ - 1) top_ = focus_ - pageRows_ + 1;
  setTop(top_);
}

std::vector<int> ListModel::selectedPositions() const {
  std::vector<int> out;
  if (selectedCount_ == 0) return out;
  for (int i = 0; i < rowCount(); ++i)
    if (rows_.isSelected(display_[size_t(i)])) out.push_back(i);
  return out;
}

void ListModel::recountSelection() {
  int n = 0;
  for (RowId id : display_) n += rows_.isSelected(id) ? 1 : 0;
  selectedCount_ = n;
}

void ListModel::selectAll() {
  if (!multiSelect_) return;
  for (RowId id : display_) rows_.setSelected(id, true);
  selectedCount_ = rowCount();
}

void ListModel::invertSelection() {
  if (!multiSelect_) return;
  for (RowId id : display_) rows_.setSelected(id, !rows_.isSelected(id));
  selectedCount_ = rowCount() - selectedCount_;
}

void ListModel::clearSelection() {
  if (selectedCount_ == 0) return;
  for (RowId id : display_) rows_.setSelected(id, false);
  selectedCount_ = 0;
}

void ListModel::toggleSelectedAt(int position) {
  if (position < 0 || position >= rowCount()) return;
  const RowId id = display_[size_t(position)];
  const bool on = !rows_.isSelected(id);
  if (on && !multiSelect_) clearSelection();
  rows_.setSelected(id, on);
  selectedCount_ += on ? 1 : -1;
}

void ListModel::click(int position, bool shift, bool ctrl) {
  if (position < 0 || position >= rowCount()) return;
  jump_ = std::abs(position - focus_) >= 2;
  if (!multiSelect_ || (!shift && !ctrl)) {
    clearSelection();
    rows_.setSelected(display_[size_t(position)], true);
    selectedCount_ = 1;
    anchor_ = position;
  } else if (shift) {
    if (!ctrl) clearSelection();
    const int a = std::min(anchor_, position), b = std::max(anchor_, position);
    for (int i = a; i <= b; ++i) rows_.setSelected(display_[size_t(i)], true);
    recountSelection();
  } else {
    toggleSelectedAt(position);
    anchor_ = position;
  }
  focus_ = position;
  ensureFocusVisible();
}

void ListModel::moveTo(int target, bool shift, bool ctrl) {
  if (rowCount() == 0) return;
  target = std::clamp(target, 0, rowCount() - 1);
  if (multiSelect_ && ctrl && !shift) {
    // Ctrl moves the focus alone; Ctrl+Space toggles (see keyDown).
    focus_ = target;
  } else if (multiSelect_ && shift) {
    if (!ctrl) clearSelection();
    const int a = std::min(anchor_, target), b = std::max(anchor_, target);
    for (int i = a; i <= b; ++i) rows_.setSelected(display_[size_t(i)], true);
    recountSelection();
    focus_ = target;
  } else {
    clearSelection();
    rows_.setSelected(display_[size_t(target)], true);
    selectedCount_ = 1;
    focus_ = anchor_ = target;
  }
  ensureFocusVisible();
}

// ---- keyboard ----

int ListModel::keyTarget(ListKey key, QChar ch, double nowSeconds) {
  const int n = rowCount();
  if (n == 0) return -1;
  clampFocus();
  const int f = focus_, t = top_, v = pageRows_;
  int target;
  switch (key) {
    case ListKey::Up: target = f - 1; break;
    case ListKey::Down: target = f + 1; break;
    case ListKey::Home: target = 0; break;
    case ListKey::End: target = n - 1; break;
    case ListKey::PageUp: target = f == t ? f - (v - 1) : t; break;
    case ListKey::PageDown: target = f == t + v - 1 ? f + (v - 1) : t + v - 1; break;
    case ListKey::Space:
    case ListKey::Left:
    case ListKey::Right: target = f; break;
    case ListKey::Character: {
      // Names are compared without their group mark.
      target = typeAhead_.search(ch.toUpper(), nowSeconds, f, n, [this](int position) {
        const RowId id = display_[size_t(position)];
        if (IsTextRow(id)) return rows_.foldedTextKey(id, core::kSlotName);
        return rows_.folded(rows_.file(id));
      });
      break;
    }
    default: return -1;
  }
  return std::clamp(target, 0, n - 1);
}

KeyResult ListModel::keyDown(ListKey key, QChar ch, bool shift, bool ctrl, bool alt, double nowSeconds) {
  KeyResult result;
  if (key == ListKey::Other) return result;
  if (key == ListKey::Character) {
    const bool letterOrDigit = (ch >= u'0' && ch <= u'9') || (ch.toUpper() >= u'A' && ch.toUpper() <= u'Z');
    if (!letterOrDigit || shift || ctrl || alt) return result;
  }
  result.handled = true;
  if (key == ListKey::F2) {
    result.rename = rowCount() > 0;
    return result;
  }
  const int target = keyTarget(key, ch, nowSeconds);
  result.target = target;
  if (target < 0) return result;
  if (key == ListKey::Space && ctrl && multiSelect_) {
    toggleSelectedAt(focus_);
    jump_ = false;
    result.moved = true;
    return result;
  }
  if (target == focus_ && selectedCount_ == 1) return result;
  jump_ = std::abs(target - focus_) >= 2;
  moveTo(target, shift, ctrl);
  result.moved = true;
  return result;
}

// ---- status ----

QString ListModel::FoundText(double count, QStringView noun) {
  return core::CountPhrase(count, noun) + QStringLiteral(" found");
}

double ListModel::bytesTotal() const {
  double total = 0;
  if (mode_ == core::kModeDrives) {
    for (RowId id : display_)
      if (IsTextRow(id) && (selectedCount_ != 1 || rows_.isSelected(id))) total += rows_.text(id).bytesTotal;
    return total;
  }
  for (RowId id : display_)
    if (selectedCount_ == 0 || rows_.isSelected(id)) total += sizeOf(id);
  return total;
}

double ListModel::bytesFree() const {
  double free = 0;
  for (RowId id : display_)
    if (IsTextRow(id) && (selectedCount_ != 1 || rows_.isSelected(id))) free += rows_.text(id).bytesFree;
  return free;
}

QString ListModel::statusText() const {
  if (mode_ == core::kModeDrives) {
    const QString free = core::FlexibleSize(bytesFree(), false, false);
    const QString total = core::FlexibleSize(bytesTotal(), false, false);
    if (selectedCount_ == 1) {
      const std::vector<int> sel = selectedPositions();
      return displayName(display_[size_t(sel.front())]) + QStringLiteral("  Free: ") + free +
             QStringLiteral(", Capacity: ") + total;
    }
    return QStringLiteral("Total  Free: ") + free + QStringLiteral(", Capacity: ") + total;
  }
  bool sizeShown = false;
  for (int c : columns_.visibleInOrder()) sizeShown = sizeShown || isSizeColumn(c);
  const QString selected = core::CountPhrase(selectedCount_, u"object");
  if (!sizeShown) return selected + QStringLiteral(" selected");
  if (selectedCount_ > 0)
    return selected + QStringLiteral(" selected: ") + core::FlexibleSize(bytesTotal(), false, false);
  if (!foundNoun_.isEmpty()) return FoundText(rowCount(), foundNoun_);
  return QStringLiteral("Total: ") + core::FlexibleSize(bytesTotal(), false, false);
}

size_t ListModel::memoryBytes() const { return rows_.memoryBytes() + display_.capacity() * sizeof(RowId); }

}  // namespace browser
