// quorvane rename: the batch renamer of the File menu without the window.
#include <QDateTime>
#include <QDir>
#include <csignal>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/JobFlags.h"
#include "core/RowEscape.h"
#include "core/SettingsLocation.h"
#include "fileops/RenameLog.h"
#include "fileops/RenameSpecial.h"

namespace cli {

namespace {

using fileops::RenameItem;
using fileops::RenameLog;
using fileops::RenameSpecial;

void PrintChange(QTextStream& out, const RenameItem& item) {
  QString line = core::RowField(item.oldPath());
  line += QStringLiteral(" => ");
  core::AppendRowField(&line, item.newPath());
  out << line << '\n';
}

void PrintRefusal(QTextStream& err, const RenameItem& item) {
  err << core::RowField(item.oldPath()) << ": " << item.refusal << '\n';
}

// Ctrl+C stops between entries, so that every rename done is in the log.
void OnInterrupt(int) { core::JobFlags::RequestAbort(); }

// Relative to the working folder, "." and ".." resolved, links left alone.
QString Absolute(const QString& path) { return QDir::cleanPath(QDir::current().absoluteFilePath(path)); }

}  // namespace

int RunRenameCommand(CliContext& ctx) {
  ArgParser p;
  p.option(QStringLiteral("how")).flag(QStringLiteral("dry-run")).option(QStringLiteral("undo"));
  if (!p.parse(ctx.args)) {
    ctx.err << "quorvane rename: " << p.error() << '\n';
    return kExitUsage;
  }
  const bool undo = p.isSet(QStringLiteral("undo"));
  const bool dryRun = p.isSet(QStringLiteral("dry-run"));
  fileops::RenameHow how = fileops::RenameHow::kProper;
  if (undo == p.isSet(QStringLiteral("how")) || p.values(QStringLiteral("how")).size() > 1 ||
      p.values(QStringLiteral("undo")).size() > 1) {
    ctx.err << "quorvane rename: give one --how, or one --undo LOG\n";
    return kExitUsage;
  }
  if (!undo && !RenameSpecial::FromKeyword(p.value(QStringLiteral("how")), &how)) {
    ctx.err << "quorvane rename: --how takes "
            << QString::fromLatin1(RenameSpecial::kKeywords).replace(u',', u'|') << ", not \""
            << p.value(QStringLiteral("how")) << "\"\n";
    return kExitUsage;
  }
  if (undo != p.positional().isEmpty()) {
    ctx.err << (undo ? "quorvane rename: --undo takes no paths\n" : "quorvane rename: give the entries to rename\n");
    return kExitUsage;
  }

  std::vector<RenameItem> items;
  QString logPath;
  if (undo) {
    // The undo is itself a batch of the log it undoes, so a second undo redoes.
    logPath = Absolute(p.value(QStringLiteral("undo")));
    std::vector<RenameItem> last;
    QString error;
    if (!RenameLog::LastBatch(logPath, &last, &error)) {
      ctx.err << "quorvane rename: " << error << '\n';
      return kExitUsage;
    }
    items = RenameSpecial::Reverse(last);
  } else {
    QStringList paths;
    for (const QString& given : p.positional()) paths << Absolute(given);
    items = RenameSpecial::Plan(how, paths);
    logPath = RenameLog::PathBeside(core::SettingsFilePath(ctx.iniFile));
  }

  fileops::RenameResult result;
  if (dryRun) {
    result.refused = RenameSpecial::Check(&items);
  } else {
    RenameLog log(logPath, QDateTime::currentDateTime());
    core::JobFlags::ClearAbort();
    const auto previous = std::signal(SIGINT, OnInterrupt);
    result = RenameSpecial::Run(&items, &log, nullptr, &core::JobFlags::AbortFlag());
    std::signal(SIGINT, previous);
  }
  for (const RenameItem& item : items) {
    if (!item.refusal.isEmpty()) PrintRefusal(ctx.err, item);
    else if (item.done || dryRun) PrintChange(ctx.out, item);
  }
  const qsizetype changed = dryRun ? qsizetype(items.size()) - result.refused : result.renamed;
  ctx.err << QStringLiteral("%1 %2, %3 refused.").arg(changed).arg(dryRun ? "to rename" : "renamed").arg(result.refused)
          << (result.stopped ? " Stopped." : "") << '\n';
  if (!dryRun && result.renamed > 0) {
    if (result.logError.isEmpty()) ctx.err << "Undo log: " << core::RowField(logPath) << '\n';
    else ctx.err << "The undo log could not be written: " << result.logError << '\n';
  }
  return result.refused > 0 || result.stopped ? kExitFailed : kExitOk;
}

}  // namespace cli
