#include "browser/list/ListFill.h"
#include "browser/list/ListModel.h"
#include "browser/list/ListPrinter.h"
#include "cli/ListCommand.h"
#include "core/ListModes.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"

namespace cli {

namespace {

// "--sort COLUMN[:asc|:desc]": a caption (any case) or a column number.
// Without a direction the header-click rule picks one (dates newest first).
bool ApplySort(browser::ListModel* model, const QString& sortText, QString* error) {
  QString column = sortText, direction;
  const qsizetype colon = sortText.lastIndexOf(u':');
  if (colon >= 0) {
    column = sortText.left(colon);
    direction = sortText.mid(colon + 1).toLower();
  }
  bool numeric = false;
  int index = column.toInt(&numeric);
  if (!numeric) index = model->columns().find(column.trimmed());
  if (index < 0 || index >= model->columns().count()) {
    *error = QStringLiteral("--sort: no column '%1'").arg(column);
    return false;
  }
  bool descending;
  if (direction.isEmpty()) descending = model->columns().column(index).kind == browser::ListColumn::kDate;
  else if (direction == u"asc") descending = false;
  else if (direction == u"desc") descending = true;
  else {
    *error = QStringLiteral("--sort: direction must be asc or desc, not '%1'").arg(direction);
    return false;
  }
  model->setSortOrder(quint32(index) | (descending ? 0x80000000u : 0u));
  return true;
}

}  // namespace

bool PrepareListModel(CliContext& ctx, int mode, ArgParser* parser, browser::ListModel* model, const char* command) {
  parser->option(QStringLiteral("size-format")).option(QStringLiteral("sort")).flag(QStringLiteral("no-header"));
  if (mode != core::kModeDrives)
    parser->option(QStringLiteral("date-style")).option(QStringLiteral("time-style")).flag(QStringLiteral("no-group"));
  core::ModeRecord record = core::DefaultModeRecord(mode);
  int size = record.sizeFormat, date = record.dateStyle, time = record.timeStyle;
  if (!parser->parse(ctx.args) || !parser->intValue(QStringLiteral("size-format"), 0, 99, &size) ||
      !parser->intValue(QStringLiteral("date-style"), 0, 3, &date) ||
      !parser->intValue(QStringLiteral("time-style"), 0, 3, &time)) {
    ctx.err << "quorvane " << command << ": " << parser->error() << '\n';
    return false;
  }
  record.sizeFormat = size;
  record.dateStyle = qint16(date);
  record.timeStyle = qint16(time);
  model->setMode(mode, record);
  model->setGrouping(!parser->isSet(QStringLiteral("no-group")));
  QString error;
  if (parser->isSet(QStringLiteral("sort")) && !ApplySort(model, parser->value(QStringLiteral("sort")), &error)) {
    ctx.err << "quorvane " << command << ": " << error << '\n';
    return false;
  }
  return true;
}

int RunListCommand(CliContext& ctx) {
  ArgParser parser;
  browser::ListModel model;
  if (!PrepareListModel(ctx, core::kModeBrowse, &parser, &model, "list")) return kExitUsage;
  if (parser.positional().size() != 1) {
    ctx.err << "quorvane list: give one FOLDER\n";
    return kExitUsage;
  }
  const QString folder = parser.positional().first();
  platform::DirEntry entry;
  if (!platform::StatPath(folder, &entry)) {
    ctx.err << "quorvane list: no such folder: " << platform::DisplayText(folder) << '\n';
    return kExitUsage;
  }
  if (!entry.isDirectory()) {
    ctx.err << "quorvane list: not a folder: " << platform::DisplayText(folder) << '\n';
    return kExitUsage;
  }
  model.beginFill();
  const browser::FillResult result = browser::ListFill::Browse(&model, folder, {});
  model.endFill();
  if (result == browser::FillResult::kUnreadable) {
    ctx.err << "quorvane list: cannot read the folder " << platform::DisplayText(folder) << '\n';
    return kExitFailed;
  }
  model.sortAgain();
  browser::ListPrinter::Print(model, ctx.out, !parser.isSet(QStringLiteral("no-header")));
  ctx.out.flush();
  ctx.err << model.statusText() << '\n';
  return kExitOk;
}

}  // namespace cli
