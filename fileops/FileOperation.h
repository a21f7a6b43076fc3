#pragma once
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "fileops/FileOpSink.h"
#include "platform/FileCopier.h"

namespace fileops {

class SourcePrefetcher;

struct FileOpOptions {
  bool move = false;
  bool dryRun = false;
  ConflictPolicy onConflict = ConflictPolicy::kAsk;
  // Backup: a taken target name is replaced only by a newer source and
  // skipped otherwise, without asking.
  bool onlyNewer = false;
  // Walk the sources once first so that progress knows the totals.
  bool countFirst = false;
  // False: the folders inside the sources are left out (the sources' own files go).
  bool recurse = true;
  qint64 blockSize = 0;  // 0: the copier's default
  // The rest of a request whose first sources went already: one gone since
  // fails on its own instead of refusing the rest.
  bool sourcesMayBeGone = false;
};

struct FileOpResult {
  qint64 copied = 0;  // files, links and FIFOs written
  qint64 moved = 0;   // items moved (a folder renamed whole counts once)
  qint64 created = 0;  // folders made
  qint64 skipped = 0;
  qint64 failed = 0;
  qint64 bytes = 0;
  qint64 notDone = -1;  // after a stop: items not reached, when counted
  bool stopped = false;
  QString refusal;        // set when the job did not start at all
  QString firstTarget;  // the first top-level item it wrote, for the list's selection
  QString status(bool move) const;
};

// Copies or moves files and folders into a target folder. Files are written
// under a temporary name in the target folder and renamed when complete, so
// a stop or a crash never leaves half a file under a real name. A move
// within one file system is a rename; across file systems it is a copy whose
// size is checked before the source goes. Links are copied as links; FIFOs
// are recreated; devices and sockets are skipped with a reason.
class FileOperation {
 public:
  FileOperation(FileOpSink* sink, std::function<void()> yield, const std::atomic<bool>& abort, FileOpOptions options);
  ~FileOperation();

  FileOpResult run(const QStringList& sources, const QString& targetFolder);

  // "name (2).ext", "name (3).ext", ...: the first name free in `folder`.
  static QString KeepBothName(const QString& folder, const QString& name);
  // The message for a request that must not start (folder into itself,
  // missing target), or empty when it may.
  // `infos`, when given, receives what each source is (the job needs it next);
  // with `kindsOnly` a file's size, times and permissions may be left out.
  static QString CheckRequest(const QStringList& sources, const QString& targetFolder, bool move,
                              std::vector<platform::NodeInfo>* infos = nullptr, bool kindsOnly = false,
                              bool missingRefuses = true);

 private:
  enum class Step { kGo, kSkip, kStop };
  void count(const QString& path);
  // The folders an item is in, held open by the walk (or -1), and its name's
  // bytes: looks and copies need no path walk then.
  struct Folders {
    int source = -1;
    int target = -1;
    const QByteArray* native = nullptr;
  };
  void node(const QString& source, const QString& targetFolder, const QString& name, const platform::NodeInfo& info,
            bool top, const Folders& at);
  bool folder(const QString& source, const QString& target, const platform::NodeInfo& info, bool exists);
  bool leaf(const QString& source, QString* target, const platform::NodeInfo& info, bool overwrite,
            const Folders& at);
  // A taken target name: same item, folder merge, backup's newer test or the user's answer.
  Step settle(const QString& source, const QString& targetFolder, const platform::NodeInfo& info,
              const platform::NodeInfo& there, QString* name, QString* target, bool* overwrite, bool* merge);
  // One file system: the source's device against the target folder's,
  // asked once per target folder rather than once per item.
  bool sameFileSystem(const platform::NodeInfo& info, QStringView targetFolder);
  bool renameInto(const QString& source, const QString& target, bool overwrite, int* error);
  ConflictChoice resolve(const QString& source, const QString& target);
  static QString TempLeafName();
  void report(ItemOutcome outcome, const QString& source, const QString& target, const QString& detail = QString());
  void fail(const QString& source, const QString& target, int error);
  bool stopNow();
  void tick(const QString& current);

  FileOpSink* sink_;
  std::function<void()> yield_;
  const std::atomic<bool>& abort_;
  FileOpOptions options_;
  FileOpResult result_;
  OpProgress progress_;
  bool haveAll_ = false;
  ConflictChoice all_ = ConflictChoice::kSkip;
  qint64 fileBytesBase_ = 0;
  qint64 lastTick_ = 0;
  std::unique_ptr<SourcePrefetcher> prefetch_;
  // The folders of the last rename, held open for the next one: a selection
  // moved from one folder to another renames each name without a path walk.
  QString fromFolder_, toFolder_;
  QByteArray fromName_, toName_;  // renameInto's native names, reused per item
  int fromFd_ = -1, toFd_ = -1;
  bool noUnnamed_ = false;  // the target's file system makes no unnamed files
  QString deviceFolder_;
  quint64 folderDevice_ = 0;
};

}  // namespace fileops
