#include "platform/ProgramFolder.h"

#include <climits>
#include <unistd.h>

namespace platform {

std::string ProgramFolder() {
  char self[PATH_MAX];
  const ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
  if (n <= 0) return std::string();
  std::string path(self, size_t(n));
  path.resize(path.rfind('/') + 1);
  return path;
}

}  // namespace platform
