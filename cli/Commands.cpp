#include "cli/Commands.h"

#include <array>

#include "cli/ListCommand.h"

namespace cli {

int RunSettingsCommand(CliContext& ctx);

// Each command lives in its own file and is listed here.

std::span<const Command> AllCommands() {
  static const std::array<Command, 3> commands = {{
      {"list",
       "[--size-format 0..8] [--date-style 0..3] [--time-style 0..3] [--sort COLUMN[:asc|:desc]] [--no-group] "
       "[--no-header] FOLDER",
       "list a folder as the file list shows it (status on standard error)", RunListCommand},
      {"drives", "[--size-format 0..8] [--sort COLUMN[:asc|:desc]] [--no-header]",
       "list the drives (mounted file systems) as the file list shows them", RunDrivesCommand},
      {"settings", "[--defaults] [--write] [--screen WxH] [--no-header]",
       "show every setting as the settings file holds it; --write saves them all", RunSettingsCommand},
  }};
  return commands;
}

}  // namespace cli
