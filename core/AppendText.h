#pragma once
#include <QString>
#include <QStringView>
#include <cstring>

namespace core {

// QString::append without its call: rows are built from a score of short
// pieces each, and a list of 300,000 rows pays for every call. Falls back to
// append when the string is shared or full.
inline void AppendText(QString* out, QStringView text) {
  QString::DataPointer& d = out->data_ptr();
  const qsizetype n = text.size();
  if (d.needsDetach() || d.freeSpaceAtEnd() <= n) {
    out->append(text);
    return;
  }
  char16_t* end = d.data() + d.size;
  if (n) std::memcpy(end, text.utf16(), size_t(n) * sizeof(char16_t));
  end[n] = u'\0';
  d.size += n;
}

inline void AppendText(QString* out, char16_t c) { AppendText(out, QStringView(&c, 1)); }

// The decimal digits of a count, without a QString of their own.
inline void AppendNumber(QString* out, qint64 value) {
  char16_t digits[24];
  int i = 24;
  quint64 u = value < 0 ? 0ULL - quint64(value) : quint64(value);
  do {
    digits[--i] = char16_t(u'0' + u % 10);
    u /= 10;
  } while (u);
  if (value < 0) digits[--i] = u'-';
  AppendText(out, QStringView(digits + i, 24 - i));
}

}  // namespace core
