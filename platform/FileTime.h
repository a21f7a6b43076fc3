#pragma once
#include <QString>
#include <QtGlobal>

namespace platform {

// FILETIME: 100 ns ticks since 1601-01-01 UTC; 0 means the time is not known.
inline constexpr qint64 kTicksPerSecond = 10'000'000;
inline constexpr qint64 kUnixEpochTicks = 116'444'736'000'000'000;  // 1970-01-01 as FILETIME

inline qint64 FileTimeFromUnix(qint64 seconds, qint64 nanoseconds) {
  return kUnixEpochTicks + seconds * kTicksPerSecond + nanoseconds / 100;
}
// A birth time as statx reports it: 0 where the file system keeps none, or
// reports the Unix epoch itself, which images and some file systems write
// for "not recorded".
inline qint64 BirthFileTime(bool known, qint64 seconds, qint64 nanoseconds) {
  return known && (seconds != 0 || nanoseconds != 0) ? FileTimeFromUnix(seconds, nanoseconds) : 0;
}
// Splits a FILETIME into Unix seconds and nanoseconds (floor division, so
// times before 1970 keep a non-negative nanosecond part).
void FileTimeToUnix(qint64 fileTime, qint64* seconds, qint64* nanoseconds);

struct FileTimes {
  qint64 creation = 0;
  qint64 lastAccess = 0;
  qint64 lastWrite = 0;
};

// Reads the three times of a path (following links); false if it cannot be read.
bool GetFileTimes(const QString& path, FileTimes* times);
// Sets last-access and last-write time (Linux keeps no settable creation time).
// A zero time leaves that time as it is.
bool SetFileTimes(const QString& path, qint64 lastAccess, qint64 lastWrite);

// Present time as FILETIME.
qint64 FileTimeNow();

}  // namespace platform
