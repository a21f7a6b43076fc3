#pragma once

namespace cli {

// Attaches the commands that load the picture and media libraries ("image",
// "media"); the full program calls it before it runs a command.
void AttachMediaCommands();

}  // namespace cli
