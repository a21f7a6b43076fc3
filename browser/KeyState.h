#pragma once
#include <bitset>

namespace browser {

// The keys that are down, by Windows virtual-key code, and the key-held test
// of the browse flow. Qt key codes are mapped so that the scan order (and so
// the one deliberate exception, the Windows keys) stays as defined.
class KeyState {
 public:
  static constexpr int kVkLeftWin = 91;
  static constexpr int kVkRightWin = 92;
  static constexpr int kScanFirst = 8;
  static constexpr int kScanLast = 145;

  void press(int vk);
  void release(int vk);
  void clear() { down_.reset(); }
  bool isDown(int vk) const { return vk > 0 && vk < 256 && down_.test(size_t(vk)); }
  bool any() const { return down_.any(); }

  // Scans codes 8..145 upward: the first key down means "held", unless it is
  // a Windows key, which ends the scan with "not held".
  bool held() const;

  // Virtual-key code of a Qt key (Qt::Key value); `keypad` for keys of the
  // numeric keypad. 0 for keys without one.
  static int VirtualKeyFor(int qtKey, bool keypad);

 private:
  std::bitset<256> down_;
};

}  // namespace browser
