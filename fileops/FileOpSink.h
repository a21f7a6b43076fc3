#pragma once
#include <QString>
#include <QtGlobal>

namespace fileops {

// What to do when a target name is taken.
enum class ConflictChoice { kSkip, kKeepBoth, kOverwrite, kStop };

struct ConflictAnswer {
  ConflictChoice choice = ConflictChoice::kSkip;
  bool applyToAll = false;
};

// The standing answer a job starts with; kAsk puts each conflict to the sink.
enum class ConflictPolicy { kAsk, kSkip, kKeepBoth, kOverwrite };

// How one item ended.
enum class ItemOutcome { kCopied, kMoved, kCreated, kSkipped, kFailed };

struct OpProgress {
  QString current;  // the source being worked on
  qint64 bytesDone = 0;
  qint64 bytesTotal = -1;  // -1 while unknown (not counted first)
  qint64 filesDone = 0;
  qint64 filesTotal = -1;
};

// Where a file job reports. Every call comes from the job's own thread.
class FileOpSink {
 public:
  virtual ~FileOpSink() = default;
  virtual void progress(const OpProgress&) {}
  // `source` would land on `target`, which exists. The default never overwrites.
  virtual ConflictAnswer askConflict(const QString& source, const QString& target) {
    Q_UNUSED(source);
    Q_UNUSED(target);
    return {};
  }
  // One item done; `detail` holds the reason for a skip or a failure.
  virtual void item(ItemOutcome outcome, const QString& source, const QString& target, const QString& detail) {
    Q_UNUSED(outcome);
    Q_UNUSED(source);
    Q_UNUSED(target);
    Q_UNUSED(detail);
  }
};

}  // namespace fileops
