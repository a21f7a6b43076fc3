#pragma once
#include <QString>

namespace core {

// An age as people read it: "12 min", "5 h", "3 days", "7 months",
// "2 years"; a time ahead of the present reads "in 5 h". `minutes` is the
// present minus the file's time.
QString AgeText(double minutes);
void AppendAgeText(QString* out, double minutes);

// The present time in minutes since 1601-01-01 UTC, the frame of file times.
double UtcMinutesSince1601Now();

}  // namespace core
