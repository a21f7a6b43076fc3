#include "browser/list/ListPrinter.h"

#include "browser/list/ListModel.h"
#include "core/RowEscape.h"

namespace browser {

void ListPrinter::Print(const ListModel& model, QTextStream& out, bool header) {
  const std::vector<int> columns = model.columns().visibleInOrder();
  std::vector<int> data;
  for (int c : columns) data.push_back(model.columns().column(c).dataIndex);
  constexpr qsizetype kChunk = 1 << 20;
  QString buffer;
  buffer.reserve(kChunk + 4096);
  QString cell;
  if (header) {
    for (size_t i = 0; i < columns.size(); ++i) {
      if (i) buffer.append(u'\t');
      buffer.append(model.columns().column(columns[i]).caption);
    }
    buffer.append(u'\n');
  }
  for (RowId id : model.displayArray()) {
    for (size_t i = 0; i < data.size(); ++i) {
      if (i) buffer.append(u'\t');
      cell.clear();
      model.appendDataText(&cell, id, data[i]);
      core::AppendRowField(&buffer, cell);
    }
    buffer.append(u'\n');
    if (buffer.size() >= kChunk) {
      out << buffer;
      buffer.clear();
    }
  }
  out << buffer;
}

}  // namespace browser
