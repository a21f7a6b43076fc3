#include "find/HexString.h"

namespace find {

namespace {
int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  return -1;
}
}  // namespace

bool ParseHexString(const QString& hexText, QByteArray* bytes, QString* message) {
  QString digits;
  digits.reserve(hexText.size());
  for (QChar c : hexText)
    if (c != u' ' && c != u'\r' && c != u'\n') digits.append(c);
  if (digits.size() % 2 != 0) {
    *message = QString::fromLatin1(kHexOddMessage);
    return false;
  }
  QByteArray out;
  out.reserve(digits.size() / 2);
  for (qsizetype i = 0; i < digits.size(); i += 2) {
    const int hi = HexDigit(digits[i].unicode());
    const int lo = HexDigit(digits[i + 1].unicode());
    if (hi < 0 || lo < 0) {
      *message = QString::fromLatin1(kHexInvalidMessage);
      return false;
    }
    out.append(char(hi * 16 + lo));
  }
  *bytes = out;
  return true;
}

}  // namespace find
