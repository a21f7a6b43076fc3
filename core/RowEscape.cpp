#include "core/RowEscape.h"

namespace core {

namespace {

void AppendHexByte(QString* out, unsigned byte) {
  static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
  out->append(u"\\x");
  out->append(QChar(kDigits[(byte >> 4) & 0xF]));
  out->append(QChar(kDigits[byte & 0xF]));
}

bool Escaped(QStringView text, qsizetype i) {
  const char16_t c = text[i].unicode();
  return c < 0x20 || c == u'\\' || c == 0x7F ||
         (c >= 0xDC80 && c <= 0xDCFF && (i == 0 || !QChar::isHighSurrogate(text[i - 1].unicode())));
}

}  // namespace

bool NeedsRowEscape(QStringView text) {
  const char16_t* s = text.utf16();
  for (qsizetype i = 0; i < text.size(); ++i) {
    // Printable ASCII but the backslash: the common case, one test.
    if (char16_t(s[i] - 0x20) < 0x5F && s[i] != u'\\') continue;
    if (Escaped(text, i)) return true;
  }
  return false;
}

void AppendRowField(QString* out, QStringView text) {
  qsizetype plain = 0;  // start of the run not yet copied
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (!Escaped(text, i)) continue;
    const char16_t c = text[i].unicode();
    out->append(text.mid(plain, i - plain));
    plain = i + 1;
    switch (c) {
      case u'\\': out->append(u"\\\\"); break;
      case u'\t': out->append(u"\\t"); break;
      case u'\n': out->append(u"\\n"); break;
      case u'\r': out->append(u"\\r"); break;
      default: AppendHexByte(out, c >= 0xDC80 ? c - 0xDC00 : c); break;
    }
  }
  out->append(text.mid(plain));
}

QString RowField(QStringView text) {
  QString out;
  out.reserve(text.size());
  AppendRowField(&out, text);
  return out;
}

}  // namespace core
