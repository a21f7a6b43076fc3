#pragma once
#include <QString>
#include <QStringView>
#include <vector>

namespace core {

// A broken-down local date and time.
struct LocalTime {
  int year = 1601, month = 1, day = 1;
  int hour = 0, minute = 0, second = 0, millisecond = 0;
  int weekday = 1;  // 1 = Monday ... 7 = Sunday
};

// A date/time pattern compiled once and applied to many times. Understands the
// named formats "Medium Date", "Long Date", "Short Time", "Medium Time", the
// empty pattern (the locale's general date), and the pattern letters d, M, y,
// h/H, m, s, z, AP/ap with '...' quoting; names come from the format locale.
class DatePattern {
 public:
  explicit DatePattern(QStringView pattern);
  QString format(const LocalTime& t) const;
  void appendTo(QString* out, const LocalTime& t) const;

  // The pattern a named format stands for in the format locale.
  static QString Expand(QStringView pattern);

 private:
  enum class Field : unsigned char {
    Literal, Day, Day2, DayShort, DayLong, Month, Month2, MonthShort, MonthLong,
    Year2, Year4, Hour12, Hour12_2, Hour24, Hour24_2, Minute, Minute2, Second, Second2,
    Milli, Milli3, AmPmUpper, AmPmLower
  };
  struct Token {
    Field field;
    QString literal;
  };
  std::vector<Token> tokens_;
};

}  // namespace core
