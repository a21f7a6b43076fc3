#include "cli/Commands.h"

#include <array>

namespace cli {

// Each command lives in its own file and is listed here.

std::span<const Command> AllCommands() {
  static const std::array<Command, 0> commands = {{
  }};
  return commands;
}

}  // namespace cli
