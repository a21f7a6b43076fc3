#include <QDateTime>
#include <QTextStream>

#include "browser/list/ListFill.h"
#include "browser/list/ListModel.h"
#include "browser/list/RowBuilder.h"
#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "cli/FindCommand.h"
#include "cli/ListCommand.h"
#include "core/JobFlags.h"
#include "core/ListModes.h"
#include "find/BuildCriteria.h"
#include "find/DescribeCriteria.h"
#include "find/FindJob.h"
#include "platform/DirEntry.h"
#include "platform/FileTime.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"
#include "report/FolderReport.h"
#include "report/ListExport.h"
#include "report/ReportFile.h"

namespace cli {

namespace {

// Standard output as a report sink.
class StreamSink : public report::ReportSink {
 public:
  explicit StreamSink(QTextStream& out) : out_(out) {}
  bool write(QStringView text) override {
    out_ << text;
    return out_.status() == QTextStream::Ok;
  }

 private:
  QTextStream& out_;
};

// Find hits become rows of the Find-mode model; the export follows the walk.
class ModelFindSink : public find::FindSink {
 public:
  explicit ModelFindSink(browser::ListModel* model) : model_(model), builder_(model) {}
  void startFill() override { model_->beginFill(); }
  void addRow(const platform::DirEntry& entry, const QString& folder, const QString&) override {
    builder_.add(entry, folder);
  }
  qsizetype rowCount() const override { return model_->rowCount(); }
  void sortRows() override { model_->sortAgain(); }
  void showJobStatus(int mode, const QString& text) override {
    if (mode == find::kStatusFindEnd) summary = text;
  }
  QString summary;

 private:
  browser::ListModel* model_;
  browser::RowBuilder builder_;
};

const char* const kFindOptions[] = {"named", "size-min", "size-max", "size-unit", "date-kind", "date-from",
                                    "date-to", "attr", "not-attr", "containing", "exclude", "exact",
                                    "subfolders", "not", "case", "hex"};

// A find option among the arguments makes "report list" a find.
bool AsksForFind(const QStringList& args) {
  for (const QString& a : args)
    for (const char* o : kFindOptions) {
      const QString option = QStringLiteral("--") + QLatin1String(o);
      if (a == option || a.startsWith(option + u'=')) return true;
    }
  return false;
}

bool ParseSeparator(const QString& text, report::ListExportOptions* o) {
  static const char* const kNames[] = {"tab", "semicolon", "comma", "fixed"};
  for (int i = 0; i < 4; ++i)
    if (text == QLatin1String(kNames[i])) {
      o->separator = i;
      return true;
    }
  if (!report::ListExport::OwnSeparatorUsable(text)) return false;
  o->separator = report::ListExportOptions::kOwn;
  o->ownSeparator = text;
  return true;
}

// Runs `job` into standard output or into --out FILE (atomically, or appended).
template <typename Job>
int Deliver(CliContext& ctx, const ArgParser& p, const char* command, Job job) {
  const QString name = QStringLiteral("quorvane report ") + QLatin1String(command) + QStringLiteral(": ");
  report::ReportResult result;
  if (!p.isSet(QStringLiteral("out"))) {
    StreamSink sink(ctx.out);
    result = job(sink);
    ctx.out.flush();
    if (result == report::ReportResult::kWriteFailed) {
      ctx.err << name << "cannot write to standard output\n";
      return kExitFailed;
    }
  } else {
    QString path = p.value(QStringLiteral("out"));
    if (p.isSet(QStringLiteral("stamp"))) {
      const qsizetype slash = path.lastIndexOf(u'/');
      path = report::ReportFile::ProposedPath(slash < 0 ? QStringLiteral(".") : path.left(slash + 1),
                                              path.mid(slash + 1), true, QDateTime::currentDateTime());
    }
    report::ReportFile file;
    if (!file.open(path, p.isSet(QStringLiteral("append")))) {
      ctx.err << name << file.error() << '\n';
      return kExitFailed;
    }
    result = job(file);
    if (result == report::ReportResult::kUnreadable) {
      file.cancel();
    } else if (!file.commit()) {
      ctx.err << name << file.error() << '\n';
      return kExitFailed;
    } else {
      ctx.err << "Written: " << platform::DisplayText(path) << '\n';
    }
  }
  if (result == report::ReportResult::kUnreadable) {
    ctx.err << name << "cannot read the folder\n";
    return kExitFailed;
  }
  return result == report::ReportResult::kDone ? kExitOk : kExitFailed;
}

void AddOutputOptions(ArgParser* p) {
  p->option(QStringLiteral("out")).flag(QStringLiteral("append")).flag(QStringLiteral("stamp"));
}

bool CheckOutputOptions(CliContext& ctx, const ArgParser& p, const char* command) {
  if ((p.isSet(QStringLiteral("append")) || p.isSet(QStringLiteral("stamp"))) && !p.isSet(QStringLiteral("out"))) {
    ctx.err << "quorvane report " << command << ": --append and --stamp need --out FILE\n";
    return false;
  }
  return true;
}

bool OneFolder(CliContext& ctx, const ArgParser& p, const char* command, QString* folder) {
  if (p.positional().size() != 1) {
    ctx.err << "quorvane report " << command << ": give one FOLDER\n";
    return false;
  }
  *folder = p.positional().first();
  platform::DirEntry entry;
  if (!platform::StatPath(*folder, &entry) || !entry.isDirectory()) {
    ctx.err << "quorvane report " << command << ": no such folder: " << platform::DisplayText(*folder) << '\n';
    return false;
  }
  return true;
}

int RunFolderReport(CliContext& ctx, const QStringList& args, int kind) {
  const char* command = kind == report::FolderReportOptions::kTree ? "tree" : "dump";
  ArgParser p;
  p.flag(QStringLiteral("recurse"));
  if (kind == report::FolderReportOptions::kDump) p.flag(QStringLiteral("versions")).flag(QStringLiteral("fixed"));
  AddOutputOptions(&p);
  QString folder;
  if (!p.parse(args)) {
    ctx.err << "quorvane report " << command << ": " << p.error() << '\n';
    return kExitUsage;
  }
  if (!CheckOutputOptions(ctx, p, command) || !OneFolder(ctx, p, command, &folder)) return kExitUsage;
  report::FolderReportOptions o;
  o.kind = kind;
  o.recurse = p.isSet(QStringLiteral("recurse"));
  o.versions = p.isSet(QStringLiteral("versions"));
  o.fixedVersion = p.isSet(QStringLiteral("fixed"));
  return Deliver(ctx, p, command, [&](report::ReportSink& sink) { return report::FolderReport::Run(folder, o, sink); });
}

int RunListReport(CliContext& ctx, const QStringList& args) {
  const bool findMode = AsksForFind(args);
  ArgParser p;
  AddFindOptions(&p);
  AddOutputOptions(&p);
  p.option(QStringLiteral("sep")).flag(QStringLiteral("date")).flag(QStringLiteral("no-specs"));
  browser::ListModel model;
  CliContext sub{args, ctx.out, ctx.err, ctx.iniFile};
  if (!PrepareListModel(sub, findMode ? core::kModeFind : core::kModeBrowse, &p, &model, "report list")) return kExitUsage;
  QString folder;
  if (!CheckOutputOptions(ctx, p, "list") || !OneFolder(ctx, p, "list", &folder)) return kExitUsage;
  if (p.isSet(QStringLiteral("in"))) {
    ctx.err << "quorvane report list: give the folder as FOLDER, not with --in\n";
    return kExitUsage;
  }
  report::ListExportOptions o;
  if (p.isSet(QStringLiteral("sep")) && !ParseSeparator(p.value(QStringLiteral("sep")), &o)) {
    ctx.err << "quorvane report list: --sep takes tab, semicolon, comma, fixed or a separator text without quotes or line ends\n";
    return kExitUsage;
  }
  o.headers = !p.isSet(QStringLiteral("no-header"));
  if (p.isSet(QStringLiteral("date"))) o.dateLine = report::ListExport::DateLine(platform::FileTimeNow());

  if (findMode) {
    core::FindTabValues values;
    QStringList lookIn;
    QString error;
    if (!FindValuesFromOptions(p, &values, &lookIn, &error)) {
      ctx.err << "quorvane report list: " << error << '\n';
      return kExitUsage;
    }
    lookIn = {folder};
    values.lookIn = folder;
    find::FindCriteria criteria;
    find::CriteriaMessage message;
    if (!find::BuildCriteria(values, lookIn, {}, &criteria, &message)) {
      ctx.err << message.text << '\n';
      return kExitUsage;
    }
    ModelFindSink sink(&model);
    find::FindJob::Run(criteria, sink, true);
    ctx.err << sink.summary << '\n';
    if (!p.isSet(QStringLiteral("no-specs"))) o.specs = find::DescribeCriteria(values, lookIn, model.statusText());
  } else {
    model.beginFill();
    const browser::FillResult filled = browser::ListFill::Browse(&model, folder, {});
    model.endFill();
    if (filled == browser::FillResult::kUnreadable) {
      ctx.err << "quorvane report list: cannot read the folder " << platform::DisplayText(folder) << '\n';
      return kExitFailed;
    }
    model.sortAgain();
  }
  return Deliver(ctx, p, "list", [&](report::ReportSink& sink) { return report::ListExport::Run(model, o, sink); });
}

}  // namespace

// quorvane report tree|dump|list [options] FOLDER
int RunReportCommand(CliContext& ctx) {
  const QString kind = ctx.args.value(0);
  const QStringList rest = ctx.args.mid(1);
  if (kind == u"tree") return RunFolderReport(ctx, rest, report::FolderReportOptions::kTree);
  if (kind == u"dump") return RunFolderReport(ctx, rest, report::FolderReportOptions::kDump);
  if (kind == u"list") return RunListReport(ctx, rest);
  ctx.err << "quorvane report: give tree, dump or list, then the options and the FOLDER\n";
  return kExitUsage;
}

}  // namespace cli
