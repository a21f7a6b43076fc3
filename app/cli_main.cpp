#include <QCoreApplication>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

#include "cli/Cli.h"
#include "platform/NativePath.h"
#include "platform/ProgramFolder.h"

// The commands that need QtCore only, loaded by the lean front end when it
// does not do the work itself. The window and the picture and media
// commands are handed to quorvane-gui, which loads the window system's
// libraries. `movedBefore`: sources the front end moved before handing
// over the rest of a move.
extern "C" __attribute__((visibility("default"))) int QuorvaneCliMain(int argc, char** argv, long long movedBefore) {
  QStringList args;
  args.reserve(argc);
  // Arguments are bytes, like file names: those that are not UTF-8 must still name the right file.
  for (int i = 1; i < argc; ++i) args.append(platform::FromNative(argv[i], qsizetype(strlen(argv[i]))));

  if (cli::IsCliInvocation(args) && !cli::NeedsFullProgram(args)) {
    QCoreApplication app(argc, argv);
    const int code = cli::RunCli(args, movedBefore);
    // Everything is written and every thread joined: the process ends here
    // without freeing what it made (a selection of 10,000 names is a
    // millisecond of destructors and unmapping).
    std::fflush(nullptr);
    ::_exit(code);
  }
  // The window's program lies beside this one.
  const std::string full = platform::ProgramFolder() + "quorvane-gui";
  ::execv(full.c_str(), argv);
  std::fprintf(stderr, "quorvane: cannot start %s: %s\n", full.c_str(), std::strerror(errno));
  return 127;
}
