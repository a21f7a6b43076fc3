#include "platform/SafeRename.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/NativePath.h"

#ifndef RENAME_NOREPLACE
#define RENAME_NOREPLACE (1 << 0)
#endif

namespace platform {

namespace {

int Renameat2(const QByteArray& from, const QByteArray& to) {
  if (syscall(SYS_renameat2, AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0) return 0;
  return errno;
}

// For file systems that refuse the no-replace flag: link() fails on an
// existing target, so a file can never be clobbered. Folders cannot be hard
// linked; they get a checked rename, the best such a file system allows.
int LinkThenUnlink(const QByteArray& from, const QByteArray& to) {
  struct stat st {};
  if (lstat(from.constData(), &st) != 0) return errno;
  if (!S_ISDIR(st.st_mode)) {
    if (link(from.constData(), to.constData()) != 0) return errno;
    if (unlink(from.constData()) != 0) {
      const int error = errno;
      unlink(to.constData());
      return error;
    }
    return 0;
  }
  if (lstat(to.constData(), &st) == 0) return EEXIST;
  if (::rename(from.constData(), to.constData()) != 0) return errno;
  return 0;
}

int RenameNative(const QByteArray& from, const QByteArray& to) {
  const int error = Renameat2(from, to);
  if (error == EINVAL || error == ENOSYS || error == ENOTSUP) return LinkThenUnlink(from, to);
  return error;
}

}  // namespace

int RenameNoReplace(const QString& from, const QString& to) {
  const QByteArray nativeFrom = ToNative(from);
  const QByteArray nativeTo = ToNative(to);
  if (nativeFrom == nativeTo) return 0;
  if (from.compare(to, Qt::CaseInsensitive) != 0) return RenameNative(nativeFrom, nativeTo);

  // Only the case differs. On a case-insensitive file system `to` names the
  // source itself, so a direct no-replace rename would see it as taken.
  struct stat a {}, b {};
  if (lstat(nativeFrom.constData(), &a) != 0) return errno;
  const bool sameEntry = lstat(nativeTo.constData(), &b) == 0 && a.st_dev == b.st_dev && a.st_ino == b.st_ino;
  if (!sameEntry) return RenameNative(nativeFrom, nativeTo);
  // The temporary name is short and in the same folder, so that a name near
  // the length limit can change its case too.
  const QByteArray folder = nativeFrom.left(nativeFrom.lastIndexOf('/') + 1);
  for (int attempt = 0; attempt < 100; ++attempt) {
    const QByteArray temp = folder + ".~qv" + QByteArray::number(getpid()) + "_" + QByteArray::number(attempt);
    const int error = RenameNative(nativeFrom, temp);
    if (error == EEXIST) continue;
    if (error != 0) return error;
    const int second = RenameNative(temp, nativeTo);
    if (second != 0) RenameNative(temp, nativeFrom);  // put the name back as it was
    return second;
  }
  return EEXIST;
}

QString ErrorText(int error) {
  char buffer[256];
  const char* text = strerror_r(error, buffer, sizeof buffer);
  return QString::fromLocal8Bit(text);
}

}  // namespace platform
