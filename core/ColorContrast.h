#pragma once
#include <QtGlobal>

namespace core {

// Colours are COLORREF values, 0x00BBGGRR, as the settings keep them.

// The contrast ratio of two colours, 1 (same) to 21 (black on white), from
// their relative luminance.
double ContrastRatio(quint32 a, quint32 b);

// The text colour for `fill`: `preferred` when it reads well enough on it
// (a ratio of kReadableContrast), else black or white, whichever contrasts more.
// The desktops' own selection colours reach about 3.7 with their text.
inline constexpr double kReadableContrast = 3.0;
quint32 ReadableTextColor(quint32 fill, quint32 preferred);

}  // namespace core
