#include "browser/UiYield.h"

#include <QCoreApplication>

#include "platform/Clock.h"

namespace browser {

UiYield::UiYield() : last_(platform::MonotonicMs()) {}

void UiYield::operator()() {
  const qint64 now = platform::MonotonicMs();
  if (now - last_ < kIntervalMs) return;
  QCoreApplication::processEvents(QEventLoop::AllEvents);
  last_ = platform::MonotonicMs();
}

}  // namespace browser
