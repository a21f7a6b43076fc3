#include "core/ColorContrast.h"

#include <algorithm>
#include <cmath>

namespace core {

namespace {

constexpr quint32 kBlack = 0x000000, kWhite = 0xFFFFFF;

double Linear(quint32 channel) {
  const double c = double(channel & 0xFF) / 255.0;
  return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double Luminance(quint32 color) {
  return 0.2126 * Linear(color) + 0.7152 * Linear(color >> 8) + 0.0722 * Linear(color >> 16);
}

}  // namespace

double ContrastRatio(quint32 a, quint32 b) {
  const double la = Luminance(a), lb = Luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

quint32 ReadableTextColor(quint32 fill, quint32 preferred) {
  if (ContrastRatio(fill, preferred) >= kReadableContrast) return preferred;
  return ContrastRatio(fill, kBlack) >= ContrastRatio(fill, kWhite) ? kBlack : kWhite;
}

}  // namespace core
