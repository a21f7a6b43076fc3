#include "platform/FileTime.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <ctime>

#include "platform/NativePath.h"

namespace platform {

void FileTimeToUnix(qint64 fileTime, qint64* seconds, qint64* nanoseconds) {
  const qint64 rel = fileTime - kUnixEpochTicks;
  qint64 s = rel / kTicksPerSecond;
  qint64 r = rel % kTicksPerSecond;
  if (r < 0) {
    r += kTicksPerSecond;
    --s;
  }
  *seconds = s;
  *nanoseconds = r * 100;
}

bool GetFileTimes(const QString& path, FileTimes* times) {
  struct statx st {};
  const QByteArray native = ToNative(path);
  if (statx(AT_FDCWD, native.constData(), 0, STATX_BASIC_STATS | STATX_BTIME, &st) != 0) return false;
  times->creation = BirthFileTime(st.stx_mask & STATX_BTIME, st.stx_btime.tv_sec, st.stx_btime.tv_nsec);
  times->lastAccess = FileTimeFromUnix(st.stx_atime.tv_sec, st.stx_atime.tv_nsec);
  times->lastWrite = FileTimeFromUnix(st.stx_mtime.tv_sec, st.stx_mtime.tv_nsec);
  return true;
}

bool SetFileTimes(const QString& path, qint64 lastAccess, qint64 lastWrite) {
  struct timespec ts[2];
  const qint64 values[2] = {lastAccess, lastWrite};
  for (int i = 0; i < 2; ++i) {
    if (values[i] == 0) {
      ts[i].tv_sec = 0;
      ts[i].tv_nsec = UTIME_OMIT;
      continue;
    }
    qint64 s, ns;
    FileTimeToUnix(values[i], &s, &ns);
    ts[i].tv_sec = s;
    ts[i].tv_nsec = ns;
  }
  const QByteArray native = ToNative(path);
  return utimensat(AT_FDCWD, native.constData(), ts, 0) == 0;
}

qint64 FileTimeNow() {
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  return FileTimeFromUnix(ts.tv_sec, ts.tv_nsec);
}

}  // namespace platform
