#include "browser/UiYield.h"

#include <QCoreApplication>

#include "platform/Clock.h"

namespace browser {

UiYield::UiYield() : last_(platform::MonotonicMs()) {}

bool UiYield::due() const { return platform::MonotonicMs() - last_ >= kIntervalMs; }

void UiYield::operator()() {
  if (!due()) return;
  QCoreApplication::processEvents(QEventLoop::AllEvents);
  last_ = platform::MonotonicMs();
}

}  // namespace browser
