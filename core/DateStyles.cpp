#include "core/DateStyles.h"

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

bool FileTimeToLocal(qint64 fileTime, LocalTime* out) {
  qint64 seconds, nanos;
  platform::FileTimeToUnix(fileTime, &seconds, &nanos);
  // Listed files cluster in time: the last minute converted on this thread
  // serves every time within it (the zone's rules are not asked again).
  thread_local qint64 cachedMinute = std::numeric_limits<qint64>::min();
  thread_local LocalTime cached;
  const qint64 minute = seconds >= 0 ? seconds / 60 : (seconds - 59) / 60;
  const int into = int(seconds - minute * 60);
  if (minute == cachedMinute && cached.second + into < 60) {
    *out = cached;
    out->second += into;
    out->millisecond = int(nanos / 1'000'000);
    return true;
  }
  if (ConvertToLocal(minute * 60, out)) {
    cachedMinute = minute;
    cached = *out;
    out->second += into;
    if (out->second < 60) {
      out->millisecond = int(nanos / 1'000'000);
      return true;
    }
  }
  return ConvertToLocal(seconds, out) && (out->millisecond = int(nanos / 1'000'000), true);
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
