#include "core/NumberFormat.h"

#include <cmath>

#include "core/FormatLocale.h"
#include "core/Rounding.h"

namespace core {

namespace {

// Groups a run of ASCII digits with the locale's separator.
QString Grouped(const QString& digits) {
  const QString sep = FormatLocale().groupSeparator();
  if (sep.isEmpty() || digits.size() <= 3) return digits;
  QString out;
  out.reserve(digits.size() + digits.size() / 3 * sep.size());
  const qsizetype first = digits.size() % 3 == 0 ? 3 : digits.size() % 3;
  out.append(QStringView(digits).left(first));
  for (qsizetype i = first; i < digits.size(); i += 3) {
    out.append(sep);
    out.append(QStringView(digits).mid(i, 3));
  }
  return out;
}

// Fixed-point text of |value| with `decimals` places, rounded half to even,
// split into integer digits and fraction digits.
void FixedParts(double value, int decimals, QString* intPart, QString* fracPart) {
  const QString text = QString::number(std::fabs(value), 'f', decimals);
  const qsizetype dot = text.indexOf(u'.');
  *intPart = dot < 0 ? text : text.left(dot);
  *fracPart = dot < 0 ? QString() : text.mid(dot + 1);
}

QString Assemble(bool negative, const QString& intPart, const QString& frac, bool group, int minIntDigits) {
  QString digits = intPart;
  while (digits.size() < minIntDigits) digits.prepend(u'0');
  QString out;
  if (negative) out.append(FormatLocale().negativeSign());
  out.append(group ? Grouped(digits) : digits);
  if (!frac.isEmpty()) {
    out.append(FormatLocale().decimalPoint());
    out.append(frac);
  }
  return out;
}

bool IsNegativeAfterRounding(const QString& intPart, const QString& frac, double value) {
  if (!(value < 0)) return false;
  for (QChar c : intPart + frac)
    if (c != u'0') return true;
  return false;
}

QString FormatFixed(double value, int decimals, bool group, int minIntDigits) {
  if (!std::isfinite(value)) return QString::number(value);
  QString i, f;
  if (decimals == 0) {
    const double r = RoundHalfEven(value);
    FixedParts(r, 0, &i, &f);
  } else {
    FixedParts(value, decimals, &i, &f);
  }
  return Assemble(IsNegativeAfterRounding(i, f, value), i, f, group, minIntDigits);
}

}  // namespace

QString FormatNumber(double value, QStringView pattern) {
  if (pattern == u"Standard") return FormatFixed(value, 2, true, 1);
  QStringView p = pattern;
  bool percent = false;
  if (p.endsWith(u'%')) {
    percent = true;
    p.chop(1);
    value *= 100;
  }
  const bool group = p.contains(u',');
  const qsizetype dot = p.indexOf(u'.');
  const QStringView intSpec = dot < 0 ? p : p.left(dot);
  const int decimals = dot < 0 ? 0 : int(p.size() - dot - 1);
  int zeros = 0;
  for (QChar c : intSpec)
    if (c == u'0') ++zeros;
  QString out = FormatFixed(value, decimals, group, group ? 1 : zeros);
  if (percent) out.append(u'%');
  return out;
}

QString LocaleNumber(double value) {
  // The shortest decimal text first, as the number-format call takes it.
  const QString text = QString::number(value, 'g', 15);
  if (text.contains(u'e') || text.contains(u"inf") || text.contains(u"nan"))
    return FormatNumber(value, u"Standard");
  // Round the decimal text itself, halves away from zero, to two places.
  const bool negative = text.startsWith(u'-');
  const QString abs = negative ? text.mid(1) : text;
  const qsizetype dot = abs.indexOf(u'.');
  QString intPart = dot < 0 ? abs : abs.left(dot);
  QString frac = dot < 0 ? QString() : abs.mid(dot + 1);
  const bool roundUp = frac.size() > 2 && frac.at(2) >= u'5';
  frac = frac.left(2).leftJustified(2, u'0');
  QString digits = intPart + frac;
  if (roundUp) {
    qsizetype k = digits.size() - 1;
    while (k >= 0 && digits[k] == u'9') digits[k--] = u'0';
    if (k >= 0) digits[k] = QChar(digits[k].unicode() + 1);
    else digits.prepend(u'1');
  }
  intPart = digits.left(digits.size() - 2);
  frac = digits.right(2);
  bool zero = true;
  for (QChar c : digits) zero = zero && c == u'0';
  const QString result = Assemble(negative && !zero, intPart, frac, true, 1);
  if (result.size() > 19) return FormatNumber(value, u"Standard");
  return result;
}

QString CountPhrase(double count, QStringView noun) {
  if (count == 1) return QStringLiteral("1 ") + noun.toString();
  QString n = count >= 1000 ? FormatNumber(count, u"#,0") : QString::number(qint64(count));
  n.append(u' ').append(noun).append(u's');
  return n;
}

}  // namespace core
