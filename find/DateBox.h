#pragma once
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace find {

// The text a date box holds for entries whose time is not known.
inline constexpr const char* kUnknownDate = "(unknown)";

// Reads a date box: a date in the user's locale format (its short date, the
// same with a four-digit year, or ISO yyyy-MM-dd), optionally followed by a
// time (the locale's short time, with or without seconds, or 24-hour h:mm[:ss]).
// The local time becomes a UTC file time with one-second precision. Two-digit
// years 00-29 are 2000-2029. False for anything that is not a valid date.
bool ParseDateBox(const QString& text, qint64* fileTime);

// The text the quick filters put into a date box: the four-digit-year short
// date and the time with seconds, both in the user's locale.
QString DateBoxText(const QDateTime& local);

// The locale's short time with seconds ("h:mm AP" gives "h:mm:ss AP").
QString TimeWithSeconds(const QString& shortTime);

// The date and time patterns ParseDateBox tries (exposed for tests).
QStringList DateBoxDateFormats();
QStringList DateBoxTimeFormats();

}  // namespace find
