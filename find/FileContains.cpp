#include "find/FileContains.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <cstring>
#include <vector>

#include "core/JobFlags.h"
#include "platform/FileTime.h"
#include "platform/NativePath.h"

namespace find {

namespace {

// Reads up to `size` bytes (fewer only at the end of the file).
qsizetype ReadFully(int fd, char* buffer, qsizetype size) {
  qsizetype done = 0;
  while (done < size) {
    const ssize_t r = read(fd, buffer + done, size_t(size - done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += r;
  }
  return done;
}

// The read itself, on an open regular file of `length` bytes (-1: up to its
// end): whole when it fits one block, else block by block. Block k covers
// [k * step, k * step + block) with step = block - overlap: the last `overlap`
// bytes of one block are the first of the next, so that a match across a
// block boundary is seen whole; they move instead of being read again. Reads
// stop at `length` or at an earlier end of the file.
bool SearchFile(int fd, qint64 length, const TextSearch& search, const YieldHook& yield) {
  char b[kContainsBlock];
  if (length >= 0 && length <= kContainsBlock) return search.foundIn(b, ReadFully(fd, b, qsizetype(length)));
  const qsizetype overlap = search.maxMatchLength() > 1 ? search.maxMatchLength() - 1 : 0;
  qint64 left = length >= 0 ? length : std::numeric_limits<qint64>::max();
  qsizetype have = 0;
  for (qint64 block = 0; left > 0; ++block) {
    if (block > 0) {
      if (yield) yield();
      if (core::JobFlags::AbortRequested()) return false;
      if (block == 1) posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
      const qsizetype keep = have < overlap ? have : overlap;
      std::memmove(b, b + have - keep, size_t(keep));
      have = keep;
    }
    const qsizetype want = qsizetype(std::min<qint64>(kContainsBlock - have, left));
    const qsizetype got = ReadFully(fd, b + have, want);
    if (got == 0 && block > 0) break;  // nothing new: the rest was searched already
    have += got;
    left -= got;
    if (search.foundIn(b, have)) return true;
    if (got < want) break;  // the end of the file
  }
  return false;
}

}  // namespace

bool FileContains(const TextSearch& search, const QString& path, const YieldHook& yield, EntryInFolder where) {
  if (search.text().size() > kContainsBlock || search.maxMatchLength() > kContainsBlock) return false;
  if (where.size == 0) return false;  // empty files hold nothing
  if (where.fd >= 0) return SearchFile(where.fd, where.size, search, yield);
  auto openFile = [&](int flags) {
    if (where.folder) return where.folder->openEntry(where.index, flags);
    return open(platform::ToNative(path).constData(), flags | O_CLOEXEC);
  };
  // O_NONBLOCK: a FIFO must not hang the find; it is refused below anyway.
  const int flags = O_RDONLY | O_NOCTTY | O_NONBLOCK;
  bool noAtime = true;
  int fd = openFile(flags | O_NOATIME);
  if (fd < 0 && errno == EPERM) {
    noAtime = false;
    fd = openFile(flags);
  }
  if (fd < 0) return false;

  // Only regular files are read (a device could be endless); the length is
  // taken before the read. The caller may know both; the time guard needs the
  // times anyway.
  struct stat before {};
  qint64 length = where.size;
  if (!where.regular || length < 0 || !noAtime) {
    if (fstat(fd, &before) != 0 || !S_ISREG(before.st_mode)) {
      close(fd);
      return false;
    }
    length = before.st_size;
  }
  const bool found = length > 0 && SearchFile(fd, length, search, yield);

  if (!noAtime) {
    struct stat after {};
    if (fstat(fd, &after) == 0 && (after.st_atim.tv_sec != before.st_atim.tv_sec ||
                                   after.st_atim.tv_nsec != before.st_atim.tv_nsec)) {
      const QString whole = where.folder && where.folderPath ? *where.folderPath + where.folder->name(where.index) : path;
      platform::SetFileTimes(whole, platform::FileTimeFromUnix(before.st_atim.tv_sec, before.st_atim.tv_nsec), 0);
    }
  }
  close(fd);
  return found;
}

}  // namespace find
