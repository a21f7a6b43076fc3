#pragma once
#include <QtGlobal>

namespace core {

// A 16-bit on/off setting: on is -1, off is 0, and the settings file stores
// that number ("-1"/"0"). Any other number read from the file is kept as it
// is and counts as on, so a hand-edited value round-trips unchanged.
struct Flag16 {
  qint16 raw = 0;

  constexpr Flag16() = default;
  constexpr Flag16(bool on) : raw(on ? qint16(-1) : qint16(0)) {}  // NOLINT: reads like a bool
  Flag16(int) = delete;  // a number is not a flag: use FromRaw
  static constexpr Flag16 FromRaw(qint16 value) {
    Flag16 f;
    f.raw = value;
    return f;
  }

  constexpr explicit operator bool() const { return raw != 0; }
  constexpr bool on() const { return raw != 0; }
  friend constexpr bool operator==(Flag16 a, Flag16 b) = default;
};

}  // namespace core
