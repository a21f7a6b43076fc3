#pragma once
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>

#include "fileops/FileOperation.h"

namespace fileops {

// Copies the sources into a destination folder, only files that are new
// there or newer than the copy there, and writes a log beside the
// destination that names every file copied, skipped and failed.
class BackupJob {
 public:
  struct Result {
    FileOpResult ops;
    QString logPath;   // empty when no log could be written
    QString logError;  // why not
  };

  BackupJob(FileOpSink* sink, std::function<void()> yield, const std::atomic<bool>& abort);
  // `recurse` false leaves subfolders out. The log is named after `started`.
  Result run(const QStringList& sources, const QString& destination, bool recurse, const QDateTime& started);

  // "Backup yyyy-mm-dd_hh-nn-ss.log" (the time in local time).
  static QString LogName(const QDateTime& started);
  static QString LogFolder(const QString& destination);
  static constexpr const char* kTerminated = "*** Job terminated by user ***";

 private:
  FileOpSink* sink_;
  std::function<void()> yield_;
  const std::atomic<bool>& abort_;
};

}  // namespace fileops
