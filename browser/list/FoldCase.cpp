#include "browser/list/FoldCase.h"

namespace browser {

void FoldInto(QStringView text, char16_t* out) {
  const char16_t* s = text.utf16();
  const qsizetype n = text.size();
  for (qsizetype i = 0; i < n; ++i) {
    const char16_t c = s[i];
    if (c < 0x80) {
      out[i] = (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c;
      continue;
    }
    if (QChar::isHighSurrogate(c) && i + 1 < n && QChar::isLowSurrogate(s[i + 1])) {
      const char32_t folded = QChar::toCaseFolded(QChar::surrogateToUcs4(c, s[i + 1]));
      if (QChar::requiresSurrogates(folded)) {
        out[i] = QChar::highSurrogate(folded);
        out[i + 1] = QChar::lowSurrogate(folded);
      } else {  // never happens with simple folding; keep the pair as it is
        out[i] = c;
        out[i + 1] = s[i + 1];
      }
      ++i;
      continue;
    }
    const char32_t folded = QChar::toCaseFolded(char32_t(c));
    out[i] = folded < 0x10000 ? char16_t(folded) : c;
  }
}

QString FoldCase(QStringView text) {
  QString out(text.size(), Qt::Uninitialized);
  FoldInto(text, reinterpret_cast<char16_t*>(out.data()));
  return out;
}

int CompareText(QStringView a, QStringView b, bool caseInsensitive) {
  if (!caseInsensitive) return a.compare(b, Qt::CaseSensitive);
  return QStringView(FoldCase(a)).compare(QStringView(FoldCase(b)), Qt::CaseSensitive);
}

}  // namespace browser
