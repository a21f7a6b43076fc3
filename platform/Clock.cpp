#include "platform/Clock.h"

#include <ctime>

namespace platform {

qint64 MonotonicMs() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return qint64(ts.tv_sec) * 1000 + ts.tv_nsec / 1'000'000;
}

double MonotonicSeconds() {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return double(ts.tv_sec) + double(ts.tv_nsec) / 1e9;
}

}  // namespace platform
