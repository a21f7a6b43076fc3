#pragma once
#include <QString>

namespace platform {

// Gives the calling thread a file-descriptor table of its own. Threads that
// share one pay on every open, read and close (the kernel's single-owner
// shortcuts end); a worker that opens many small files runs at
// single-threaded cost again. Descriptors opened by other threads afterwards
// are not visible to it. False where the system refuses.
bool UseOwnFileTable();

// A folder opened by path for a thread with its own table, to open entries
// relative to it. Moving to another folder closes the previous one.
class FolderHandle {
 public:
  FolderHandle() = default;
  ~FolderHandle();
  FolderHandle(const FolderHandle&) = delete;
  FolderHandle& operator=(const FolderHandle&) = delete;

  // Opens `folder` (ending in "/") unless it is the one open already.
  bool open(const QString& folder);
  // openat() of a name in the folder; -1 with errno set on failure.
  int openEntry(const QString& name, int flags) const;

 private:
  QString path_;
  int fd_ = -1;
};

}  // namespace platform
