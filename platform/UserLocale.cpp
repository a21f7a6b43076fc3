#include "platform/UserLocale.h"

namespace platform {

QLocale UserLocale() {
  // QLocale::system() follows LC_ALL, then the category variables, then LANG.
  return QLocale::system();
}

}  // namespace platform
