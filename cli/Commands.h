#pragma once
#include <span>

#include "cli/CliContext.h"

namespace cli {

using CommandRunner = int (*)(CliContext& ctx);

struct Command {
  const char* name;
  const char* usage;    // one line: arguments
  const char* summary;  // one line: what it does
  CommandRunner run;    // null: attached by the full program (see AttachCommand)
};

// Every command of the headless front end, in the order --help lists them.
std::span<const Command> AllCommands();

// The commands whose engines load the window system's libraries (pictures,
// sound, video) are left out of the lean front end, which starts in a
// fraction of the time; the full program attaches their runners at start.
void AttachCommand(const char* name, CommandRunner run);

// The runner of a command, or null where it is not attached in this program.
CommandRunner RunnerOf(const Command& command);

}  // namespace cli
