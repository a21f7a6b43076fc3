#include "browser/list/ListFill.h"
#include "browser/list/ListModel.h"
#include "browser/list/ListPrinter.h"
#include "cli/ListCommand.h"
#include "core/ListModes.h"

namespace cli {

int RunDrivesCommand(CliContext& ctx) {
  ArgParser parser;
  browser::ListModel model;
  if (!PrepareListModel(ctx, core::kModeDrives, &parser, &model, "drives")) return kExitUsage;
  if (!parser.positional().isEmpty()) {
    ctx.err << "quorvane drives: takes no arguments\n";
    return kExitUsage;
  }
  model.beginFill();
  browser::ListFill::Drives(&model, {});
  model.endFill();
  model.sortAgain();
  browser::ListPrinter::Print(model, ctx.out, !parser.isSet(QStringLiteral("no-header")));
  ctx.out.flush();
  ctx.err << model.statusText() << '\n';
  return kExitOk;
}

}  // namespace cli
