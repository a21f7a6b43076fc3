#pragma once
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace find {

// What a quick filter of the Date group puts into the tab: both date boxes
// and the state of "&Not".
struct DateFill {
  QString from;
  QString to;
  bool rangeNot = false;
};

// The relative ranges, items 0 to 7.
QStringList RelativeRangeCaptions();
// Item 0..7 at local time `now`: the start in the first box, now in the second.
DateFill RelativeRange(int item, const QDateTime& now);

// "&Today", "This &Week", "This &Month", "This &Year": from the start of the
// period (weeks start on the locale's first day) up to now.
enum Period : int { kToday = 0, kThisWeek = 1, kThisMonth = 2, kThisYear = 3 };
QStringList PeriodCaptions();
DateFill PeriodRange(int period, const QDateTime& now);

// "Like '...'" (exactly that second) and "Similar to '...' (+- 10 minutes)"
// around an entry's local time; `time` is the entry's date box text.
QString LikeCaption(const QString& time);
QString SimilarCaption(const QString& time);
DateFill LikeRange(const QDateTime& time);
DateFill SimilarRange(const QDateTime& time);
// "(unknown)" in both boxes: entries whose time is not known.
DateFill UnknownRange();

}  // namespace find
