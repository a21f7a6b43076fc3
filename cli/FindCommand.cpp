#include "cli/FindCommand.h"

#include "browser/list/ListModel.h"
#include "browser/list/ListPrinter.h"
#include "browser/list/RowBuilder.h"
#include "cli/FindRowPrinter.h"
#include "cli/ListCommand.h"
#include "core/AttributeText.h"
#include "core/ListModes.h"
#include "find/BuildCriteria.h"
#include "find/FindJob.h"

namespace cli {

namespace {

using V = core::FindTabValues;

// Find rows go into the Find-mode list model; statuses to standard error.
// Unless the rows are to be sorted, each row is also printed as it is found
// (the list's visible columns in display order, tab-separated), by a printer
// thread that overlaps the walk.
class CliFindSink : public find::FindSink {
 public:
  CliFindSink(browser::ListModel* model, QTextStream& out, QTextStream& err, bool stream, bool header)
      : model_(model), builder_(model), printer_(model, out, header), err_(err), stream_(stream) {}

  void startFill() override {
    model_->beginFill();
    if (stream_) printer_.start();
  }
  void addRow(const platform::DirEntry& entry, const QString& folder, const QString&) override {
    ++rows_;
    if (stream_) printer_.add(entry, folder);
    else builder_.add(entry, folder);
  }
  void flush() { printer_.finish(); }
  qsizetype rowCount() const override { return rows_; }
  void sortRows() override { model_->sortAgain(); }
  void showJobStatus(int mode, const QString& text) override {
    if (mode == find::kStatusFindEnd) summary_ = text;
    else if (mode == find::kStatusProgress && text == u"Sorting...") err_ << text << '\n';
  }
  const QString& summary() const { return summary_; }

 private:
  browser::ListModel* model_;
  browser::RowBuilder builder_;
  FindRowPrinter printer_;
  QTextStream& err_;
  const bool stream_;
  qsizetype rows_ = 0;
  QString summary_;
};

bool Choice(const ArgParser& p, const char* option, const QStringList& names, qint16* out, QString* error) {
  const QString name = QString::fromLatin1(option);
  if (!p.isSet(name)) return true;
  const qsizetype i = names.indexOf(p.value(name).toLower());
  if (i < 0) {
    *error = QStringLiteral("--%1 takes one of %2").arg(name, names.join(u'|'));
    return false;
  }
  *out = qint16(i);
  return true;
}

bool Letters(const ArgParser& p, const char* option, qint32* out, QString* error) {
  const QString name = QString::fromLatin1(option);
  if (!p.isSet(name)) return true;
  quint32 bits = 0;
  if (!core::AttributeBitsFromLetters(p.value(name), &bits)) {
    *error = QStringLiteral("--%1 takes attribute letters of \"RHSDANTC\", not '%2'").arg(name, p.value(name));
    return false;
  }
  *out = qint32(bits);
  return true;
}

}  // namespace

void AddFindOptions(ArgParser* parser) {
  for (const char* o : {"named", "in", "size-min", "size-max", "size-unit", "date-kind", "date-from", "date-to",
                        "attr", "not-attr", "containing", "exclude"})
    parser->option(QString::fromLatin1(o));
  for (const char* f : {"exact", "subfolders", "not", "case", "hex"}) parser->flag(QString::fromLatin1(f));
}

bool FindValuesFromOptions(const ArgParser& p, V* values, QStringList* lookIn, QString* error) {
  auto set = [&p](const char* o) { return p.isSet(QString::fromLatin1(o)); };
  auto text = [&p](const char* o) { return p.value(QString::fromLatin1(o)); };
  V v;
  v.watch = 0;
  if (set("named") || set("exact")) v.watch |= V::kWatchName;
  v.named = text("named");
  v.exactMatch = set("exact");
  v.includeSubfolders = set("subfolders");

  if (set("size-min") || set("size-max") || set("size-unit")) v.watch |= V::kWatchSize;
  v.sizeMin = text("size-min");
  v.sizeMax = text("size-max");
  if (!Choice(p, "size-unit", {QStringLiteral("bytes"), QStringLiteral("kb"), QStringLiteral("mb")}, &v.sizeUnit,
              error))
    return false;

  if (set("date-kind") || set("date-from") || set("date-to") || set("not")) v.watch |= V::kWatchDate;
  if (!Choice(p, "date-kind",
              {QStringLiteral("created"), QStringLiteral("modified"), QStringLiteral("accessed"),
               QStringLiteral("created-or-modified")},
              &v.dateKind, error))
    return false;
  v.dateFrom = text("date-from");
  v.dateTo = text("date-to");
  v.rangeNot = set("not");

  if (set("attr") || set("not-attr")) v.watch |= V::kWatchAttributes;
  if (!Letters(p, "attr", &v.attrMust, error) || !Letters(p, "not-attr", &v.attrMustNot, error)) return false;

  if (set("containing") || set("case") || set("hex")) v.watch |= V::kWatchText;
  v.containedText = text("containing");
  v.caseSensitive = set("case");
  v.isHex = set("hex");

  if (set("exclude")) v.watch |= V::kWatchExclude;
  v.excludes = p.values(QStringLiteral("exclude"));

  *lookIn = p.values(QStringLiteral("in"));
  if (lookIn->isEmpty()) lookIn->append(QStringLiteral("."));
  v.lookIn = lookIn->first();
  *values = v;
  return true;
}

int RunFindCommand(CliContext& ctx) {
  ArgParser parser;
  AddFindOptions(&parser);
  parser.option(QStringLiteral("threads"));
  parser.flag(QStringLiteral("rel-path"));
  browser::ListModel model;
  if (!PrepareListModel(ctx, core::kModeFind, &parser, &model, "find")) return kExitUsage;
  if (!parser.positional().isEmpty()) {
    ctx.err << "quorvane find: give folders with --in, not as arguments\n";
    return kExitUsage;
  }
  V values;
  QStringList lookIn;
  QString error;
  if (!FindValuesFromOptions(parser, &values, &lookIn, &error)) {
    ctx.err << "quorvane find: " << error << '\n';
    return kExitUsage;
  }
  int threads = 0;
  if (parser.isSet(QStringLiteral("threads"))) {
    bool ok = false;
    threads = parser.value(QStringLiteral("threads")).toInt(&ok);
    if (!ok || threads < 1 || threads > 256) {
      ctx.err << "quorvane find: --threads takes a number from 1 to 256\n";
      return kExitUsage;
    }
  }
  find::FindCriteria criteria;
  find::CriteriaMessage message;
  if (!find::BuildCriteria(values, lookIn, {}, &criteria, &message)) {
    ctx.err << message.text << '\n';
    return kExitUsage;
  }
  criteria.threads = threads;
  model.setPathBases(criteria.locations);
  model.setRelativePaths(parser.isSet(QStringLiteral("rel-path")));
  const bool sort = parser.isSet(QStringLiteral("sort"));
  const bool header = !parser.isSet(QStringLiteral("no-header"));
  CliFindSink sink(&model, ctx.out, ctx.err, !sort, header);
  find::FindJob::Run(criteria, sink, sort);
  if (sort) browser::ListPrinter::Print(model, ctx.out, header);
  sink.flush();
  ctx.out.flush();
  ctx.err << sink.summary() << '\n';
  return kExitOk;
}

}  // namespace cli
