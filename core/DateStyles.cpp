#include "core/DateStyles.h"

#include <array>
#include <ctime>
#include <limits>
#include <map>

#include "core/FormatLocale.h"
#include "platform/DirEntry.h"
#include "platform/FileTime.h"
#include "platform/FolderReader.h"

namespace core {

namespace {

struct Styles {
  QString shortDate4;
  QString date[4];
  QString time[4] = {QStringLiteral("hh:mm:ss"), QStringLiteral("Short Time"), QStringLiteral("Medium Time"),
                     QStringLiteral(" ")};
  int generation = 0;
  bool ready = false;
};

Styles& State() {
  static Styles s;
  return s;
}

void EnsureReady() {
  if (!State().ready) SetupDateStyles();
}

// Compiled patterns, rebuilt when the locale changes.
const DatePattern& Compiled(QStringView pattern) {
  thread_local std::map<QString, DatePattern> cache;
  thread_local int generation = -1;
  if (generation != State().generation) {
    cache.clear();
    generation = State().generation;
  }
  auto it = cache.find(pattern.toString());
  if (it == cache.end()) it = cache.emplace(pattern.toString(), DatePattern(pattern)).first;
  return it->second;
}

}  // namespace

QString WidenYear(const QString& shortDate) {
  if (shortDate.contains(u"yyyy")) return shortDate;
  QString out = shortDate;
  return out.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
}

void SetupDateStyles() {
  Styles& s = State();
  s.shortDate4 = WidenYear(FormatLocale().dateFormat(QLocale::ShortFormat));
  s.date[0] = QString();
  s.date[1] = s.shortDate4;
  s.date[2] = QStringLiteral("Medium Date");
  s.date[3] = QStringLiteral("Long Date");
  ++s.generation;
  s.ready = true;
}

const QString& ShortDate4() {
  EnsureReady();
  return State().shortDate4;
}

QString DateStylePattern(int index) {
  EnsureReady();
  return index >= 0 && index < 4 ? State().date[index] : QString();
}

QString TimeStylePattern(int index) {
  EnsureReady();
  return index >= 0 && index < 4 ? State().time[index] : State().time[0];
}

static bool ConvertToLocal(qint64 seconds, LocalTime* out);

namespace {

// Days since 1970-01-01 to a civil date (proleptic Gregorian).
void CivilFromDays(qint64 days, int* year, int* month, int* day) {
  days += 719468;
  const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
  const qint64 doe = days - era * 146097;
  const qint64 yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const qint64 doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const qint64 mp = (5 * doy + 2) / 153;
  *day = int(doy - (153 * mp + 2) / 5 + 1);
  *month = int(mp < 10 ? mp + 3 : mp - 9);
  *year = int(yoe + era * 400 + (*month <= 2 ? 1 : 0));
}

qint64 FloorDiv(qint64 a, qint64 b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

// The zone's offset from UTC for one UTC day, where it holds all day (the
// offset at its first and its last second agree).
struct DayOffset {
  qint64 day = std::numeric_limits<qint64>::min();
  long offset = 0;
  bool whole = false;
};

long OffsetAt(qint64 seconds, bool* ok) {
  const time_t t = time_t(seconds);
  struct tm tm {};
  *ok = localtime_r(&t, &tm) != nullptr;
  return *ok ? tm.tm_gmtoff : 0;
}

}  // namespace

bool FileTimeToLocal(qint64 fileTime, LocalTime* out) {
  qint64 seconds, nanos;
  platform::FileTimeToUnix(fileTime, &seconds, &nanos);
  // Listed files cluster in days: the zone is asked twice per UTC day seen
  // on this thread (the library call takes a lock), and the rest is
  // arithmetic. A day with a change of offset goes the long way.
  thread_local std::array<DayOffset, 1024> days;
  const qint64 day = FloorDiv(seconds, 86400);
  DayOffset& d = days[size_t(day) % days.size()];
  if (d.day != day) {
    bool okFirst = false, okLast = false;
    const long first = OffsetAt(day * 86400, &okFirst);
    const long last = OffsetAt(day * 86400 + 86399, &okLast);
    d.day = day;
    d.offset = first;
    d.whole = okFirst && okLast && first == last;
  }
  if (!d.whole) {
    if (!ConvertToLocal(seconds, out)) return false;
    out->millisecond = int(nanos / 1'000'000);
    return true;
  }
  const qint64 local = seconds + d.offset;
  const qint64 localDay = FloorDiv(local, 86400);
  const qint64 inDay = local - localDay * 86400;
  CivilFromDays(localDay, &out->year, &out->month, &out->day);
  out->hour = int(inDay / 3600);
  out->minute = int(inDay / 60 % 60);
  out->second = int(inDay % 60);
  out->millisecond = int(nanos / 1'000'000);
  const qint64 weekday = (localDay + 3) % 7;  // 1970-01-01 was a Thursday
  out->weekday = int(weekday < 0 ? weekday + 7 : weekday) + 1;
  return true;
}

bool ConvertToLocal(qint64 seconds, LocalTime* out) {
  const time_t t = time_t(seconds);
  struct tm tm {};
  if (!localtime_r(&t, &tm)) return false;
  out->year = tm.tm_year + 1900;
  out->month = tm.tm_mon + 1;
  out->day = tm.tm_mday;
  out->hour = tm.tm_hour;
  out->minute = tm.tm_min;
  out->second = tm.tm_sec;
  out->millisecond = 0;
  out->weekday = tm.tm_wday == 0 ? 7 : tm.tm_wday;
  return true;
}

QString FileTimeText(qint64 fileTime, QStringView datePattern, QStringView timePattern, bool dateOnly) {
  if (fileTime == 0) return QStringLiteral("(unknown)");
  EnsureReady();
  LocalTime lt;
  if (!FileTimeToLocal(fileTime, &lt)) return QStringLiteral("(unknown)");
  QString out;
  out.reserve(32);
  Compiled(datePattern).appendTo(&out, lt);
  if (!dateOnly) {
    out.append(u' ');
    Compiled(timePattern).appendTo(&out, lt);
  }
  return out;
}

QString PathDateTimeText(const QString& path) {
  platform::DirEntry e;
  if (!platform::StatPath(path, &e)) return QString();
  return FileTimeText(e.lastWriteTime, ShortDate4(), u"hh:mm:ss", false);
}

double MinutesSince1601Now() {
  const time_t now = time(nullptr);
  struct tm tm {};
  localtime_r(&now, &tm);
  // Local wall-clock seconds since 1970, then the 1601 epoch in minutes.
  const double localSeconds = double(now) + double(tm.tm_gmtoff);
  return localSeconds / 60.0 + double(platform::kUnixEpochTicks / platform::kTicksPerSecond) / 60.0;
}

}  // namespace core
