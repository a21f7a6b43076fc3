#include "platform/NativePath.h"

namespace platform {

namespace {
constexpr char16_t kEscapeBase = 0xDC00;

bool IsEscape(char16_t c) { return c >= 0xDC80 && c <= 0xDCFF; }

// Length of the valid UTF-8 sequence at p (0 if invalid); code point in *cp.
int DecodeOne(const unsigned char* p, const unsigned char* end, char32_t* cp) {
  const unsigned char b0 = p[0];
  int len;
  char32_t c;
  if (b0 < 0xC2) return 0;
  if (b0 < 0xE0) { len = 2; c = b0 & 0x1F; }
  else if (b0 < 0xF0) { len = 3; c = b0 & 0x0F; }
  else if (b0 < 0xF5) { len = 4; c = b0 & 0x07; }
  else return 0;
  if (end - p < len) return 0;
  for (int i = 1; i < len; ++i) {
    if ((p[i] & 0xC0) != 0x80) return 0;
    c = (c << 6) | (p[i] & 0x3F);
  }
  if ((len == 3 && c < 0x800) || (len == 4 && (c < 0x10000 || c > 0x10FFFF))) return 0;
  if (c >= 0xD800 && c <= 0xDFFF) return 0;
  *cp = c;
  return len;
}
}  // namespace

QString FromNative(const char* bytes, qsizetype length) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes);
  const auto* end = p + length;
  qsizetype ascii = 0;
  while (ascii < length && p[ascii] < 0x80) ++ascii;
  if (ascii == length) return QString::fromLatin1(bytes, length);

  QString out;
  out.resize(length);  // UTF-16 never needs more units than UTF-8 has bytes
  char16_t* o = reinterpret_cast<char16_t*>(out.data());
  char16_t* const start = o;
  while (p < end) {
    if (*p < 0x80) { *o++ = *p++; continue; }
    char32_t cp;
    const int len = DecodeOne(p, end, &cp);
    if (len == 0) { *o++ = char16_t(kEscapeBase + *p++); continue; }
    p += len;
    if (cp >= 0x10000) {
      cp -= 0x10000;
      *o++ = char16_t(0xD800 + (cp >> 10));
      *o++ = char16_t(0xDC00 + (cp & 0x3FF));
    } else {
      *o++ = char16_t(cp);
    }
  }
  out.truncate(o - start);
  return out;
}

QByteArray ToNative(QStringView text) {
  // Most names are plain ASCII: one pass to check, one to narrow.
  const char16_t* u = reinterpret_cast<const char16_t*>(text.utf16());
  qsizetype ascii = 0;
  while (ascii < text.size() && u[ascii] < 0x80) ++ascii;
  if (ascii == text.size()) return text.toLatin1();
  QByteArray out;
  out.reserve(text.size() * 3);
  const char16_t* s = reinterpret_cast<const char16_t*>(text.utf16());
  const qsizetype n = text.size();
  for (qsizetype i = 0; i < n; ++i) {
    char32_t c = s[i];
    if (c < 0x80) { out.append(char(c)); continue; }
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < n && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (s[i + 1] - 0xDC00);
      ++i;
    } else if (IsEscape(char16_t(c))) {
      out.append(char(c - kEscapeBase));
      continue;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    if (c < 0x800) {
      out.append(char(0xC0 | (c >> 6)));
    } else if (c < 0x10000) {
      out.append(char(0xE0 | (c >> 12)));
      out.append(char(0x80 | ((c >> 6) & 0x3F)));
    } else {
      out.append(char(0xF0 | (c >> 18)));
      out.append(char(0x80 | ((c >> 12) & 0x3F)));
      out.append(char(0x80 | ((c >> 6) & 0x3F)));
    }
    out.append(char(0x80 | (c & 0x3F)));
  }
  return out;
}

void ToNative(QStringView text, QByteArray* out) {
  const char16_t* u = reinterpret_cast<const char16_t*>(text.utf16());
  const qsizetype n = text.size();
  out->resize(n);
  char* o = out->data();
  for (qsizetype i = 0; i < n; ++i) {
    if (u[i] >= 0x80) {
      *out = ToNative(text);
      return;
    }
    o[i] = char(u[i]);
  }
}

QString DisplayText(const QString& text) {
  const qsizetype n = text.size();
  qsizetype i = 0;
  while (i < n && !IsEscape(text.at(i).unicode())) ++i;
  if (i == n) return text;
  QString out = text;
  for (; i < n; ++i) {
    const char16_t c = out.at(i).unicode();
    // A low surrogate that follows a high one is half of a real pair.
    if (IsEscape(c) && !(i > 0 && out.at(i - 1).isHighSurrogate())) out[i] = QChar(0xFFFD);
  }
  return out;
}

QString WithSeparator(const QString& folder) {
  if (folder.endsWith(kSeparator)) return folder;
  return folder + kSeparator;
}

}  // namespace platform
