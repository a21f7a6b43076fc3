#pragma once
#include <QString>
#include <QStringView>

#include "core/DatePattern.h"

namespace core {

// Reads the locale's short date, widens it to a four-digit year and fills the
// date and time style arrays. Runs at start-up and whenever the format
// locale changes.
void SetupDateStyles();
// "yy" becomes "yyyy" unless the pattern already holds "yyyy".
QString WidenYear(const QString& shortDate);

const QString& ShortDate4();
QString DateStylePattern(int index);  // 0..3; others give the general form
QString TimeStylePattern(int index);  // 0..3

// FILETIME (UTC) to local broken-down time; false for times the calendar cannot hold.
bool FileTimeToLocal(qint64 fileTime, LocalTime* out);

// "(unknown)" for a zero time; else the local date, and unless dateOnly a
// blank and the time.
QString FileTimeText(qint64 fileTime, QStringView datePattern, QStringView timePattern, bool dateOnly);
// Last-write time of a path as ShortDate4 and "hh:mm:ss"; empty if it cannot be read.
QString PathDateTimeText(const QString& path);

// Present local time in minutes since 1601-01-01, for ages.
double MinutesSince1601Now();

}  // namespace core
