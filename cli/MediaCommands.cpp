#include "cli/MediaCommands.h"

#include "cli/Commands.h"

namespace cli {

int RunMediaCommand(CliContext& ctx);
int RunImageCommand(CliContext& ctx);

void AttachMediaCommands() {
  AttachCommand("media", RunMediaCommand);
  AttachCommand("image", RunImageCommand);
}

}  // namespace cli
