#pragma once
#include <span>

#include "cli/CliContext.h"

namespace cli {

struct Command {
  const char* name;
  const char* usage;    // one line: arguments
  const char* summary;  // one line: what it does
  int (*run)(CliContext& ctx);
};

// Every command of the headless front end, in the order --help lists them.
std::span<const Command> AllCommands();

}  // namespace cli
