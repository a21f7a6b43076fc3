#include "browser/list/ListPrinter.h"

#include "browser/list/ListModel.h"
#include "core/AppendText.h"
#include "core/RowEscape.h"

namespace browser {

std::vector<int> ListPrinter::VisibleData(const ListModel& model) {
  std::vector<int> data;
  for (int c : model.columns().visibleInOrder()) data.push_back(model.columns().column(c).dataIndex);
  return data;
}

void ListPrinter::AppendHeader(const ListModel& model, QString* buffer) {
  const std::vector<int> columns = model.columns().visibleInOrder();
  for (size_t i = 0; i < columns.size(); ++i) {
    if (i) buffer->append(u'\t');
    core::AppendRowField(buffer, model.columns().column(columns[i]).caption);
  }
  buffer->append(u'\n');
}

void ListPrinter::AppendRow(const ListModel& model, RowId id, const std::vector<int>& data, QString* buffer,
                            QString* cell) {
  // Formatted straight into the row and looked at once as a whole: almost
  // no row needs an escape. One that may is formatted again field by field.
  const qsizetype start = buffer->size();
  for (size_t i = 0; i < data.size(); ++i) {
    if (i) core::AppendText(buffer, u'\t');
    model.appendDataText(buffer, id, data[i], true);
  }
  if (core::RowFieldsPlain(QStringView(*buffer).mid(start), qsizetype(data.size()) - 1)) {
    core::AppendText(buffer, u'\n');
    return;
  }
  buffer->truncate(start);
  for (size_t i = 0; i < data.size(); ++i) {
    if (i) buffer->append(u'\t');
    // Formatted straight into the row; escaped afterwards in the rare case
    // that the field holds something that would break the line.
    const qsizetype at = buffer->size();
    model.appendDataText(buffer, id, data[i], true);
    if (!core::NeedsRowEscape(QStringView(*buffer).mid(at))) continue;
    *cell = buffer->mid(at);
    buffer->truncate(at);
    core::AppendRowField(buffer, *cell);
  }
  buffer->append(u'\n');
}

void ListPrinter::Print(const ListModel& model, QTextStream& out, bool header) {
  const std::vector<int> data = VisibleData(model);
  constexpr qsizetype kChunk = 1 << 20;
  QString buffer;
  buffer.reserve(kChunk + 4096);
  QString cell;
  if (header) AppendHeader(model, &buffer);
  for (RowId id : model.displayArray()) {
    AppendRow(model, id, data, &buffer, &cell);
    if (buffer.size() >= kChunk) {
      out << buffer;
      buffer.clear();
    }
  }
  out << buffer;
}

}  // namespace browser
