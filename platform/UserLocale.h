#pragma once
#include <QLocale>

namespace platform {

// The user's locale from the environment (LC_ALL, LC_NUMERIC/LC_TIME, LANG),
// as the rest of the program formats numbers and dates with it.
QLocale UserLocale();

}  // namespace platform
