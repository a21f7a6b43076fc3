#include <QCoreApplication>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

#include "cli/Cli.h"
#include "platform/NativePath.h"

namespace {

// The window's program lies beside this one, wherever it was started from.
std::string FullProgramPath() {
  char self[PATH_MAX];
  const ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
  if (n <= 0) return "quorvane-gui";
  std::string path(self, size_t(n));
  path.resize(path.rfind('/') + 1);
  return path + "quorvane-gui";
}

}  // namespace

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
  const std::string full = FullProgramPath();
  ::execv(full.c_str(), argv);
  std::fprintf(stderr, "quorvane: cannot start %s: %s\n", full.c_str(), std::strerror(errno));
  return 127;
}
