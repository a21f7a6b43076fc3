#include "cli/FileOpsCommand.h"

#include <QDateTime>
#include <QDir>
#include <csignal>

#include "cli/ArgParser.h"
#include "cli/BatchThread.h"
#include "core/JobFlags.h"
#include "core/RowEscape.h"
#include "fileops/BackupJob.h"
#include "fileops/FileOperation.h"
#include "fileops/FolderStructure.h"
#include "fileops/NewItems.h"
#include "fileops/Trash.h"

namespace cli {

namespace {

using namespace fileops;

// Ctrl+C stops a job the way Escape does in the window: between files, or
// between blocks of a large one, and what is done stays done.
void OnInterrupt(int) { core::JobFlags::RequestAbort(); }

class InterruptGuard {
 public:
  InterruptGuard() {
    core::JobFlags::ClearAbort();
    previous_ = std::signal(SIGINT, OnInterrupt);
  }
  ~InterruptGuard() { std::signal(SIGINT, previous_); }

 private:
  void (*previous_)(int) = SIG_DFL;
};

const char* OutcomeWord(ItemOutcome outcome) {
  switch (outcome) {
    case ItemOutcome::kCopied: return "copied";
    case ItemOutcome::kMoved: return "moved";
    case ItemOutcome::kCreated: return "created";
    case ItemOutcome::kSkipped: return "skipped";
    case ItemOutcome::kFailed: return "failed";
  }
  return "";
}

// `line` is the caller's buffer, kept between rows so that a job of many
// items does not allocate one per row.
void PrintRow(QTextStream& out, const char* word, const QString& a, const QString& b, const QString& detail,
              QString* line) {
  line->truncate(0);
  *line += QLatin1StringView(word);
  for (const QString* field : {&a, &b, &detail}) {
    *line += u'\t';
    core::AppendRowField(line, *field);
  }
  *line += u'\n';
  out << *line;
}

void PrintRow(QTextStream& out, const char* word, const QString& a, const QString& b, const QString& detail) {
  QString line;
  PrintRow(out, word, a, b, detail, &line);
}

// One row per item: outcome, source, target, reason. A job of many items
// has its rows escaped and encoded on a thread of their own while it goes on;
// finish() prints the rest before the summary.
class RowSink : public FileOpSink {
 public:
  explicit RowSink(QTextStream& out)
      : out_(out), thread_([this](std::vector<Row>& rows) { print(rows); }, 256) {}
  void item(ItemOutcome outcome, const QString& source, const QString& target, const QString& detail) override {
    thread_.add({OutcomeWord(outcome), source, target, detail});
  }
  void finish() { thread_.finish(); }

 private:
  struct Row {
    const char* word;
    QString source, target, detail;
  };
  void print(const std::vector<Row>& rows) {
    for (const Row& r : rows) PrintRow(out_, r.word, r.source, r.target, r.detail, &line_);
  }

  QTextStream& out_;
  QString line_;
  BatchThread<Row> thread_;
};

bool Policy(const ArgParser& p, ConflictPolicy* policy, QString* error) {
  const QString value = p.isSet(QStringLiteral("on-conflict")) ? p.value(QStringLiteral("on-conflict"))
                                                               : QStringLiteral("skip");
  if (value == u"skip") *policy = ConflictPolicy::kSkip;
  else if (value == u"rename") *policy = ConflictPolicy::kKeepBoth;
  else if (value == u"overwrite") *policy = ConflictPolicy::kOverwrite;
  else {
    *error = QStringLiteral("--on-conflict takes skip, rename or overwrite, not \"%1\"").arg(value);
    return false;
  }
  return true;
}

// Whether cleaning would leave the path as it is: absolute, no empty, "." or
// ".." part, no trailing separator. What a shell expands mostly is.
bool CleanAbsolute(QStringView path) {
  const qsizetype n = path.size();
  if (n == 0 || path[0] != u'/') return false;
  if (n == 1) return true;
  if (path[n - 1] == u'/' || path.contains(u"//")) return false;
  // Only a part starting with a dot can be "." or "..": most paths have none.
  for (qsizetype i = path.indexOf(u"/."); i >= 0; i = path.indexOf(u"/.", i + 1)) {
    qsizetype dots = 0;
    while (i + 1 + dots < n && path[i + 1 + dots] == u'.') ++dots;
    const qsizetype end = i + 1 + dots;
    if (dots <= 2 && (end == n || path[end] == u'/')) return false;  // "/./", "/../"
  }
  return true;
}

// A selection of many sources asks for the working folder once, not per path.
QStringList Absolute(const QStringList& paths) {
  const QDir current = QDir::current();
  QStringList out;
  out.reserve(paths.size());
  for (const QString& path : paths)
    out.append(CleanAbsolute(path) ? path : QDir::cleanPath(current.absoluteFilePath(path)));
  return out;
}

QString Absolute(const QString& path) { return QDir::cleanPath(QDir::current().absoluteFilePath(path)); }

int Exit(const FileOpResult& r) { return r.failed || r.stopped ? kExitFailed : kExitOk; }

int RunTransfer(CliContext& ctx, bool move) {
  const char* name = move ? "move" : "copy";
  ArgParser p;
  p.flag(QStringLiteral("dry-run")).option(QStringLiteral("on-conflict"));
  QString error;
  ConflictPolicy policy;
  if (!p.parse(ctx.args) || !Policy(p, &policy, &error)) {
    ctx.err << "quorvane " << name << ": " << (error.isEmpty() ? p.error() : error) << '\n';
    return kExitUsage;
  }
  if (p.positional().size() < 2) {
    ctx.err << "quorvane " << name << ": give one or more sources and a target folder\n";
    return kExitUsage;
  }
  QStringList sources = Absolute(p.positional());
  const QString target = sources.takeLast();
  FileOpOptions options;
  options.move = move;
  options.dryRun = p.isSet(QStringLiteral("dry-run"));
  options.onConflict = policy;
  options.sourcesMayBeGone = ctx.movedBefore > 0;
  InterruptGuard guard;
  RowSink sink(ctx.out);
  FileOperation op(&sink, nullptr, core::JobFlags::AbortFlag(), options);
  // A request that must not start (folder into itself, missing target) is refused before any row.
  FileOpResult result = op.run(sources, target);
  sink.finish();
  result.moved += ctx.movedBefore;
  if (!result.refusal.isEmpty()) {
    ctx.err << "quorvane " << name << ": " << result.refusal << '\n';
    return kExitUsage;
  }
  ctx.err << result.status(move) << '\n';
  return Exit(result);
}

}  // namespace

int RunCopyCommand(CliContext& ctx) { return RunTransfer(ctx, false); }
int RunMoveCommand(CliContext& ctx) { return RunTransfer(ctx, true); }

int RunBackupCommand(CliContext& ctx) {
  ArgParser p;
  p.flag(QStringLiteral("dry-run")).flag(QStringLiteral("no-recurse"));
  if (!p.parse(ctx.args)) {
    ctx.err << "quorvane backup: " << p.error() << '\n';
    return kExitUsage;
  }
  if (p.positional().size() < 2) {
    ctx.err << "quorvane backup: give one or more sources and a destination folder\n";
    return kExitUsage;
  }
  QStringList sources = Absolute(p.positional());
  const QString destination = sources.takeLast();
  const bool recurse = !p.isSet(QStringLiteral("no-recurse"));
  InterruptGuard guard;
  RowSink sink(ctx.out);
  if (p.isSet(QStringLiteral("dry-run"))) {
    // What a backup would copy; no destination made, no log.
    FileOpOptions options;
    options.dryRun = true;
    options.onlyNewer = true;
    options.onConflict = ConflictPolicy::kOverwrite;
    options.recurse = recurse;
    FileOperation op(&sink, nullptr, core::JobFlags::AbortFlag(), options);
    const FileOpResult result = op.run(sources, destination);
    sink.finish();
    ctx.err << result.status(false) << '\n';
    return result.refusal.isEmpty() ? Exit(result) : kExitUsage;
  }
  BackupJob job(&sink, nullptr, core::JobFlags::AbortFlag());
  const BackupJob::Result result = job.run(sources, destination, recurse, QDateTime::currentDateTime());
  sink.finish();
  if (!result.ops.refusal.isEmpty()) {
    ctx.err << "quorvane backup: " << result.ops.refusal << '\n';
    return kExitUsage;
  }
  ctx.err << result.ops.status(false) << '\n';
  if (result.logPath.isEmpty()) ctx.err << "The log could not be written: " << result.logError << '\n';
  else ctx.err << "Log: " << core::RowField(result.logPath) << '\n';
  return Exit(result.ops);
}

int RunTrashCommand(CliContext& ctx) {
  ArgParser p;
  p.flag(QStringLiteral("dry-run")).flag(QStringLiteral("for-good"));
  if (!p.parse(ctx.args)) {
    ctx.err << "quorvane trash: " << p.error() << '\n';
    return kExitUsage;
  }
  if (p.positional().isEmpty()) {
    ctx.err << "quorvane trash: give the files or folders to delete\n";
    return kExitUsage;
  }
  const bool forGood = p.isSet(QStringLiteral("for-good"));
  int failed = 0;
  for (const QString& given : p.positional()) {
    const QString path = Absolute(given);
    QString error;
    bool ok;
    if (p.isSet(QStringLiteral("dry-run"))) {
      ok = platform::FileCopier::Stat(path).kind != platform::NodeInfo::kMissing;
      if (!ok) error = QStringLiteral("It does not exist.");
    } else {
      ok = forGood ? Trash::DeleteForGood(path, &error) : Trash::MoveToTrash(path, &error);
    }
    if (!ok && !forGood && !error.isEmpty()) error += QStringLiteral(" (--for-good deletes it for good)");
    PrintRow(ctx.out, ok ? (forGood ? "deleted" : "trashed") : "failed", path, QString(), error);
    failed += !ok;
  }
  ctx.err << QStringLiteral("%1 %2, %3 failed.")
                 .arg(p.positional().size() - failed)
                 .arg(forGood ? "deleted" : "moved to the trash")
                 .arg(failed)
          << '\n';
  return failed ? kExitFailed : kExitOk;
}

int RunMkdirCommand(CliContext& ctx) {
  ArgParser p;
  p.flag(QStringLiteral("new-folder")).flag(QStringLiteral("new-text-file")).option(QStringLiteral("structure-from"));
  if (!p.parse(ctx.args)) {
    ctx.err << "quorvane mkdir: " << p.error() << '\n';
    return kExitUsage;
  }
  if (p.positional().isEmpty()) {
    ctx.err << "quorvane mkdir: give a folder\n";
    return kExitUsage;
  }
  int failed = 0;
  for (const QString& given : p.positional()) {
    const QString folder = Absolute(given);
    QString error, made;
    if (p.isSet(QStringLiteral("structure-from"))) {
      InterruptGuard guard;
      RowSink sink(ctx.out);
      const auto r = FolderStructure::Recreate(Absolute(p.value(QStringLiteral("structure-from"))), folder, &sink,
                                               nullptr, core::JobFlags::AbortFlag());
      sink.finish();
      ctx.err << r.status() << '\n';
      if (!r.refusal.isEmpty()) return kExitUsage;
      failed += r.failed + r.stopped;
      continue;
    }
    if (p.isSet(QStringLiteral("new-folder"))) made = NewItems::CreateFolder(folder, &error);
    else if (p.isSet(QStringLiteral("new-text-file"))) made = NewItems::CreateTextFile(folder, &error);
    else if (QDir().mkpath(folder)) made = folder;
    else error = QStringLiteral("Cannot create the folder.");
    PrintRow(ctx.out, made.isEmpty() ? "failed" : "created", made.isEmpty() ? folder : made, QString(), error);
    failed += made.isEmpty();
  }
  return failed ? kExitFailed : kExitOk;
}

}  // namespace cli
