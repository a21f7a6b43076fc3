#include "platform/ThreadFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include "platform/NativePath.h"

namespace platform {

bool UseOwnFileTable() { return unshare(CLONE_FILES) == 0; }

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
