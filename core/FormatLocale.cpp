#include "core/FormatLocale.h"

#include "core/DateStyles.h"
#include "platform/UserLocale.h"

namespace core {

namespace {
QLocale& Current() {
  static QLocale locale = platform::UserLocale();
  return locale;
}
}  // namespace

const QLocale& FormatLocale() { return Current(); }

void SetFormatLocale(const QLocale& locale) {
  Current() = locale;
  SetupDateStyles();  // the date patterns come from the locale
}

}  // namespace core
