#include "platform/FolderReader.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "platform/Clock.h"
#include "platform/FileTime.h"
#include "platform/NativePath.h"

namespace platform {

namespace {

quint32 AttributesOf(const struct statx& st, const QString& name) {
  quint32 a = 0;
  const mode_t mode = st.stx_mode;
  if (!(mode & S_IWUSR)) a |= kAttrReadOnly;
  if (name.startsWith(u'.')) a |= kAttrHidden;
  if (S_ISCHR(mode) || S_ISBLK(mode) || S_ISFIFO(mode) || S_ISSOCK(mode)) a |= kAttrSystem;
  if (S_ISDIR(mode)) a |= kAttrDirectory;
  if (S_ISREG(mode)) a |= kAttrArchive;
  if (st.stx_attributes_mask & st.stx_attributes & STATX_ATTR_COMPRESSED) a |= kAttrCompressed;
  if (a == 0) a = kAttrNormal;
  return a;
}

// vfat keeps real DOS attributes; they replace the mapped ones.
quint32 VfatAttributes(int dirFd, const QByteArray& native, quint32 mapped) {
  const int fd = openat(dirFd, native.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return mapped;
  __u32 dos = 0;
  const bool ok = ioctl(fd, FAT_IOCTL_GET_ATTRIBUTES, &dos) == 0;
  close(fd);
  if (!ok) return mapped;
  quint32 a = dos & (kAttrReadOnly | kAttrHidden | kAttrSystem | kAttrDirectory | kAttrArchive);
  return a == 0 ? kAttrNormal : a;
}

void Fill(const struct statx& st, const QString& name, bool link, DirEntry* out) {
  out->name = name;
  out->isLink = link;
  out->size = S_ISDIR(st.stx_mode) ? 0 : st.stx_size;
  out->attributes = AttributesOf(st, name);
  out->creationTime = BirthFileTime(st.stx_mask & STATX_BTIME, st.stx_btime.tv_sec, st.stx_btime.tv_nsec);
  out->lastAccessTime = FileTimeFromUnix(st.stx_atime.tv_sec, st.stx_atime.tv_nsec);
  out->lastWriteTime = FileTimeFromUnix(st.stx_mtime.tv_sec, st.stx_mtime.tv_nsec);
}

bool StatAt(int dirFd, const QString& name, const QByteArray& native, bool vfat, DirEntry* out) {
  struct statx st {};
  const unsigned mask = STATX_BASIC_STATS | STATX_BTIME;
  if (statx(dirFd, native.constData(), AT_SYMLINK_NOFOLLOW | AT_STATX_DONT_SYNC, mask, &st) != 0) return false;
  const bool link = S_ISLNK(st.stx_mode);
  if (link) {
    struct statx target {};
    // A link shows its target's data; a dangling one keeps its own.
    if (statx(dirFd, native.constData(), AT_STATX_DONT_SYNC, mask, &target) == 0) st = target;
  }
  Fill(st, name, link, out);
  if (vfat) out->attributes = VfatAttributes(dirFd, native, out->attributes);
  return true;
}

const QString kEmpty;

// Whether any FAT file system is mounted: only then can a folder need the
// short-name reader, and only then is the file system of each folder asked.
// The mount table is read again when the answer is older than two seconds.
bool FatMounted() {
  static std::atomic<qint64> checkedAt{-1};
  static std::atomic<bool> mounted{false};
  const qint64 now = MonotonicMs();
  const qint64 last = checkedAt.load(std::memory_order_relaxed);
  if (last >= 0 && now - last < 2000) return mounted.load(std::memory_order_relaxed);
  bool any = true;  // when the table cannot be read, ask every folder
  if (FILE* f = std::fopen("/proc/self/mountinfo", "re")) {
    any = false;
    char line[4096];
    while (!any && std::fgets(line, sizeof line, f)) {
      // "... - fstype source options": the type follows the separator.
      const char* sep = std::strstr(line, " - ");
      if (sep && (std::strncmp(sep + 3, "vfat ", 5) == 0 || std::strncmp(sep + 3, "msdos ", 6) == 0)) any = true;
    }
    std::fclose(f);
  }
  mounted.store(any, std::memory_order_relaxed);
  checkedAt.store(now, std::memory_order_relaxed);
  return any;
}

}  // namespace

FolderReader::FolderReader(const QString& folder, const std::vector<WildcardPattern>* keep) {
  const QByteArray native = ToNative(folder.isEmpty() ? QStringLiteral(".") : folder);
  fd_ = open(native.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  read(keep);
}

FolderReader::FolderReader(const FolderReader& parent, qsizetype index, const std::vector<WildcardPattern>* keep) {
  if (!parent.isOpen()) return;
  const QByteArray native = ToNative(parent.name(index));
  fd_ = openat(parent.fd_, native.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  read(keep);
}

FolderReader::~FolderReader() {
  if (fd_ >= 0) close(fd_);
}

void FolderReader::read(const std::vector<WildcardPattern>* keep) {
  if (fd_ < 0) return;
  struct statfs fs {};
  vfat_ = FatMounted() && fstatfs(fd_, &fs) == 0 && fs.f_type == MSDOS_SUPER_MAGIC;
  if (vfat_) readVfat();
  if (!vfat_) readPlain(keep);
}

// getdents64 straight on the folder's descriptor: a directory stream would
// cost a dup, its fcntl and fstat calls and a close for every folder.
void FolderReader::readPlain(const std::vector<WildcardPattern>* keep) {
  if (keep) {
    for (const WildcardPattern& p : *keep)
      if (p.matchesEverything()) keep = nullptr;
    if (keep && keep->empty()) keep = nullptr;
  }
  char16_t wide[256];  // NAME_MAX bytes of ASCII
  alignas(struct dirent64) char buffer[32768];
  for (;;) {
    const ssize_t n = getdents64(fd_, buffer, sizeof buffer);
    if (n <= 0) break;
    // Room for the whole batch at once: no regrowth of the lists.
    size_t batch = 0;
    for (ssize_t at = 0; at < n; ++batch) at += reinterpret_cast<const struct dirent64*>(buffer + at)->d_reclen;
    names_.reserve(names_.size() + batch);
    types_.reserve(types_.size() + batch);
    for (ssize_t at = 0; at < n;) {
      const auto* d = reinterpret_cast<const struct dirent64*>(buffer + at);
      const qsizetype length = qsizetype(strlen(d->d_name));
      types_.push_back(d->d_type);
      at += d->d_reclen;
      if (keep && d->d_type != DT_DIR && d->d_type != DT_UNKNOWN && length <= qsizetype(std::size(wide))) {
        // ASCII names are tested in place: no string for one that is left out.
        qsizetype k = 0;
        while (k < length && static_cast<unsigned char>(d->d_name[k]) < 0x80) {
          wide[k] = char16_t(static_cast<unsigned char>(d->d_name[k]));
          ++k;
        }
        if (k == length) {
          const QStringView view(wide, length);
          bool wanted = false;
          for (const WildcardPattern& p : *keep)
            if ((wanted = p.matches(view))) break;
          if (wanted) names_.push_back(view.toString());
          else names_.emplace_back();
          continue;
        }
      }
      names_.push_back(FromNative(d->d_name, length));
    }
  }
}

bool FolderReader::statOpened(qsizetype i, int fd, DirEntry* out) const {
  struct statx st {};
  if (statx(fd, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, STATX_BASIC_STATS | STATX_BTIME, &st) != 0) return false;
  Fill(st, names_[size_t(i)], false, out);
  if (vfat_) out->attributes = VfatAttributes(fd_, ToNative(names_[size_t(i)]), out->attributes);
  out->alias = alias(i);
  return true;
}

int FolderReader::openEntry(qsizetype i, int flags) const {
  if (fd_ < 0) return -1;
  const QByteArray native = ToNative(names_[size_t(i)]);
  return openat(fd_, native.constData(), flags | O_CLOEXEC);
}

void FolderReader::readVfat() {
  struct __fat_dirent both[2];
  for (;;) {
    const int r = ioctl(fd_, VFAT_IOCTL_READDIR_BOTH, both);
    if (r < 0) {
      if (names_.empty()) vfat_ = false;  // not supported after all: read plainly
      return;
    }
    if (r == 0) return;
    const QString shortName = FromNative(both[0].d_name, both[0].d_reclen);
    if (both[1].d_reclen > 0) {
      const QString longName = FromNative(both[1].d_name, both[1].d_reclen);
      names_.push_back(longName);
      aliases_.push_back(longName.compare(shortName, Qt::CaseInsensitive) == 0 ? QString() : shortName);
    } else {
      names_.push_back(shortName);
      aliases_.push_back(QString());
    }
    types_.push_back(DT_UNKNOWN);
  }
}

const QString& FolderReader::alias(qsizetype i) const {
  return aliases_.empty() ? kEmpty : aliases_[size_t(i)];
}

bool FolderReader::isWalkableFolder(qsizetype i) const {
  const unsigned char t = types_[size_t(i)];
  if (t == DT_DIR) return true;
  if (t != DT_UNKNOWN) return false;
  struct statx st {};
  const QByteArray native = ToNative(names_[size_t(i)]);
  return statx(fd_, native.constData(), AT_SYMLINK_NOFOLLOW | AT_STATX_DONT_SYNC, STATX_TYPE, &st) == 0 &&
         S_ISDIR(st.stx_mode);
}

bool FolderReader::isRegularFile(qsizetype i) const { return types_[size_t(i)] == DT_REG; }

void FolderReader::statAhead(const std::vector<bool>& wanted) {
  if (fd_ < 0) return;
  std::vector<qint32> slots(names_.size(), -1);
  std::vector<Ahead> ahead;
  // Room for all at once: moving entries on regrowth cost more than the stats.
  const size_t limit = std::min(names_.size(), wanted.size());
  ahead.reserve(size_t(std::count(wanted.begin(), wanted.begin() + qsizetype(limit), true)));
  for (size_t i = 0; i < limit; ++i) {
    if (!wanted[i]) continue;
    slots[i] = qint32(ahead.size());
    ahead.emplace_back();
    ahead.back().state = stat(qsizetype(i), &ahead.back().entry) ? 1 : -1;
  }
  if (ahead.empty()) {
    screenedEmpty_ = true;
    return;
  }
  aheadSlot_ = std::move(slots);
  ahead_ = std::move(ahead);
}

bool FolderReader::stat(qsizetype i, DirEntry* out) const {
  if (!ahead_.empty() && aheadSlot_[size_t(i)] >= 0) {
    const Ahead& a = ahead_[size_t(aheadSlot_[size_t(i)])];
    if (a.state < 0) return false;
    *out = a.entry;
    return true;
  }
  const QString& n = names_[size_t(i)];
  if (!StatAt(fd_, n, ToNative(n), vfat_, out)) return false;
  out->alias = alias(i);
  return true;
}

bool StatPath(const QString& path, DirEntry* out) {
  const qsizetype cut = path.lastIndexOf(kSeparator, path.size() > 1 && path.endsWith(kSeparator) ? -2 : -1);
  QString name = cut >= 0 ? path.mid(cut + 1) : path;
  if (name.endsWith(kSeparator)) name.chop(1);
  if (!StatAt(AT_FDCWD, name, ToNative(path), false, out)) return false;
  out->alias.clear();
  return true;
}

}  // namespace platform
