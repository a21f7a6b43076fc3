#pragma once
#include "cli/CliContext.h"

namespace cli {

// "quorvane copy|move|backup|trash|mkdir": the file operations without the window.
int RunCopyCommand(CliContext& ctx);
int RunMoveCommand(CliContext& ctx);
int RunBackupCommand(CliContext& ctx);
int RunTrashCommand(CliContext& ctx);
int RunMkdirCommand(CliContext& ctx);

}  // namespace cli
