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

int Renameat2(int fromDir, const char* from, int toDir, const char* to) {
  if (syscall(SYS_renameat2, fromDir, from, toDir, to, RENAME_NOREPLACE) == 0) return 0;
  return errno;
}

// For file systems that refuse the no-replace flag: link() fails on an
// existing target, so a file can never be clobbered. Folders cannot be hard
// linked; they get a checked rename, the best such a file system allows.
int LinkThenUnlink(int fromDir, const char* from, int toDir, const char* to) {
  struct stat st {};
  if (fstatat(fromDir, from, &st, AT_SYMLINK_NOFOLLOW) != 0) return errno;
  if (!S_ISDIR(st.st_mode)) {
    if (linkat(fromDir, from, toDir, to, 0) != 0) return errno;
    if (unlinkat(fromDir, from, 0) != 0) {
      const int error = errno;
      unlinkat(toDir, to, 0);
      return error;
    }
    return 0;
  }
  if (fstatat(toDir, to, &st, AT_SYMLINK_NOFOLLOW) == 0) return EEXIST;
  if (::renameat(fromDir, from, toDir, to) != 0) return errno;
  return 0;
}

int RenameNative(int fromDir, const char* from, int toDir, const char* to) {
  const int error = Renameat2(fromDir, from, toDir, to);
  if (error == EINVAL || error == ENOSYS || error == ENOTSUP) return LinkThenUnlink(fromDir, from, toDir, to);
  return error;
}

int RenameNative(const QByteArray& from, const QByteArray& to) {
  return RenameNative(AT_FDCWD, from.constData(), AT_FDCWD, to.constData());
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

int RenameNoReplaceAt(int fromDir, const QByteArray& fromName, int toDir, const QByteArray& toName) {
  return RenameNative(fromDir, fromName.constData(), toDir, toName.constData());
}

QString ErrorText(int error) {
  char buffer[256];
  const char* text = strerror_r(error, buffer, sizeof buffer);
  return QString::fromLocal8Bit(text);
}

}  // namespace platform
