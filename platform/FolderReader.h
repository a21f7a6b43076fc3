#pragma once
#include <QString>
#include <vector>

#include "platform/DirEntry.h"
#include "platform/WildcardPattern.h"

namespace platform {

// Reads a folder's names once (in the order the file system returns them,
// "." and ".." included) and stats single entries on request, relative to the
// open folder, so that callers stat only the names they need.
class FolderReader {
 public:
  // With `keep`, only the names that match one of its patterns, and those of
  // entries that may be folders, are made into text; the others read as
  // empty names, which walks skip like "." and "..". For name finds, where
  // most names are never looked at again.
  explicit FolderReader(const QString& folder, const std::vector<WildcardPattern>* keep = nullptr);
  // Opens the subfolder at entry `index` of an open folder relative to it: no
  // path walk from the root, and never through a symbolic link.
  FolderReader(const FolderReader& parent, qsizetype index, const std::vector<WildcardPattern>* keep = nullptr);
  ~FolderReader();
  FolderReader(const FolderReader&) = delete;
  FolderReader& operator=(const FolderReader&) = delete;

  bool isOpen() const { return fd_ >= 0; }
  qsizetype count() const { return qsizetype(names_.size()); }
  const QString& name(qsizetype i) const { return names_[size_t(i)]; }
  const QString& alias(qsizetype i) const;

  // A directory that a walk may enter: a real folder, never a link to one.
  bool isWalkableFolder(qsizetype i) const;
  // A plain file, as far as the folder listing tells without a stat (false
  // where it does not tell, and for links).
  bool isRegularFile(qsizetype i) const;
  // A FAT folder: its attributes come through the folder's own descriptor.
  bool isVfat() const { return vfat_; }
  // Fills `out` with the entry's data; false if it vanished meanwhile.
  bool stat(qsizetype i, DirEntry* out) const;
  // Opens entry i relative to the folder (open(2) flags); -1 on failure.
  int openEntry(qsizetype i, int flags) const;
  // Fills `out` for entry i from the file the caller opened with
  // openEntry: no second name lookup. For plain files (a link would show its
  // target without the link flag).
  bool statOpened(qsizetype i, int fd, DirEntry* out) const;

  // Read-ahead: stats the entries a walk will ask for now, on the reading
  // thread, so that stat() later only copies the result. After it the
  // folder is screened: an entry that was not wanted needs no look at all.
  void statAhead(const std::vector<bool>& wanted);
  bool isScreened() const { return !ahead_.empty() || screenedEmpty_; }
  bool passedScreen(qsizetype i) const { return !ahead_.empty() && aheadSlot_[size_t(i)] >= 0; }

 private:
  void read(const std::vector<WildcardPattern>* keep);
  void readPlain(const std::vector<WildcardPattern>* keep);
  void readVfat();

  int fd_ = -1;
  bool vfat_ = false;
  std::vector<QString> names_;
  std::vector<QString> aliases_;     // only on file systems with short names
  std::vector<unsigned char> types_;  // dirent d_type
  struct Ahead {
    DirEntry entry;
    signed char state = 0;  // 1 statted, -1 vanished
  };
  std::vector<Ahead> ahead_;       // the wanted entries only
  std::vector<qint32> aheadSlot_;  // per entry: its place in ahead_, -1 if not wanted
  bool screenedEmpty_ = false;  // screened, nothing wanted
};

// Data of one path (following a final link; a dangling link gives its own).
bool StatPath(const QString& path, DirEntry* out);

}  // namespace platform
