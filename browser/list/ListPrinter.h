#pragma once
#include <QTextStream>
#include <vector>

#include "browser/list/RowStore.h"

namespace browser {

class ListModel;

// Prints a list as it shows: the visible columns in display order,
// tab-separated, a header line first unless asked not to. Output goes out in
// large chunks.
class ListPrinter {
 public:
  static void Print(const ListModel& model, QTextStream& out, bool header);
  // The pieces, for output that streams rows as they come: the captions
  // line, and one row of the given data slots with every field escaped so
  // that an entry stays on one line. `cell` is scratch space.
  static void AppendHeader(const ListModel& model, QString* buffer);
  static void AppendRow(const ListModel& model, RowId id, const std::vector<int>& data, QString* buffer, QString* cell);
  static std::vector<int> VisibleData(const ListModel& model);
};

}  // namespace browser
