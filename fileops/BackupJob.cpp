#include "fileops/BackupJob.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QStringEncoder>

#include "core/RowEscape.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

namespace {

// Collects the log's lines and writes them in blocks of 64 KB, and as soon as
// a second has passed when the job reports progress, so that the log of a
// slow job stays current while a walk over many unchanged files costs one
// write per block rather than one per file. Passes everything on to the
// caller's sink.
class LogSink : public FileOpSink {
 public:
  LogSink(FileOpSink* next, QFile* log) : next_(next), log_(log), encoder_(QStringConverter::Utf8) {
    flushed_.start();
  }
  ~LogSink() override { flush(); }
  void progress(const OpProgress& p) override {
    if (next_) next_->progress(p);
    if (!buffer_.isEmpty() && flushed_.elapsed() >= 1000) flush();
  }
  ConflictAnswer askConflict(const QString& source, const QString& target) override {
    flush();  // the user may take a while to answer
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
    if (!log_) return;
    // One line buffer for the whole job: no allocation per line once it has grown.
    line_.truncate(0);
    line_ += QLatin1StringView(word);
    line_ += u'\t';
    core::AppendRowField(&line_, source);
    if (!detail.isEmpty()) {
      line_ += u'\t';
      core::AppendRowField(&line_, detail);
    }
    line_ += u'\n';
    const qsizetype used = buffer_.size();
    buffer_.resize(used + encoder_.requiredSpace(line_.size()));
    char* end = encoder_.appendToBuffer(buffer_.data() + used, line_);
    buffer_.truncate(end - buffer_.constData());
    if (buffer_.size() >= kBlock) flush();
  }
  void flush() {
    if (log_ && !buffer_.isEmpty()) log_->write(buffer_);
    buffer_.truncate(0);
    flushed_.restart();
  }

 private:
  static constexpr qsizetype kBlock = 64 * 1024;
  FileOpSink* next_;
  QFile* log_;
  QStringEncoder encoder_;
  QString line_;
  QByteArray buffer_;
  QElapsedTimer flushed_;
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
  if (log.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered)) {
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
  logSink.flush();
  if (log.isOpen()) {
    QString tail = result.ops.status(false) + u'\n';
    if (result.ops.stopped) tail += QString::fromLatin1(kTerminated) + u'\n';
    log.write(tail.toUtf8());
    log.close();
  }
  return result;
}

}  // namespace fileops
