#pragma once
#include <cmath>
#include <cstdint>
#include <optional>

namespace core {

// Fractional to integral conversions round half to even, and fail rather
// than wrap when the result does not fit.
inline double RoundHalfEven(double v) { return std::nearbyint(v); }  // default FE_TONEAREST

inline std::optional<int32_t> ToInt32(double v) {
  const double r = RoundHalfEven(v);
  if (!(r >= -2147483648.0 && r <= 2147483647.0)) return std::nullopt;  // also NaN
  return int32_t(r);
}

inline std::optional<int16_t> ToInt16(double v) {
  const double r = RoundHalfEven(v);
  if (!(r >= -32768.0 && r <= 32767.0)) return std::nullopt;
  return int16_t(r);
}

}  // namespace core
