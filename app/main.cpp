#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "cli/QuickMove.h"
#include "platform/ProgramFolder.h"

namespace {

using CliMain = int (*)(int argc, char** argv, long long movedBefore);

// The command-line engines, in a library beside this program.
int RunCommands(std::vector<const char*> argv, long long movedBefore) {
  const std::string path = platform::ProgramFolder() + "quorvane-cli.so";
  void* library = ::dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  const auto run = library ? reinterpret_cast<CliMain>(::dlsym(library, "QuorvaneCliMain")) : nullptr;
  if (!run) {
    std::fprintf(stderr, "quorvane: cannot load %s: %s\n", path.c_str(), ::dlerror());
    return 127;
  }
  argv.push_back(nullptr);
  return run(int(argv.size() - 1), const_cast<char**>(argv.data()), movedBefore);
}

}  // namespace

// The lean front end, free of Qt: a plain move is a few renames, done before
// a single library of Qt is loaded; everything else goes to the engines.
int main(int argc, char** argv) {
  const std::vector<const char*> all(argv, argv + argc);
  cli::QuickMove move;
  switch (move.run(std::vector<const char*>(all.begin() + 1, all.end()))) {
    case cli::QuickMove::Outcome::kDone:
      std::fflush(nullptr);
      ::_exit(move.exitCode());
    case cli::QuickMove::Outcome::kHandedOver:
      if (move.moved() > 0) {
        std::vector<const char*> rest{argv[0]};
        rest.insert(rest.end(), move.rest().begin(), move.rest().end());
        return RunCommands(rest, move.moved());
      }
      break;
    case cli::QuickMove::Outcome::kDeclined: break;
  }
  return RunCommands(all, 0);
}
