#include "core/DatePattern.h"

#include <algorithm>

#include "core/AppendText.h"
#include "core/FormatLocale.h"

namespace core {

namespace {

int RunLength(QStringView p, qsizetype i) {
  qsizetype j = i;
  while (j < p.size() && p[j] == p[i]) ++j;
  return int(j - i);
}

// A date is a dozen small pieces: they are gathered here and go into the
// string in one append.
class Pieces {
 public:
  explicit Pieces(QString* out) : out_(out) {}
  ~Pieces() { flush(); }
  void add(QStringView text) {
    if (n_ + text.size() > kSize) {
      flush();
      if (text.size() > kSize) {
        out_->append(text);
        return;
      }
    }
    std::copy(text.utf16(), text.utf16() + text.size(), buf_ + n_);
    n_ += text.size();
  }
  void number(int v, int width) {
    char16_t digits[16];
    int n = 0;
    unsigned u = v < 0 ? 0u - unsigned(v) : unsigned(v);
    do {
      digits[n++] = char16_t(u'0' + u % 10);
      u /= 10;
    } while (u);
    if (n_ + width + n + 1 > kSize) flush();
    if (v < 0) buf_[n_++] = u'-';
    for (int k = n; k < width; ++k) buf_[n_++] = u'0';
    while (n) buf_[n_++] = digits[--n];
  }

 private:
  void flush() {
    if (n_) AppendText(out_, QStringView(buf_, n_));
    n_ = 0;
  }
  static constexpr qsizetype kSize = 96;
  QString* out_;
  char16_t buf_[kSize];
  qsizetype n_ = 0;
};

}  // namespace

QString DatePattern::Expand(QStringView pattern) {
  const QLocale& loc = FormatLocale();
  if (pattern.isEmpty()) return loc.dateFormat(QLocale::ShortFormat);
  if (pattern == u"Long Date") return loc.dateFormat(QLocale::LongFormat);
  if (pattern == u"Medium Date") return QStringLiteral("dd-MMM-yy");
  if (pattern == u"Short Time") return QStringLiteral("HH:mm");
  if (pattern == u"Medium Time") return QStringLiteral("hh:mm AP");
  return pattern.toString();
}

DatePattern::DatePattern(QStringView pattern) {
  const QString expanded = Expand(pattern);
  const QStringView p = expanded;
  const bool twelveHour = p.contains(u"AP", Qt::CaseInsensitive);
  auto literal = [this](QStringView text) {
    if (!tokens_.empty() && tokens_.back().field == Field::Literal) tokens_.back().literal.append(text);
    else tokens_.push_back({Field::Literal, text.toString()});
  };
  for (qsizetype i = 0; i < p.size();) {
    const QChar c = p[i];
    const int run = RunLength(p, i);
    if (c == u'\'') {
      // Quoted literal; '' is a quote.
      if (i + 1 < p.size() && p[i + 1] == u'\'') {
        literal(u"'");
        i += 2;
        continue;
      }
      qsizetype j = i + 1;
      QString text;
      while (j < p.size()) {
        if (p[j] == u'\'') {
          if (j + 1 < p.size() && p[j + 1] == u'\'') {
            text.append(u'\'');
            j += 2;
            continue;
          }
          break;
        }
        text.append(p[j++]);
      }
      literal(text);
      i = j + 1;
      continue;
    }
    Field f = Field::Literal;
    int used = run;
    switch (c.unicode()) {
      case u'd': f = run == 1 ? Field::Day : run == 2 ? Field::Day2 : run == 3 ? Field::DayShort : Field::DayLong; used = std::min(run, 4); break;
      case u'M': f = run == 1 ? Field::Month : run == 2 ? Field::Month2 : run == 3 ? Field::MonthShort : Field::MonthLong; used = std::min(run, 4); break;
      case u'y': f = run >= 4 ? Field::Year4 : Field::Year2; used = run >= 4 ? 4 : 2; if (run < 2) { literal(u"y"); used = 1; f = Field::Literal; } break;
      case u'h': f = twelveHour ? (run >= 2 ? Field::Hour12_2 : Field::Hour12) : (run >= 2 ? Field::Hour24_2 : Field::Hour24); used = std::min(run, 2); break;
      case u'H': f = run >= 2 ? Field::Hour24_2 : Field::Hour24; used = std::min(run, 2); break;
      case u'm': f = run >= 2 ? Field::Minute2 : Field::Minute; used = std::min(run, 2); break;
      case u's': f = run >= 2 ? Field::Second2 : Field::Second; used = std::min(run, 2); break;
      case u'z': f = run >= 3 ? Field::Milli3 : Field::Milli; used = run >= 3 ? 3 : 1; break;
      case u'A':
      case u'a':
        if (i + 1 < p.size() && (p[i + 1] == u'P' || p[i + 1] == u'p')) {
          f = c == u'A' ? Field::AmPmUpper : Field::AmPmLower;
          used = 2;
        } else {
          f = c == u'A' ? Field::AmPmUpper : Field::AmPmLower;
          used = 1;
        }
        break;
      default:
        literal(p.mid(i, 1));
        i += 1;
        continue;
    }
    if (f != Field::Literal) tokens_.push_back({f, QString()});
    i += used;
  }
}

void DatePattern::appendTo(QString* out, const LocalTime& t) const {
  const QLocale& loc = FormatLocale();
  Pieces p(out);
  for (const Token& tok : tokens_) {
    switch (tok.field) {
      case Field::Literal: p.add(tok.literal); break;
      case Field::Day: p.number(t.day, 1); break;
      case Field::Day2: p.number(t.day, 2); break;
      case Field::DayShort: p.add(loc.dayName(t.weekday, QLocale::ShortFormat)); break;
      case Field::DayLong: p.add(loc.dayName(t.weekday, QLocale::LongFormat)); break;
      case Field::Month: p.number(t.month, 1); break;
      case Field::Month2: p.number(t.month, 2); break;
      case Field::MonthShort: p.add(loc.monthName(t.month, QLocale::ShortFormat)); break;
      case Field::MonthLong: p.add(loc.monthName(t.month, QLocale::LongFormat)); break;
      case Field::Year2: p.number(((t.year % 100) + 100) % 100, 2); break;
      case Field::Year4: p.number(t.year, 4); break;
      case Field::Hour12: p.number(t.hour % 12 == 0 ? 12 : t.hour % 12, 1); break;
      case Field::Hour12_2: p.number(t.hour % 12 == 0 ? 12 : t.hour % 12, 2); break;
      case Field::Hour24: p.number(t.hour, 1); break;
      case Field::Hour24_2: p.number(t.hour, 2); break;
      case Field::Minute: p.number(t.minute, 1); break;
      case Field::Minute2: p.number(t.minute, 2); break;
      case Field::Second: p.number(t.second, 1); break;
      case Field::Second2: p.number(t.second, 2); break;
      case Field::Milli: p.number(t.millisecond, 1); break;
      case Field::Milli3: p.number(t.millisecond, 3); break;
      case Field::AmPmUpper: p.add(t.hour < 12 ? loc.amText().toUpper() : loc.pmText().toUpper()); break;
      case Field::AmPmLower: p.add(t.hour < 12 ? loc.amText().toLower() : loc.pmText().toLower()); break;
    }
  }
}

QString DatePattern::format(const LocalTime& t) const {
  QString out;
  out.reserve(24);
  appendTo(&out, t);
  return out;
}

}  // namespace core
