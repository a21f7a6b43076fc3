#pragma once
#include <QString>
#include <atomic>
#include <functional>

#include "fileops/FileOpSink.h"

namespace fileops {

// "Create Folder Structure Here": the folder tree of a source, without its
// files, made again under a target folder. Folders already there are kept.
class FolderStructure {
 public:
  struct Result {
    qint64 created = 0;
    qint64 existing = 0;
    qint64 failed = 0;
    bool stopped = false;
    QString refusal;
    QString top;  // the copy of the source folder itself
    QString status() const;
  };
  static Result Recreate(const QString& source, const QString& targetFolder, FileOpSink* sink,
                         const std::function<void()>& yield, const std::atomic<bool>& abort);
};

}  // namespace fileops
