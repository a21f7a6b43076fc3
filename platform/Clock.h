#pragma once
#include <QtGlobal>

namespace platform {

// Milliseconds of a monotonic clock, for elapsed times and key timing.
qint64 MonotonicMs();
// Seconds of the same clock with sub-millisecond resolution.
double MonotonicSeconds();

}  // namespace platform
