#include "find/DateQuickFilter.h"

#include "core/FormatLocale.h"
#include "find/DateBox.h"

namespace find {

namespace {

// A calendar date given as year, month, day where month and day may run
// over or under their range, as date arithmetic on such triples does
// (month 0 is December of the year before, 31 February is early March).
QDate DateSerial(int year, int month, int day) {
  return QDate(year, 1, 1).addMonths(month - 1).addDays(day - 1);
}

QDateTime Secondless(const QDateTime& t) {
  const QTime time = t.time();
  return QDateTime(t.date(), QTime(time.hour(), time.minute(), time.second()));
}

}  // namespace

QStringList RelativeRangeCaptions() {
  return QStringLiteral(
             "Previous &5 Minutes,Previous &15 Minutes,Previous &Hour,Previous &Day,Previous W&eek,"
             "Previous M&onth,Previous Yea&r,More than a Year &Ago")
      .split(u',');
}

DateFill RelativeRange(int item, const QDateTime& nowIn) {
  const QDateTime now = Secondless(nowIn);
  QDateTime start;
  const QDate d = now.date();
  switch (item) {
    case 0: start = now.addSecs(-5 * 60); break;
    case 1: start = now.addSecs(-15 * 60); break;
    case 2: start = now.addSecs(-60 * 60); break;
    case 3: start = now.addDays(-1); break;
    case 4: start = now.addDays(-7); break;
    case 5: start = QDateTime(DateSerial(d.year(), d.month() - 1, d.day()), now.time()); break;
    default: start = QDateTime(DateSerial(d.year() - 1, d.month(), d.day()), now.time()); break;
  }
  return {DateBoxText(start), DateBoxText(now), item == 7};
}

QStringList PeriodCaptions() {
  return {QStringLiteral("&Today"), QStringLiteral("This &Week"), QStringLiteral("This &Month"),
          QStringLiteral("This &Year")};
}

DateFill PeriodRange(int period, const QDateTime& nowIn) {
  const QDateTime now = Secondless(nowIn);
  QDate d = now.date();
  switch (period) {
    case kThisWeek: {
      const int first = int(core::FormatLocale().firstDayOfWeek());
      d = d.addDays(-((d.dayOfWeek() - first + 7) % 7));
      break;
    }
    case kThisMonth: d = QDate(d.year(), d.month(), 1); break;
    case kThisYear: d = QDate(d.year(), 1, 1); break;
    default: break;
  }
  return {DateBoxText(QDateTime(d, QTime(0, 0))), DateBoxText(now), false};
}

QString LikeCaption(const QString& time) { return QStringLiteral("Like '") + time + u'\''; }

QString SimilarCaption(const QString& time) {
  return QStringLiteral("Similar to '") + time + QStringLiteral("' (+- 10 minutes)");
}

DateFill LikeRange(const QDateTime& time) {
  const QString t = DateBoxText(Secondless(time));
  return {t, t, false};
}

DateFill SimilarRange(const QDateTime& time) {
  const QDateTime t = Secondless(time);
  return {DateBoxText(t.addSecs(-600)), DateBoxText(t.addSecs(600)), false};
}

DateFill UnknownRange() {
  const QString u = QString::fromLatin1(kUnknownDate);
  return {u, u, false};
}

}  // namespace find
