#pragma once
#include <QtGlobal>

namespace browser {

// The yield hook the window hands to long jobs: lets pending events run
// (input, paints, timers) when some 30 ms have passed since the last time,
// so that a job is neither frozen nor slowed by yielding per item.
class UiYield {
 public:
  static constexpr qint64 kIntervalMs = 30;

  UiYield();
  void operator()();
  // Whether the next call would let events run.
  bool due() const;

 private:
  qint64 last_;
};

}  // namespace browser
