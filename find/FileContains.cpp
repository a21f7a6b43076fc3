#include "find/FileContains.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

// The read itself, on an open regular file of `length` bytes.
bool SearchFile(int fd, qint64 length, const TextSearch& search, const YieldHook& yield) {
  if (length <= kContainsBlock) {
    char buffer[kContainsBlock];
    const qsizetype got = ReadFully(fd, buffer, qsizetype(length));
    return search.foundIn(buffer, got);
  }
  const qsizetype overlap = search.maxMatchLength() - 1;
  const qsizetype step = kContainsBlock - overlap;
  const qint64 fullBlocks = length / step;
  std::vector<char> buffer(static_cast<size_t>(kContainsBlock));
  char* const b = buffer.data();
#ifdef POSIX_FADV_SEQUENTIAL
  posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
  // Block k covers [k * step, k * step + block): the last `overlap` bytes of
  // one block are the first of the next, so they move instead of being re-read.
  qsizetype have = 0;
  for (qint64 k = 0; k < fullBlocks; ++k) {
    if (yield) yield();
    if (core::JobFlags::AbortRequested()) return false;
    if (k > 0) {
      const qsizetype keep = have < overlap ? have : overlap;
      std::memmove(b, b + have - keep, size_t(keep));
      have = keep;
    }
    have += ReadFully(fd, b + have, kContainsBlock - have);
    if (search.foundIn(b, have)) return true;
    if (have < kContainsBlock) return false;  // this block reached the end of the file
  }
  // The tail: from the next block's start to the end of the file.
  const qsizetype keep = have < overlap ? have : overlap;
  std::memmove(b, b + have - keep, size_t(keep));
  const qsizetype tail = qsizetype(length - fullBlocks * step);
  const qsizetype got = keep + ReadFully(fd, b + keep, tail - keep > 0 ? tail - keep : 0);
  return search.foundIn(b, got);
}

}  // namespace

bool FileContains(const TextSearch& search, const QString& path, const YieldHook& yield, EntryInFolder where) {
  if (search.text().size() > kContainsBlock || search.maxMatchLength() > kContainsBlock) return false;
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

  struct stat before {};
  if (fstat(fd, &before) != 0 || !S_ISREG(before.st_mode) || before.st_size == 0) {
    close(fd);
    return false;
  }
  // An empty text is found in any file that holds something.
  const bool found = search.text().isEmpty() || SearchFile(fd, before.st_size, search, yield);

  if (!noAtime) {
    struct stat after {};
    if (fstat(fd, &after) == 0 && (after.st_atim.tv_sec != before.st_atim.tv_sec ||
                                   after.st_atim.tv_nsec != before.st_atim.tv_nsec)) {
      platform::SetFileTimes(path, platform::FileTimeFromUnix(before.st_atim.tv_sec, before.st_atim.tv_nsec), 0);
    }
  }
  close(fd);
  return found;
}

}  // namespace find
