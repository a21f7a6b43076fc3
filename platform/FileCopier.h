#pragma once
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <functional>
#include <string_view>
#include <vector>

namespace platform {

// What a path names, as lstat sees it (links are never followed).
struct NodeInfo {
  enum Kind { kMissing, kFile, kFolder, kLink, kFifo, kDevice, kSocket };
  Kind kind = kMissing;
  quint64 device = 0;
  quint64 inode = 0;
  qint64 size = 0;
  qint64 mtimeNs = 0;  // nanoseconds since 1970
  quint32 mode = 0;    // permission bits
  int error = 0;       // errno when kind is kMissing for a reason other than ENOENT
};

// One name of a folder with its lstat data; `native` is the name's bytes.
struct FolderEntry {
  QString name;
  QByteArray native;
  NodeInfo info;
};

// The operating-system side of copying: data, links, FIFOs, folders, times
// and permissions, and the removals a move needs. Every function returns 0
// or an errno value; the policy (names, conflicts, logs) lives above.
class FileCopier {
 public:
  // Called between blocks with the bytes written so far; false stops the copy.
  using BlockHook = std::function<bool(qint64 done)>;

  static NodeInfo Stat(const QString& path);

  // Copies a regular file's bytes to `target`, which must not exist (created
  // exclusively), then its permissions and times. Uses copy_file_range where
  // the kernel offers it. On any failure or a stop the partial target is
  // removed. ECANCELED when the hook stopped it; ESTALE when the source
  // changed (size or time) while it was read.
  static int CopyFile(const QString& source, const QString& target, qint64 blockSize, const BlockHook& hook);
  // The same for names in open folders (AT_FDCWD: paths), with no path walk.
  static int CopyFileAt(int sourceFolder, const QByteArray& source, int targetFolder, const QByteArray& target,
                        qint64 blockSize, const BlockHook& hook);
  // The same into an unnamed file of targetFolder (O_TMPFILE), handed back
  // open in *unnamed: an interrupted copy leaves nothing under any name.
  // EOPNOTSUPP where the file system cannot make one.
  static int CopyFileUnnamed(int sourceFolder, const QByteArray& source, int targetFolder, qint64 blockSize,
                             const BlockHook& hook, int* unnamed);
  // Gives an unnamed file its name; EEXIST when the name is taken.
  static int LinkUnnamed(int fd, int targetFolder, const QByteArray& name);
  // Recreates a symbolic link (its text, never its target) and its times.
  static int CopyLink(const QString& source, const QString& target);
  // Recreates a FIFO with the source's permissions; never opens it.
  static int CopyFifo(const QString& source, const QString& target);
  // Creates a folder (user-writable until its contents are in; see CopyFolderMeta).
  static int MakeFolder(const QString& path, quint32 mode = 0777);
  // Gives `target` the permissions and times of folder `source`.
  static int CopyFolderMeta(const QString& source, const QString& target);

  // Replaces `target` with `from` (rename onto it): only for a chosen overwrite.
  static int RenameReplace(const QString& from, const QString& target);
  static int RemoveFile(const QString& path);    // unlink (files, links, FIFOs)
  static int RemoveFolder(const QString& path);  // rmdir (empty)
  // Removes a tree without following links; stops at the first failure.
  static int RemoveTree(const QString& path);

  // The names in a folder, "." and ".." left out, in directory order.
  static int ListNames(const QString& folder, QStringList* names);
  // Reads a folder once and stats each name relative to it (no path walk per
  // name). A name that vanished between the two comes back as kMissing.
  static int ListEntries(const QString& folder, std::vector<FolderEntry>* entries);
  // The kind of each of `names` (native, plain) in `folder`, from one read of
  // the folder rather than one look per name; a name not there is kMissing.
  // Files, links and the like carry only their kind and the folder's device;
  // folders are looked at in full. False when the folder cannot be read or
  // holds far more than the names: then look them up one by one.
  static bool KindsIn(const QString& folder, const std::vector<std::string_view>& names,
                      std::vector<NodeInfo>* infos);
  // A folder's descriptor for StatAt and the *At renames, or -1 (then
  // callers use full paths).
  static int OpenFolder(const QString& folder);
  static void CloseFolder(int fd);
  // What `name` names in the open folder `fd`, as Stat sees it.
  static NodeInfo StatAt(int fd, const QByteArray& name);
  // The device of the folder a path names (links followed), 0 when unknown.
  static quint64 DeviceOf(const QString& folder);
  // True when both paths lie on one file system.
  static bool SameFileSystem(const QString& a, const QString& b);
  // The path with every link and "." or ".." resolved; empty when it cannot be.
  static QString RealPath(const QString& path);
  // Sets a file's modification time (nanoseconds since 1970), for tests and backups.
  static int SetModifiedTime(const QString& path, qint64 mtimeNs);

 private:
  static int CopyInto(int sourceFolder, const QByteArray& source, int targetFolder, const QByteArray* target,
                      qint64 blockSize, const BlockHook& hook, int* unnamed);
};

}  // namespace platform
