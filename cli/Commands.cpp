#include "cli/Commands.h"

#include <array>

namespace cli {

// Each command lives in its own file and is listed here.
int RunListCommand(CliContext& ctx);
int RunDrivesCommand(CliContext& ctx);

std::span<const Command> AllCommands() {
  static const std::array<Command, 2> commands = {{
      {"list",
       "[--size-format 0..8] [--date-style 0..3] [--time-style 0..3] [--sort COLUMN[:asc|:desc]] [--no-group] "
       "[--no-header] FOLDER",
       "list a folder as the file list shows it (status on standard error)", RunListCommand},
      {"drives", "[--size-format 0..8] [--sort COLUMN[:asc|:desc]] [--no-header]",
       "list the drives (mounted file systems) as the file list shows them", RunDrivesCommand},
  }};
  return commands;
}

}  // namespace cli
