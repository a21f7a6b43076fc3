#include "fileops/BackupJob.h"

#include <QDir>
#include <QFile>

#include "core/RowEscape.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

namespace {

// Writes one log line per item as it happens, so that a log of a job that
// dies still tells what was done; passes everything on to the caller's sink.
class LogSink : public FileOpSink {
 public:
  LogSink(FileOpSink* next, QFile* log) : next_(next), log_(log) {}
  void progress(const OpProgress& p) override {
    if (next_) next_->progress(p);
  }
  ConflictAnswer askConflict(const QString& source, const QString& target) override {
    return next_ ? next_->askConflict(source, target) : ConflictAnswer();
  }
  void item(ItemOutcome outcome, const QString& source, const QString& target, const QString& detail) override {
    if (next_) next_->item(outcome, source, target, detail);
    const char* word = nullptr;
    switch (outcome) {
      case ItemOutcome::kCopied: word = "Copied"; break;
      case ItemOutcome::kSkipped: word = "Skipped"; break;
      case ItemOutcome::kFailed: word = "Failed"; break;
      default: return;  // folders made are not files copied
    }
    QString line = QString::fromLatin1(word);
    line += u'\t';
    core::AppendRowField(&line, source);
    if (!detail.isEmpty()) {
      line += u'\t';
      core::AppendRowField(&line, detail);
    }
    line += u'\n';
    if (log_) log_->write(line.toUtf8());
  }

 private:
  FileOpSink* next_;
  QFile* log_;
};

}  // namespace

BackupJob::BackupJob(FileOpSink* sink, std::function<void()> yield, const std::atomic<bool>& abort)
    : sink_(sink), yield_(std::move(yield)), abort_(abort) {}

QString BackupJob::LogName(const QDateTime& started) {
  return QStringLiteral("Backup %1.log").arg(started.toString(QStringLiteral("yyyy-MM-dd_HH-mm-ss")));
}

QString BackupJob::LogFolder(const QString& destination) {
  QString d = destination;
  while (d.size() > 1 && d.endsWith(platform::kSeparator)) d.chop(1);
  const qsizetype cut = d.lastIndexOf(platform::kSeparator);
  if (cut <= 0) return QStringLiteral("/");
  return d.left(cut);
}

BackupJob::Result BackupJob::run(const QStringList& sources, const QString& destination, bool recurse,
                                 const QDateTime& started) {
  Result result;
  if (platform::FileCopier::Stat(destination).kind == platform::NodeInfo::kMissing &&
      !QDir().mkpath(destination)) {
    result.ops.refusal = QStringLiteral("Cannot create the destination folder: %1").arg(platform::DisplayText(destination));
    return result;
  }
  // The log never replaces another: a second backup in the same second gets " (2)".
  const QString folder = LogFolder(destination);
  QString path = platform::WithSeparator(folder) + LogName(started);
  if (platform::FileCopier::Stat(path).kind != platform::NodeInfo::kMissing)
    path = platform::WithSeparator(folder) + FileOperation::KeepBothName(folder, LogName(started));
  QFile log(path);
  if (log.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
    result.logPath = path;
    QString head = QStringLiteral("Backup to\t");
    core::AppendRowField(&head, destination);
    head += QStringLiteral("\nStarted\t") + started.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) + u'\n';
    log.write(head.toUtf8());
  } else {
    result.logError = log.errorString();
  }

  LogSink logSink(sink_, log.isOpen() ? &log : nullptr);
  FileOpOptions options;
  options.onlyNewer = true;
  options.onConflict = ConflictPolicy::kOverwrite;
  options.recurse = recurse;
  FileOperation op(&logSink, yield_, abort_, options);
  result.ops = op.run(sources, destination);
  if (log.isOpen()) {
    QString tail = result.ops.status(false) + u'\n';
    if (result.ops.stopped) tail += QString::fromLatin1(kTerminated) + u'\n';
    log.write(tail.toUtf8());
    log.close();
  }
  return result;
}

}  // namespace fileops
