#include "find/NamePatterns.h"

namespace find {

QStringList SplitNamePatterns(const QString& named) {
  QStringList out;
  if (named.isEmpty()) return out;
  qsizetype from = 0;
  for (;;) {
    const qsizetype semi = named.indexOf(u';', from);
    if (semi < 0) {
      out.append(named.mid(from));
      break;
    }
    out.append(named.mid(from, semi - from));
    if (semi == named.size() - 1) break;  // a trailing ";" gives no empty segment
    from = semi + 1;
  }
  return out;
}

QStringList NormalisePatterns(const QString& named, bool exact) {
  static const QString kStars = QStringLiteral("**.**");
  static const QString kDots(80, u'.');
  static const QString kAll = QStringLiteral("*.*");

  QStringList out;
  for (QString segment : SplitNamePatterns(named)) {
    // A segment of dots only means every name, typed with or without "Exact match".
    const bool dots = !segment.isEmpty() && kDots.contains(segment);
    if (!exact && !segment.contains(u'*')) segment = u'*' + segment + u'*';
    if (dots || kStars.contains(segment)) segment = kAll;
    if (segment == kAll) return {kAll};
    out.append(segment);
  }
  if (out.isEmpty()) out.append(kAll);
  return out;
}

}  // namespace find
