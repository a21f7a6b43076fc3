#include "fileops/TransferStatus.h"

namespace fileops {

std::string TransferStatus(const TransferCounts& c, bool move) {
  const int64_t items = move ? c.moved + c.copied : c.copied;
  std::string text = move ? "Moved " : "Copied ";
  text += std::to_string(items);
  text += items == 1 ? " item" : " items";
  if (c.created) text += ", " + std::to_string(c.created) + (c.created == 1 ? " folder created" : " folders created");
  text += ", " + std::to_string(c.skipped) + " skipped, " + std::to_string(c.failed) + " failed.";
  if (c.stopped) {
    const char* verb = move ? "moved." : "copied.";
    text += " Stopped by the user: ";
    text += c.notDone >= 0 ? std::to_string(c.notDone) + " not " + verb : std::string("the rest was not ") + verb;
  }
  return text;
}

}  // namespace fileops
