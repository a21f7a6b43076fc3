#pragma once
#include <QLocale>

namespace core {

// The locale every display format uses: the user's, unless a caller (the
// tests, a command-line option) pins another one.
const QLocale& FormatLocale();
void SetFormatLocale(const QLocale& locale);

}  // namespace core
