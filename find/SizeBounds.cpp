#include "find/SizeBounds.h"

#include <cstdlib>

#include "core/Rounding.h"

namespace find {

double SizeUnitMultiplier(int unit) {
  switch (unit) {
    case kUnitKB: return 1024.0;
    case kUnitMB: return 1048576.0;
    default: return 1.0;
  }
}

double LeadingNumber(const QString& text) {
  // Copy the longest prefix that looks like a number into plain ASCII and let
  // strtod read it; anything else ends the number.
  QByteArray digits;
  qsizetype i = 0;
  const qsizetype n = text.size();
  while (i < n && text[i].isSpace()) ++i;
  if (i < n && (text[i] == u'+' || text[i] == u'-')) digits.append(char(text[i++].unicode()));
  auto isDigit = [&](qsizetype k) { return k < n && text[k] >= u'0' && text[k] <= u'9'; };
  bool any = false;
  while (isDigit(i)) digits.append(char(text[i++].unicode())), any = true;
  if (i < n && text[i] == u'.') {
    digits.append('.');
    ++i;
    while (isDigit(i)) digits.append(char(text[i++].unicode())), any = true;
  }
  if (!any) return 0.0;
  if (i < n && (text[i] == u'e' || text[i] == u'E' || text[i] == u'd' || text[i] == u'D')) {
    qsizetype k = i + 1;
    QByteArray exponent("e");
    if (k < n && (text[k] == u'+' || text[k] == u'-')) exponent.append(char(text[k++].unicode()));
    if (isDigit(k)) {
      while (isDigit(k)) exponent.append(char(text[k++].unicode()));
      digits.append(exponent);
    }
  }
  return std::strtod(digits.constData(), nullptr);
}

std::optional<qint32> SizeBound(const QString& text, int unit, qint32 emptyValue) {
  if (text.trimmed().isEmpty()) return emptyValue;
  const auto v = core::ToInt32(LeadingNumber(text) * SizeUnitMultiplier(unit));
  if (!v) return std::nullopt;
  return qint32(*v);
}

}  // namespace find
