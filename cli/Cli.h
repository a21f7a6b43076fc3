#pragma once
#include <QStringList>

namespace cli {

// True when the arguments ask for the headless front end (a command, --help
// or --version) rather than the window.
bool IsCliInvocation(const QStringList& args);

// True when the arguments name a command that this program has no runner
// for: the lean front end hands such a run to the full program.
bool NeedsFullProgram(const QStringList& args);

// Runs `quorvane [--ini FILE] COMMAND ...` (args without the program name)
// and returns the exit status. `movedBefore`: a move whose first sources the
// lean front end moved already; these are the rest.
int RunCli(const QStringList& args, qint64 movedBefore = 0);

}  // namespace cli
