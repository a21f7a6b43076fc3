#include "core/RowEscape.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace core {

namespace {

void AppendHexByte(QString* out, unsigned byte) {
  static constexpr char16_t kDigits[] = u"0123456789ABCDEF";
  out->append(u"\\x");
  out->append(QChar(kDigits[(byte >> 4) & 0xF]));
  out->append(QChar(kDigits[byte & 0xF]));
}

int HexDigit(QChar c) {
  const char16_t u = c.unicode();
  if (u >= u'0' && u <= u'9') return u - u'0';
  if (u >= u'A' && u <= u'F') return u - u'A' + 10;
  if (u >= u'a' && u <= u'f') return u - u'a' + 10;
  return -1;
}

// A unit that may need an escape: a control character, a backslash, delete
// or an escaped byte (whether an escaped byte really is one depends on the
// unit before it).
inline bool MayEscapeUnit(char16_t c) { return c < 0x20 || c == u'\\' || c == 0x7F || (c >= 0xDC80 && c <= 0xDCFF); }

#if defined(__SSE2__)
// MayEscapeUnit for eight units at once: a lane of all ones for each hit.
inline __m128i MayEscapeLanes(__m128i c) {
  const __m128i del = _mm_set1_epi16(0x7F);
  const __m128i zero = _mm_setzero_si128();
  // Unsigned c <= 0x1F and (c - 0xDC80) <= 0x7F through saturating subtraction.
  __m128i hit = _mm_cmpeq_epi16(_mm_subs_epu16(c, _mm_set1_epi16(0x1F)), zero);
  hit = _mm_or_si128(hit, _mm_cmpeq_epi16(c, _mm_set1_epi16(0x5C)));
  hit = _mm_or_si128(hit, _mm_cmpeq_epi16(c, del));
  return _mm_or_si128(hit, _mm_cmpeq_epi16(_mm_subs_epu16(_mm_sub_epi16(c, _mm_set1_epi16(short(0xDC80))), del), zero));
}
#endif

// True when some unit may need an escape. Almost no field has one, and this
// runs for every row of a walk over many files, so it looks at eight units
// at a time.
bool MayNeedEscape(QStringView text) {
  const char16_t* u = reinterpret_cast<const char16_t*>(text.utf16());
  const qsizetype n = text.size();
  qsizetype i = 0;
#if defined(__SSE2__)
  for (; i + 8 <= n; i += 8)
    if (_mm_movemask_epi8(MayEscapeLanes(_mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i))))) return true;
#endif
  for (; i < n; ++i)
    if (MayEscapeUnit(u[i])) return true;
  return false;
}

bool Escaped(QStringView text, qsizetype i) {
  const char16_t c = text[i].unicode();
  return MayEscapeUnit(c) && (c < 0xDC80 || i == 0 || !QChar::isHighSurrogate(text[i - 1].unicode()));
}

#if defined(__SSE2__)
qsizetype SumLanes(__m128i lanes) {
  alignas(16) quint16 v[8];
  _mm_store_si128(reinterpret_cast<__m128i*>(v), lanes);
  return qsizetype(v[0]) + v[1] + v[2] + v[3] + v[4] + v[5] + v[6] + v[7];
}
#endif

}  // namespace

bool RowFieldsPlain(QStringView row, qsizetype separators) {
  const char16_t* u = reinterpret_cast<const char16_t*>(row.utf16());
  const qsizetype n = row.size();
  qsizetype i = 0;
  qsizetype tabs = 0;
#if defined(__SSE2__)
  const __m128i tab = _mm_set1_epi16(0x09);
  const __m128i zero = _mm_setzero_si128();
  // Tabs are counted per lane (a tab's lane is -1) and summed every 65535
  // blocks, before a lane could overflow.
  __m128i tabLanes = zero;
  for (; i + 8 <= n; i += 8) {
    if (((i >> 3) & 0xFFFF) == 0xFFFF) {
      tabs += SumLanes(tabLanes);
      tabLanes = zero;
    }
    const __m128i c = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u + i));
    const __m128i isTab = _mm_cmpeq_epi16(c, tab);
    // Tabs are counted apart; anything else that may need an escape ends the look.
    if (_mm_movemask_epi8(_mm_andnot_si128(isTab, MayEscapeLanes(c)))) return false;
    tabLanes = _mm_sub_epi16(tabLanes, isTab);
  }
  tabs += SumLanes(tabLanes);
#endif
  for (; i < n; ++i) {
    const char16_t c = u[i];
    if (c == u'\t') ++tabs;
    else if (MayEscapeUnit(c)) return false;
  }
  return tabs == separators;
}

bool NeedsRowEscape(QStringView text) {
  if (!MayNeedEscape(text)) return false;
  for (qsizetype i = 0; i < text.size(); ++i)
    if (Escaped(text, i)) return true;
  return false;
}

void AppendRowField(QString* out, QStringView text) {
  if (!MayNeedEscape(text)) {
    out->append(text);
    return;
  }
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

bool ParseRowField(QStringView field, QString* out) {
  out->clear();
  out->reserve(field.size());
  for (qsizetype i = 0; i < field.size(); ++i) {
    const QChar c = field[i];
    if (c != u'\\') {
      out->append(c);
      continue;
    }
    if (++i >= field.size()) return false;
    switch (field[i].unicode()) {
      case u'\\': out->append(u'\\'); break;
      case u't': out->append(u'\t'); break;
      case u'n': out->append(u'\n'); break;
      case u'r': out->append(u'\r'); break;
      case u'x': {
        if (i + 2 >= field.size()) return false;
        const int high = HexDigit(field[i + 1]), low = HexDigit(field[i + 2]);
        if (high < 0 || low < 0) return false;
        const unsigned byte = unsigned(high * 16 + low);
        i += 2;
        // Control characters stand for themselves; high bytes for a raw byte of a name.
        if (byte < 0x20 || byte == 0x7F) out->append(QChar(char16_t(byte)));
        else if (byte >= 0x80) out->append(QChar(char16_t(0xDC00 + byte)));
        else return false;
        break;
      }
      default: return false;
    }
  }
  return true;
}

}  // namespace core
