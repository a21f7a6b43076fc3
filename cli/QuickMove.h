#pragma once
#include <string>
#include <vector>

namespace cli {

// `quorvane move SOURCE... FOLDER` for the plain case, without loading Qt: a
// move within one file system is a rename per source, and starting the full
// front end costs more than renaming a folder. It takes a request only when
// it has no options, every path prints in a row as it is, the target is a
// folder and every source exists on its file system and is not a folder the
// target lies in: what the engine would check before moving anything.
// Anything else is declined untouched. A rename that fails (a taken name,
// an error) hands that source and those after it to the engine, which
// settles them as it always does. Requests with an option always go to the
// engine, so the two can be compared.
class QuickMove {
 public:
  enum class Outcome { kDeclined, kDone, kHandedOver };

  // `args`: the arguments after the program name.
  Outcome run(const std::vector<const char*>& args);
  // After kDone: the exit status, rows and summary written.
  int exitCode() const { return exitCode_; }
  // After kHandedOver: the move command's arguments for the sources left,
  // and how many sources went before them.
  const std::vector<const char*>& rest() const { return rest_; }
  long long moved() const { return moved_; }

 private:
  struct Source {
    std::string path;  // absolute and clean
    size_t nameAt = 0;  // where its name starts in `path`
    size_t group = 0;   // index of its folder in folders_
    const char* name() const { return path.c_str() + nameAt; }
  };
  bool check(const std::vector<const char*>& args);
  bool checkGroup(size_t first, size_t end);
  Outcome rename(const std::vector<const char*>& args);

  std::string target_;
  std::string realTarget_;
  int targetFd_ = -1;
  unsigned long long targetDevice_ = 0;
  std::vector<Source> sources_;
  std::vector<std::string> folders_;
  int exitCode_ = 0;
  std::vector<const char*> rest_;
  long long moved_ = 0;
};

}  // namespace cli
