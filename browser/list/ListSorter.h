#pragma once
#include <vector>

#include "browser/list/RowStore.h"

namespace browser {

// Sorts the display array of a list: a recursive Hoare quicksort whose pivot
// is the row at (low + high) / 2 rounded half to even, then each run of equal
// primary keys again by the secondary key. Keys are compared through typed
// stand-ins that give the same sign as the key texts would (SortKeys.h), with
// a 64-bit prefix of each key for speed. The order among equal keys is the
// quicksort's, which is why the algorithm itself is fixed.
class ListSorter {
 public:
  // secondarySlot < 0: none.
  static void Sort(const RowStore& rows, std::vector<RowId>* display, int primarySlot, int secondarySlot,
                   bool descending);
  // Three-way compare of two rows' keys in a slot.
  static int Compare(const RowStore& rows, RowId a, RowId b, int slot);
  // The key text a row stands for in a slot.
  static QString KeyText(const RowStore& rows, RowId id, int slot);
  // The pivot position for a range.
  static qint64 Pivot(qint64 low, qint64 high) {
    const qint64 sum = low + high;
    qint64 mid = sum >> 1;  // floor; sums are never negative
    if ((sum & 1) && (mid & 1)) ++mid;
    return mid;
  }
};

}  // namespace browser
