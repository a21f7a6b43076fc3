#include "platform/FileCopier.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string_view>
#include <vector>

#include "platform/FolderTypes.h"
#include "platform/NativePath.h"

namespace platform {

namespace {

qint64 Nanoseconds(const struct timespec& t) { return qint64(t.tv_sec) * 1000000000 + t.tv_nsec; }

NodeInfo FromStat(const struct stat& st) {
  NodeInfo info;
  if (S_ISREG(st.st_mode)) info.kind = NodeInfo::kFile;
  else if (S_ISDIR(st.st_mode)) info.kind = NodeInfo::kFolder;
  else if (S_ISLNK(st.st_mode)) info.kind = NodeInfo::kLink;
  else if (S_ISFIFO(st.st_mode)) info.kind = NodeInfo::kFifo;
  else if (S_ISSOCK(st.st_mode)) info.kind = NodeInfo::kSocket;
  else info.kind = NodeInfo::kDevice;
  info.device = st.st_dev;
  info.inode = st.st_ino;
  info.size = st.st_size;
  info.mtimeNs = Nanoseconds(st.st_mtim);
  info.mode = st.st_mode & 07777;
  return info;
}

int CloseKeeping(int fd, int error) {
  if (fd >= 0) ::close(fd);
  return error;
}

// Plain read/write for file systems or kernels without copy_file_range.
ssize_t ReadWrite(int in, int out, size_t length, std::vector<char>* buffer) {
  if (buffer->empty()) buffer->resize(1 << 20);
  const size_t want = std::min(length, buffer->size());
  ssize_t got;
  do got = ::read(in, buffer->data(), want);
  while (got < 0 && errno == EINTR);
  if (got <= 0) return got;
  ssize_t written = 0;
  while (written < got) {
    const ssize_t w = ::write(out, buffer->data() + written, size_t(got - written));
    if (w < 0) {
      if (errno == EINTR) continue;
      return -1;
    }
    written += w;
  }
  return got;
}

}  // namespace

NodeInfo FileCopier::Stat(const QString& path) {
  struct stat st {};
  if (::lstat(ToNative(path).constData(), &st) != 0) {
    NodeInfo info;
    if (errno != ENOENT && errno != ENOTDIR) info.error = errno;
    return info;
  }
  return FromStat(st);
}

int FileCopier::CopyFile(const QString& source, const QString& target, qint64 blockSize, const BlockHook& hook) {
  return CopyFileAt(AT_FDCWD, ToNative(source), AT_FDCWD, ToNative(target), blockSize, hook);
}

int FileCopier::CopyFileAt(int sourceFolder, const QByteArray& source, int targetFolder, const QByteArray& target,
                           qint64 blockSize, const BlockHook& hook) {
  return CopyInto(sourceFolder, source, targetFolder, &target, blockSize, hook, nullptr);
}

int FileCopier::CopyFileUnnamed(int sourceFolder, const QByteArray& source, int targetFolder, qint64 blockSize,
                                const BlockHook& hook, int* unnamed) {
  *unnamed = -1;
  // Linking needs the descriptor's name under /proc; without it the caller
  // takes the named route from the start.
  static const bool procFds = ::access("/proc/self/fd", X_OK) == 0;
  if (!procFds) return EOPNOTSUPP;
  return CopyInto(sourceFolder, source, targetFolder, nullptr, blockSize, hook, unnamed);
}

int FileCopier::LinkUnnamed(int fd, int targetFolder, const QByteArray& name) {
  // Straight from the descriptor where the kernel lets its opener (6.10 on,
  // or with the capability); else through its name under /proc, a path walk dearer.
  static std::atomic<bool> fromDescriptor{true};
  if (fromDescriptor.load(std::memory_order_relaxed)) {
    if (::linkat(fd, "", targetFolder, name.constData(), AT_EMPTY_PATH) == 0) return 0;
    if (errno != ENOENT) return errno;
    fromDescriptor.store(false, std::memory_order_relaxed);
  }
  char proc[40];
  std::snprintf(proc, sizeof proc, "/proc/self/fd/%d", fd);
  return ::linkat(AT_FDCWD, proc, targetFolder, name.constData(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

// The copy itself, into `*target` (made exclusively, removed on failure) or,
// when target is null, into an unnamed file of the folder whose descriptor
// is handed back open: it has no name to leave behind on any failure.
int FileCopier::CopyInto(int sourceFolder, const QByteArray& source, int targetFolder, const QByteArray* target,
                         qint64 blockSize, const BlockHook& hook, int* unnamed) {
  // O_NONBLOCK: a file that turned into a FIFO since it was listed must not hang us.
  const int in = ::openat(sourceFolder, source.constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
  if (in < 0) return errno;
  struct stat before {};
  if (::fstat(in, &before) != 0) return CloseKeeping(in, errno);
  if (!S_ISREG(before.st_mode)) return CloseKeeping(in, EINVAL);
  const int out = target ? ::openat(targetFolder, target->constData(),
                                    O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600)
                         : ::openat(targetFolder, ".", O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600);
  if (out < 0) {
    // File systems (and kernels) without unnamed files say so in several ways.
    const int error = errno;
    if (!target && (error == EOPNOTSUPP || error == EISDIR || error == EINVAL)) return CloseKeeping(in, EOPNOTSUPP);
    return CloseKeeping(in, error);
  }

  auto fail = [&](int error) {
    ::close(in);
    ::close(out);
    if (target) ::unlinkat(targetFolder, target->constData(), 0);
    return error;
  };
  if (before.st_size > (1 << 20)) posix_fadvise(in, 0, 0, POSIX_FADV_SEQUENTIAL);
  bool useRange = true;
  std::vector<char> buffer;
  qint64 done = 0;
  const size_t block = size_t(blockSize > 0 ? blockSize : (8 << 20));
  for (;;) {
    ssize_t n;
    if (useRange) {
      n = ::copy_file_range(in, nullptr, out, nullptr, block, 0);
      if (n < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP ||
                    errno == EBADF) && done == 0) {
        useRange = false;
        continue;
      }
    } else {
      n = ReadWrite(in, out, block, &buffer);
    }
    if (n < 0) {
      if (errno == EINTR) continue;
      return fail(errno);
    }
    if (n == 0) break;
    done += n;
    if (hook && !hook(done)) return fail(ECANCELED);
    // The size it had is in: a file that grows since is caught by the check below.
    if (done == before.st_size && useRange) break;
  }

  struct stat after {};
  if (::fstat(in, &after) != 0) return fail(errno);
  if (after.st_size != done || after.st_mtim.tv_sec != before.st_mtim.tv_sec ||
      after.st_mtim.tv_nsec != before.st_mtim.tv_nsec)
    return fail(ESTALE);
  if (::fchmod(out, before.st_mode & 07777) != 0) return fail(errno);
  const struct timespec times[2] = {before.st_atim, before.st_mtim};
  if (::futimens(out, times) != 0) return fail(errno);
  ::close(in);
  if (!target) {
    *unnamed = out;
    return 0;
  }
  if (::close(out) != 0) {
    const int error = errno;
    ::unlinkat(targetFolder, target->constData(), 0);
    return error;
  }
  return 0;
}

int FileCopier::CopyLink(const QString& source, const QString& target) {
  const QByteArray from = ToNative(source);
  struct stat st {};
  if (::lstat(from.constData(), &st) != 0) return errno;
  std::vector<char> text(size_t(st.st_size > 0 ? st.st_size : PATH_MAX) + 1);
  const ssize_t n = ::readlink(from.constData(), text.data(), text.size());
  if (n < 0) return errno;
  if (size_t(n) >= text.size()) return ENAMETOOLONG;
  text[size_t(n)] = 0;
  const QByteArray to = ToNative(target);
  if (::symlink(text.data(), to.constData()) != 0) return errno;
  const struct timespec times[2] = {st.st_atim, st.st_mtim};
  ::utimensat(AT_FDCWD, to.constData(), times, AT_SYMLINK_NOFOLLOW);  // not every file system keeps link times
  return 0;
}

int FileCopier::CopyFifo(const QString& source, const QString& target) {
  struct stat st {};
  if (::lstat(ToNative(source).constData(), &st) != 0) return errno;
  const QByteArray to = ToNative(target);
  if (::mkfifo(to.constData(), st.st_mode & 07777) != 0) return errno;
  const struct timespec times[2] = {st.st_atim, st.st_mtim};
  ::utimensat(AT_FDCWD, to.constData(), times, AT_SYMLINK_NOFOLLOW);
  return 0;
}

int FileCopier::MakeFolder(const QString& path, quint32 mode) {
  if (::mkdir(ToNative(path).constData(), mode_t(mode)) != 0) return errno;
  return 0;
}

int FileCopier::CopyFolderMeta(const QString& source, const QString& target) {
  struct stat st {};
  if (::lstat(ToNative(source).constData(), &st) != 0) return errno;
  const QByteArray to = ToNative(target);
  if (::chmod(to.constData(), st.st_mode & 07777) != 0) return errno;
  const struct timespec times[2] = {st.st_atim, st.st_mtim};
  if (::utimensat(AT_FDCWD, to.constData(), times, 0) != 0) return errno;
  return 0;
}

int FileCopier::RenameReplace(const QString& from, const QString& target) {
  if (::rename(ToNative(from).constData(), ToNative(target).constData()) != 0) return errno;
  return 0;
}

int FileCopier::RemoveFile(const QString& path) {
  if (::unlink(ToNative(path).constData()) != 0) return errno;
  return 0;
}

int FileCopier::RemoveFolder(const QString& path) {
  if (::rmdir(ToNative(path).constData()) != 0) return errno;
  return 0;
}

int FileCopier::RemoveTree(const QString& path) {
  const NodeInfo info = Stat(path);
  if (info.kind == NodeInfo::kMissing) return info.error ? info.error : ENOENT;
  if (info.kind != NodeInfo::kFolder) return RemoveFile(path);
  QStringList names;
  if (const int error = ListNames(path, &names)) return error;
  const QString prefix = WithSeparator(path);
  for (const QString& name : names)
    if (const int error = RemoveTree(prefix + name)) return error;
  return RemoveFolder(path);
}

int FileCopier::ListEntries(const QString& folder, std::vector<FolderEntry>* entries) {
  const int fd = ::open(ToNative(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return errno;
  // getdents64 straight on the descriptor: no directory stream to set up.
  alignas(struct dirent64) char buffer[32768];
  const size_t first = entries->size();
  int error = 0;
  for (;;) {
    const ssize_t n = ::getdents64(fd, buffer, sizeof buffer);
    if (n < 0) {
      error = errno;
      break;
    }
    if (n == 0) break;
    for (ssize_t at = 0; at < n;) {
      const auto* d = reinterpret_cast<const struct dirent64*>(buffer + at);
      at += d->d_reclen;
      const char* name = d->d_name;
      if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0))) continue;
      const qsizetype length = qsizetype(strlen(name));
      FolderEntry& e = entries->emplace_back();
      e.native = QByteArray(name, length);
      e.name = FromNative(name, length);
    }
  }
  if (error == 0) {
    for (size_t i = first; i < entries->size(); ++i) (*entries)[i].info = StatAt(fd, (*entries)[i].native);
  }
  ::close(fd);
  return error;
}

int FileCopier::OpenFolder(const QString& folder) {
  // O_PATH: names in it can be looked up and renamed without read permission on it.
  return ::open(ToNative(folder).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC);
}

void FileCopier::CloseFolder(int fd) {
  if (fd >= 0) ::close(fd);
}

NodeInfo FileCopier::StatAt(int fd, const QByteArray& name) {
  struct stat st {};
  if (::fstatat(fd, name.constData(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
    NodeInfo info;
    if (errno != ENOENT && errno != ENOTDIR) info.error = errno;
    return info;
  }
  return FromStat(st);
}

quint64 FileCopier::DeviceOf(const QString& folder) {
  struct stat st {};
  if (::stat(ToNative(folder).constData(), &st) != 0) return 0;
  return st.st_dev;
}

bool FileCopier::KindsIn(const QString& folder, const std::vector<std::string_view>& names,
                         std::vector<NodeInfo>* infos) {
  const int fd = ::open(ToNative(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat dir {};
  std::vector<unsigned char> types;
  if (::fstat(fd, &dir) != 0 || !FolderTypes(fd, names, &types)) {
    ::close(fd);
    return false;
  }
  infos->assign(names.size(), NodeInfo());
  for (size_t i = 0; i < names.size(); ++i) {
    NodeInfo& info = (*infos)[i];
    switch (types[i]) {
      case kNotInFolder: info.error = ENOENT; continue;
      case DT_REG: info.kind = NodeInfo::kFile; break;
      case DT_LNK: info.kind = NodeInfo::kLink; break;
      case DT_FIFO: info.kind = NodeInfo::kFifo; break;
      case DT_SOCK: info.kind = NodeInfo::kSocket; break;
      case DT_CHR:
      case DT_BLK: info.kind = NodeInfo::kDevice; break;
      default:  // folders (maybe mount points) and unknown types are looked at in full
        info = StatAt(fd, QByteArray(names[i].data(), qsizetype(names[i].size())));
        continue;
    }
    info.device = dir.st_dev;
  }
  ::close(fd);
  return true;
}

int FileCopier::ListNames(const QString& folder, QStringList* names) {
  DIR* dir = ::opendir(ToNative(folder).constData());
  if (!dir) return errno;
  errno = 0;
  while (const dirent* entry = ::readdir(dir)) {
    const char* n = entry->d_name;
    if (n[0] == '.' && (n[1] == 0 || (n[1] == '.' && n[2] == 0))) continue;
    names->append(FromNative(n, qsizetype(strlen(n))));
  }
  const int error = errno;
  ::closedir(dir);
  return error;
}

bool FileCopier::SameFileSystem(const QString& a, const QString& b) {
  struct stat sa {}, sb {};
  if (::lstat(ToNative(a).constData(), &sa) != 0 || ::stat(ToNative(b).constData(), &sb) != 0) return false;
  return sa.st_dev == sb.st_dev;
}

QString FileCopier::RealPath(const QString& path) {
  char* resolved = ::realpath(ToNative(path).constData(), nullptr);
  if (!resolved) return QString();
  const QString out = FromNative(resolved, qsizetype(strlen(resolved)));
  ::free(resolved);
  return out;
}

int FileCopier::SetModifiedTime(const QString& path, qint64 mtimeNs) {
  const struct timespec times[2] = {{0, UTIME_OMIT}, {time_t(mtimeNs / 1000000000), long(mtimeNs % 1000000000)}};
  if (::utimensat(AT_FDCWD, ToNative(path).constData(), times, AT_SYMLINK_NOFOLLOW) != 0) return errno;
  return 0;
}

}  // namespace platform
