// Exported rows read back: fields quoted for a separator must split into the
// very same fields again (RFC 4180 reading), whatever they hold.
#include <QString>
#include <QStringList>
#include <cstddef>
#include <cstdint>

#include "report/ListExport.h"

namespace {

// A plain RFC 4180 reader of one record (quoted fields may hold line ends).
QStringList ReadRecord(const QString& text, const QString& separator) {
  QStringList fields;
  QString field;
  qsizetype i = 0;
  for (;;) {
    field.clear();
    if (i < text.size() && text[i] == u'"') {
      ++i;
      for (;;) {
        if (i >= text.size()) __builtin_trap();  // an unterminated quote
        if (text[i] == u'"') {
          if (i + 1 < text.size() && text[i + 1] == u'"') {
            field += u'"';
            i += 2;
            continue;
          }
          ++i;
          break;
        }
        field += text[i++];
      }
    } else {
      while (i < text.size() && text[i] != u'\n' && !QStringView(text).mid(i).startsWith(separator)) field += text[i++];
    }
    fields << field;
    if (i >= text.size() || text[i] == u'\n') break;
    if (!QStringView(text).mid(i).startsWith(separator)) __builtin_trap();  // junk after a closing quote
    i += separator.size();
  }
  return fields;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  // First byte: the separator choice; the rest: fields split at byte 0x1F.
  const int choice = data[0] % 5;
  QString separator = report::ListExport::SeparatorText(choice == 3 ? 0 : choice, QStringLiteral("::"));
  const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
  const QStringList fields = input.split(QChar(0x1F));
  QString row;
  for (qsizetype k = 0; k < fields.size(); ++k) {
    if (k) row += separator;
    report::ListExport::AppendQuoted(&row, fields[k], separator);
  }
  row += u'\n';
  if (ReadRecord(row, separator) != fields) __builtin_trap();
  return 0;
}
