#include "core/AgeText.h"

#include <cmath>
#include <ctime>

#include "platform/FileTime.h"

namespace core {

namespace {

constexpr double kHour = 60, kDay = 1440, kMonth = 43830 /* 30.44 days */, kYear = 525960 /* 365.25 days */;

void AppendCount(QString* out, qint64 n, const char* one, const char* many) {
  out->append(QString::number(n));
  out->append(u' ');
  out->append(QLatin1String(n == 1 ? one : many));
}

}  // namespace

void AppendAgeText(QString* out, double minutes) {
  const bool future = minutes < -0.5;
  if (future) out->append(QLatin1String("in "));
  const double m = std::fabs(minutes);
  // Each unit is used until two of the next would fit, so "90 min" and
  // "36 h" stay exact enough to be useful.
  if (m < 2 * kHour) out->append(QString::number(qint64(m)) + QLatin1String(" min"));
  else if (m < 2 * kDay) out->append(QString::number(qint64(m / kHour)) + QLatin1String(" h"));
  else if (m < 2 * kMonth) AppendCount(out, qint64(m / kDay), "day", "days");
  else if (m < 2 * kYear) AppendCount(out, qint64(m / kMonth), "month", "months");
  else AppendCount(out, qint64(m / kYear), "year", "years");
}

QString AgeText(double minutes) {
  QString out;
  AppendAgeText(&out, minutes);
  return out;
}

double UtcMinutesSince1601Now() {
  return double(time(nullptr)) / 60.0 + double(platform::kUnixEpochTicks / platform::kTicksPerSecond) / 60.0;
}

}  // namespace core
