#include "platform/ThreadFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include "platform/NativePath.h"

namespace platform {

bool UseOwnFileTable() {
#if defined(__SANITIZE_THREAD__)
  // The thread sanitizer knows one descriptor table per process and would
  // take the same number in two tables for one file: share it there.
  return false;
#else
  return unshare(CLONE_FILES) == 0;
#endif
}

FolderHandle::~FolderHandle() {
  if (fd_ >= 0) close(fd_);
}

bool FolderHandle::open(const QString& folder) {
  if (fd_ >= 0 && path_ == folder) return true;
  if (fd_ >= 0) close(fd_);
  path_ = folder;
  fd_ = ::open(ToNative(folder).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
  return fd_ >= 0;
}

int FolderHandle::openEntry(const QString& name, int flags) const {
  if (fd_ < 0) {
    errno = EBADF;
    return -1;
  }
  return openat(fd_, ToNative(name).constData(), flags | O_CLOEXEC);
}

}  // namespace platform
