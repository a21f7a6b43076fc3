#include "browser/list/ListSorter.h"

#include <algorithm>
#include <numeric>

#include "browser/list/FoldCase.h"
#include "browser/list/SortKeys.h"
#include "core/AttributeText.h"
#include "core/ListModes.h"

namespace browser {

namespace {

using FileRow = RowStore::FileRow;

// A row being sorted with the head of its key: 128 bits that order as the
// key does, and whether they hold the whole key (then equal heads are equal keys).
struct Elem {
  quint64 high;
  quint64 low;
  RowId row;
  quint32 whole;
};

struct Head {
  quint64 high = 0;
  quint64 low = 0;
  bool whole = true;
};

int Sign(int v) { return v < 0 ? -1 : v > 0 ? 1 : 0; }
int Cmp64(quint64 a, quint64 b) { return a < b ? -1 : a > b ? 1 : 0; }

// The first code units of a text packed into `bits` (at most 128) bits so
// that integer order follows the text's code-unit order: units below 0xFF
// take one byte, others 0xFF and the 16-bit unit (a monotone, prefix-free
// code), cut at the last bit; the end pads with zeros, which sorts before any
// continuation. A text without zero units that fits is held whole.
Head PackUnits(QStringView s, int bits) {
  unsigned __int128 v = 0;
  int left = bits;
  bool whole = true;
  auto put = [&](quint64 code, int n) {
    if (n <= left) {
      v = (v << n) | code;
      left -= n;
    } else {
      v = (v << left) | (code >> (n - left));
      left = 0;
      whole = false;
    }
  };
  const char16_t* u = s.utf16();
  qsizetype i = 0;
  for (; i < s.size() && left > 0; ++i) {
    if (u[i] == 0) whole = false;
    if (u[i] < 0xFF) {
      put(u[i], 8);
    } else {
      put(0xFF, 8);
      if (left > 0) put(u[i], 16);
      else whole = false;
    }
  }
  if (i < s.size()) whole = false;
  if (left > 0) v = left >= 128 ? 0 : v << left;
  return {quint64(v >> 64), quint64(v), whole};
}

quint64 Stamp(const FileRow& r, int slot) {
  switch (slot) {
    case core::kSlotSize: return r.size;
    case core::kSlotCreated: return quint64(r.created);
    case core::kSlotModified: return quint64(r.modified);
    default: return quint64(r.accessed);
  }
}

bool IsStampSlot(int slot) {
  return slot == core::kSlotSize || slot == core::kSlotCreated || slot == core::kSlotModified ||
         slot == core::kSlotAccessed;
}

// Attribute letters compare position by position, a letter after "-": the
// bits packed in table order compare the same way.
quint32 AttributeOrder(quint32 attributes) {
  quint32 v = 0;
  for (const core::AttributeRow& row : core::kAttributeTable) v = (v << 1) | ((attributes & row.bit) ? 1 : 0);
  return v;
}

bool Marked(const FileRow& r) { return r.flags & RowStore::kMarked; }
bool Folder(const FileRow& r) { return r.flags & RowStore::kFolder; }

// Both file rows, both marked or both not: the typed comparison applies.
int TypedCompare(const RowStore& rows, const FileRow& a, const FileRow& b, int slot) {
  const bool marked = Marked(a);
  switch (slot) {
    case core::kSlotName:
      if (marked && Folder(a) != Folder(b)) return Folder(a) ? -1 : 1;  // "0" before "1"
      return Sign(rows.folded(a).compare(rows.folded(b)));
    case core::kSlotExt:
      return Sign(rows.extension(a).compare(rows.extension(b)));
    case core::kSlotType:
      return Sign(QStringView(rows.type(a.type).folded).compare(rows.type(b.type).folded));
    case core::kSlotAttr:
      return Cmp64(AttributeOrder(a.attributes), AttributeOrder(b.attributes));
    case core::kSlotPath:
      if (a.folder == b.folder) return 0;
      return Sign(CompareText(rows.folder(a.folder), rows.folder(b.folder), true));
    default:
      if (!IsStampSlot(slot)) return 0;
      if (marked && Folder(a) != Folder(b)) return Folder(a) ? 1 : -1;  // "9" after "8"
      return Cmp64(Stamp(a, slot), Stamp(b, slot));
  }
}

// Dense ranks of interned texts by their folded order (equal texts, equal rank).
template <class Text>
std::vector<quint32> Ranks(quint32 count, const Text& foldedAt) {
  std::vector<quint32> order(count);
  std::iota(order.begin(), order.end(), 0u);
  std::sort(order.begin(), order.end(), [&](quint32 a, quint32 b) { return foldedAt(a).compare(foldedAt(b)) < 0; });
  std::vector<quint32> rank(count);
  quint32 r = 0;
  for (size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && foldedAt(order[i - 1]).compare(foldedAt(order[i])) != 0) ++r;
    rank[order[i]] = r;
  }
  return rank;
}

// How one slot compares over the rows being sorted.
class SlotComparer {
 public:
  SlotComparer(const RowStore& rows, const std::vector<RowId>& display, int slot, bool descending)
      : rows_(rows), slot_(slot), descending_(descending) {
    bool anyFile = false, anyText = false, anyMarked = false, anyUnmarked = false;
    for (RowId id : display) {
      if (IsTextRow(id)) {
        anyText = true;
      } else {
        anyFile = true;
        (Marked(rows.file(id)) ? anyMarked : anyUnmarked) = true;
      }
    }
    if (anyText && !anyFile) mode_ = Mode::kText;
    else if (anyText || (anyMarked && anyUnmarked)) mode_ = Mode::kStrings;
    else mode_ = Mode::kFiles;
    marked_ = anyMarked;
    if (mode_ != Mode::kFiles) return;
    if (slot == core::kSlotType) {
      rank_ = Ranks(rows.typeCount(), [&](quint32 i) { return QStringView(rows.type(quint16(i)).folded); });
    } else if (slot == core::kSlotPath) {
      std::vector<QString> folded(rows.folderCount());
      for (quint32 i = 0; i < rows.folderCount(); ++i) folded[i] = FoldCase(rows.folder(i));
      rank_ = Ranks(rows.folderCount(), [&](quint32 i) { return QStringView(folded[i]); });
    }
  }

  Head head(RowId id) const {
    if (mode_ != Mode::kFiles) return {0, 0, false};
    const FileRow& r = rows_.file(id);
    switch (slot_) {
      case core::kSlotName: {
        Head h = PackUnits(rows_.folded(r), 127);
        if (marked_ && !Folder(r)) h.high |= 1ull << 63;  // "1" (file) after "0" (folder)
        return h;
      }
      case core::kSlotExt: return PackUnits(rows_.extension(r), 128);
      case core::kSlotType: return {rank_[r.type], 0, true};
      case core::kSlotPath: return {rank_[r.folder], 0, true};
      case core::kSlotAttr: return {AttributeOrder(r.attributes), 0, true};
      default:
        if (!IsStampSlot(slot_)) return {};
        // "9" (folder) after "8" (file), then the 64-bit value.
        return {marked_ && Folder(r) ? 1u : 0u, Stamp(r, slot_), true};
    }
  }

  // Three-way, already turned for the direction.
  int operator()(const Elem& a, const Elem& b) const {
    int r;
    if (a.high != b.high) r = a.high < b.high ? -1 : 1;
    else if (a.low != b.low) r = a.low < b.low ? -1 : 1;
    else if (a.whole & b.whole) r = 0;
    else r = full(a.row, b.row);
    return descending_ ? -r : r;
  }

  int full(RowId a, RowId b) const {
    switch (mode_) {
      case Mode::kFiles:
        return TypedCompare(rows_, rows_.file(a), rows_.file(b), slot_);
      case Mode::kText:
        return Sign(rows_.foldedTextKey(a, slot_).compare(rows_.foldedTextKey(b, slot_)));
      default:
        return Sign(CompareText(ListSorter::KeyText(rows_, a, slot_), ListSorter::KeyText(rows_, b, slot_),
                                IsCaseInsensitiveSlot(slot_)));
    }
  }

 private:
  enum class Mode { kFiles, kText, kStrings };
  const RowStore& rows_;
  int slot_;
  bool descending_;
  Mode mode_ = Mode::kFiles;
  bool marked_ = false;
  std::vector<quint32> rank_;
};

// Hoare's scheme: scans toward a copied pivot, swap, until they cross; then
// both parts. The smaller part recurses and the larger loops, which keeps the
// stack shallow and does not change the result (the parts are disjoint).
void QuickSort(Elem* a, qint64 low, qint64 high, const SlotComparer& cmp) {
  while (low < high) {
    const Elem pivot = a[ListSorter::Pivot(low, high)];
    qint64 i = low, j = high;
    do {
      while (cmp(a[i], pivot) < 0) ++i;
      while (cmp(a[j], pivot) > 0) --j;
      if (i <= j) {
        std::swap(a[i], a[j]);
        ++i;
        --j;
      }
    } while (i <= j);
    if (j - low < high - i) {
      if (low < j) QuickSort(a, low, j, cmp);
      low = i;
    } else {
      if (i < high) QuickSort(a, i, high, cmp);
      high = j;
    }
  }
}

}  // namespace

void ListSorter::Sort(const RowStore& rows, std::vector<RowId>* display, int primarySlot, int secondarySlot,
                      bool descending) {
  const qint64 n = qint64(display->size());
  if (n < 2) return;
  const SlotComparer primary(rows, *display, primarySlot, descending);
  std::vector<Elem> elems;
  elems.resize(size_t(n));
  auto setHead = [](Elem* e, const SlotComparer& cmp) {
    const Head h = cmp.head(e->row);
    e->high = h.high;
    e->low = h.low;
    e->whole = h.whole;
  };
  for (qint64 i = 0; i < n; ++i) {
    elems[size_t(i)].row = (*display)[size_t(i)];
    setHead(&elems[size_t(i)], primary);
  }
  QuickSort(elems.data(), 0, n - 1, primary);

  if (secondarySlot >= 0) {
    const SlotComparer secondary(rows, *display, secondarySlot, descending);
    qint64 k = 0;
    while (k < n) {
      qint64 e = k;
      while (e + 1 < n && primary(elems[size_t(e)], elems[size_t(e + 1)]) == 0) ++e;
      if (e > k) {
        for (qint64 t = k; t <= e; ++t) setHead(&elems[size_t(t)], secondary);
        QuickSort(elems.data(), k, e, secondary);
      }
      k = e + 1;
    }
  }
  for (qint64 i = 0; i < n; ++i) (*display)[size_t(i)] = elems[size_t(i)].row;
}

int ListSorter::Compare(const RowStore& rows, RowId a, RowId b, int slot) {
  if (!IsTextRow(a) && !IsTextRow(b) && Marked(rows.file(a)) == Marked(rows.file(b)))
    return TypedCompare(rows, rows.file(a), rows.file(b), slot);
  if (IsTextRow(a) && IsTextRow(b)) return Sign(rows.foldedTextKey(a, slot).compare(rows.foldedTextKey(b, slot)));
  return Sign(CompareText(KeyText(rows, a, slot), KeyText(rows, b, slot), IsCaseInsensitiveSlot(slot)));
}

QString ListSorter::KeyText(const RowStore& rows, RowId id, int slot) {
  if (IsTextRow(id)) return rows.textKey(id, slot).toString();
  const FileRow& r = rows.file(id);
  switch (slot) {
    case core::kSlotName: return NameKey(rows.name(r), Marked(r), Folder(r));
    case core::kSlotExt: return rows.extension(r).toString();
    case core::kSlotType: return rows.type(r.type).name;
    case core::kSlotAttr: return AttributeKey(r.attributes);
    case core::kSlotPath: return rows.folder(r.folder);
    default: return IsStampSlot(slot) ? StampKey(Stamp(r, slot), Marked(r), Folder(r)) : QString();
  }
}

}  // namespace browser

