#include "cli/Commands.h"

#include <array>

namespace cli {

int RunSettingsCommand(CliContext& ctx);

// Each command lives in its own file and is listed here.

std::span<const Command> AllCommands() {
  static const std::array<Command, 1> commands = {{
      {"settings", "[--defaults] [--write] [--screen WxH] [--no-header]",
       "show every setting as the settings file holds it; --write saves them all", RunSettingsCommand},
  }};
  return commands;
}

}  // namespace cli
