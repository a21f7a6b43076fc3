#include "cli/QuickMove.h"

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "fileops/TransferStatus.h"
#include "platform/FolderTypes.h"

namespace cli {

namespace {

// From this many sources of one folder on, one read of the folder says what
// they are, instead of a look per name.
constexpr size_t kFolderReadFrom = 512;

volatile std::sig_atomic_t interrupted = 0;
void OnInterrupt(int) { interrupted = 1; }

// Whether a path goes into a row as it is: valid UTF-8 without a control
// character, DEL or backslash, which rows escape.
bool PrintsAsIs(std::string_view text) {
  const auto* s = reinterpret_cast<const unsigned char*>(text.data());
  const size_t n = text.size();
  for (size_t i = 0; i < n;) {
    const unsigned c = s[i];
    if (c < 0x80) {
      if (c < 0x20 || c == 0x7F || c == '\\') return false;
      ++i;
      continue;
    }
    // The shortest form only, no surrogates, nothing past U+10FFFF.
    size_t length;
    unsigned low = 0x80, high = 0xBF;
    if (c >= 0xC2 && c <= 0xDF) length = 2;
    else if (c >= 0xE0 && c <= 0xEF) length = 3, low = c == 0xE0 ? 0xA0 : 0x80, high = c == 0xED ? 0x9F : 0xBF;
    else if (c >= 0xF0 && c <= 0xF4) length = 4, low = c == 0xF0 ? 0x90 : 0x80, high = c == 0xF4 ? 0x8F : 0xBF;
    else return false;
    if (i + length > n || s[i + 1] < low || s[i + 1] > high) return false;
    for (size_t k = 2; k < length; ++k)
      if (s[i + k] < 0x80 || s[i + k] > 0xBF) return false;
    i += length;
  }
  return true;
}

// The absolute form of `given` as the engine would clean it, when cleaning
// has nothing to do but drop trailing separators: no empty, "." or ".." part.
bool Absolute(std::string_view given, const std::string& cwd, std::string* out) {
  while (given.size() > 1 && given.back() == '/') given.remove_suffix(1);
  if (given.empty()) return false;
  if (given[0] == '/') {
    out->assign(given);
  } else {
    if (cwd.empty()) return false;
    *out = cwd;
    if (cwd != "/") *out += '/';
    *out += given;
  }
  if (*out == "/") return true;
  for (size_t at = 1; at <= out->size();) {
    const size_t end = std::min(out->find('/', at), out->size());
    const std::string_view part(out->data() + at, end - at);
    if (part.empty() || part == "." || part == "..") return false;
    at = end + 1;
  }
  return PrintsAsIs(*out);
}

std::string WorkingFolder() {
  char buffer[PATH_MAX];
  return ::getcwd(buffer, sizeof buffer) && buffer[0] == '/' ? std::string(buffer) : std::string();
}

std::string RealPath(const std::string& path) {
  char* real = ::realpath(path.c_str(), nullptr);
  if (!real) return std::string();
  std::string text(real);
  std::free(real);
  return text;
}

int OpenFolder(const std::string& path, int flags) { return ::open(path.c_str(), flags | O_DIRECTORY | O_CLOEXEC); }

// Rows are written in large pieces: a selection of thousands is one write per 64 KiB.
class RowWriter {
 public:
  void moved(const std::string& source, const std::string& folder, std::string_view name) {
    text_ += "moved\t";
    text_ += source;
    text_ += '\t';
    text_ += folder;
    if (folder != "/") text_ += '/';
    text_ += name;
    text_ += "\t\n";
    if (text_.size() >= 65536) flush();
  }
  void flush() {
    if (!text_.empty()) std::fwrite(text_.data(), 1, text_.size(), stdout);
    std::fflush(stdout);
    text_.clear();
  }

 private:
  std::string text_;
};

}  // namespace

QuickMove::Outcome QuickMove::run(const std::vector<const char*>& args) {
  if (!check(args)) {
    if (targetFd_ >= 0) ::close(targetFd_);
    return Outcome::kDeclined;
  }
  const Outcome outcome = rename(args);
  ::close(targetFd_);
  return outcome;
}

bool QuickMove::check(const std::vector<const char*>& args) {
  if (args.size() < 3 || std::strcmp(args[0], "move") != 0) return false;
  for (size_t i = 1; i < args.size(); ++i)
    if (args[i][0] == '-') return false;
  // Asked for only when a path is relative; Absolute refuses those without it.
  const bool relative = std::any_of(args.begin() + 1, args.end(), [](const char* a) { return a[0] != '/'; });
  const std::string cwd = relative ? WorkingFolder() : std::string();
  if (!Absolute(args.back(), cwd, &target_)) return false;
  targetFd_ = OpenFolder(target_, O_PATH);
  struct stat st {};
  if (targetFd_ < 0 || ::fstat(targetFd_, &st) != 0) return false;
  targetDevice_ = st.st_dev;

  sources_.resize(args.size() - 2);
  for (size_t i = 0; i < sources_.size(); ++i) {
    Source& s = sources_[i];
    if (!Absolute(args[i + 1], cwd, &s.path) || s.path == "/") return false;
    s.nameAt = s.path.rfind('/') + 1;
    const std::string_view folder(s.path.data(), s.nameAt > 1 ? s.nameAt - 1 : 1);
    if (folders_.empty() || folders_.back() != folder) folders_.emplace_back(folder);
    s.group = folders_.size() - 1;
  }
  for (size_t first = 0; first < sources_.size();) {
    size_t end = first + 1;
    while (end < sources_.size() && sources_[end].group == sources_[first].group) ++end;
    if (!checkGroup(first, end)) return false;
    first = end;
  }
  return true;
}

// The sources [first, end), all in one folder: each must exist on the
// target's file system, and a folder must not hold the target.
bool QuickMove::checkGroup(size_t first, size_t end) {
  const int fd = OpenFolder(folders_[sources_[first].group], O_RDONLY);
  struct stat folder {};
  if (fd < 0 || ::fstat(fd, &folder) != 0 || folder.st_dev != targetDevice_) {
    if (fd >= 0) ::close(fd);
    return false;
  }
  std::vector<std::string_view> names;
  for (size_t i = first; i < end; ++i) names.emplace_back(sources_[i].name());
  std::vector<unsigned char> types;
  if (names.size() < kFolderReadFrom || !platform::FolderTypes(fd, names, &types))
    types.assign(names.size(), DT_UNKNOWN);
  bool ok = true;
  for (size_t i = 0; ok && i < names.size(); ++i) {
    if (types[i] == platform::kNotInFolder) ok = false;
    // Other kinds share their folder's file system; a folder may be a mount point.
    if (!ok || (types[i] != DT_DIR && types[i] != DT_UNKNOWN)) continue;
    struct stat st {};
    if (::fstatat(fd, sources_[first + i].name(), &st, AT_SYMLINK_NOFOLLOW) != 0 || st.st_dev != targetDevice_) {
      ok = false;
    } else if (S_ISDIR(st.st_mode)) {
      if (realTarget_.empty() && (realTarget_ = RealPath(target_)).empty()) ok = false;
      const std::string real = RealPath(sources_[first + i].path);
      if (real.empty() || realTarget_ == real || realTarget_.starts_with(real + '/')) ok = false;
    }
  }
  ::close(fd);
  return ok;
}

QuickMove::Outcome QuickMove::rename(const std::vector<const char*>& args) {
  struct sigaction stop {}, previous {};
  stop.sa_handler = OnInterrupt;
  ::sigemptyset(&stop.sa_mask);
  ::sigaction(SIGINT, &stop, &previous);
  RowWriter rows;
  fileops::TransferCounts counts;
  int fd = -1;
  size_t fdGroup = SIZE_MAX;
  size_t i = 0;
  for (; i < sources_.size() && !interrupted; ++i) {
    const Source& s = sources_[i];
    if (s.group != fdGroup) {
      if (fd >= 0) ::close(fd);
      fd = OpenFolder(folders_[s.group], O_PATH);
      fdGroup = s.group;
    }
    if (fd < 0 || ::renameat2(fd, s.name(), targetFd_, s.name(), RENAME_NOREPLACE) != 0) break;
    rows.moved(s.path, target_, s.name());
    ++counts.moved;
  }
  if (fd >= 0) ::close(fd);
  rows.flush();
  ::sigaction(SIGINT, &previous, nullptr);
  moved_ = counts.moved;
  if (i < sources_.size() && !interrupted) {
    rest_.assign({args[0]});
    rest_.insert(rest_.end(), args.begin() + 1 + i, args.end());
    return Outcome::kHandedOver;
  }
  counts.stopped = interrupted;
  std::fprintf(stderr, "%s\n", fileops::TransferStatus(counts, true).c_str());
  exitCode_ = interrupted ? 1 : 0;
  return Outcome::kDone;
}

}  // namespace cli
