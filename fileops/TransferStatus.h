#pragma once
#include <cstdint>
#include <string>

namespace fileops {

// The counts a copy or move ends with.
struct TransferCounts {
  int64_t copied = 0;
  int64_t moved = 0;
  int64_t created = 0;
  int64_t skipped = 0;
  int64_t failed = 0;
  int64_t notDone = -1;  // after a stop: items not reached, when counted
  bool stopped = false;
};

// "Moved 3 items, 0 skipped, 0 failed." and its kin, for the status line and
// the command line. Free of Qt: the lean front end's moves print it too.
std::string TransferStatus(const TransferCounts& counts, bool move);

}  // namespace fileops
