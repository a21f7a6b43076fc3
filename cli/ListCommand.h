#pragma once
#include "cli/ArgParser.h"
#include "cli/CliContext.h"

namespace browser {
class ListModel;
}

namespace cli {

int RunListCommand(CliContext& ctx);
int RunDrivesCommand(CliContext& ctx);

// The options every list-printing command shares: --size-format, --sort
// COLUMN[:asc|:desc], --no-header, and outside Drives --date-style,
// --time-style and --no-group. Registers them on `parser`, parses ctx.args and
// sets up `model` for `mode`; false after a message on ctx.err (exit 2).
bool PrepareListModel(CliContext& ctx, int mode, ArgParser* parser, browser::ListModel* model, const char* command);

}  // namespace cli
