#include "browser/KeyState.h"

#include <Qt>

namespace browser {

void KeyState::press(int vk) {
  if (vk > 0 && vk < 256) down_.set(size_t(vk));
}

void KeyState::release(int vk) {
  if (vk > 0 && vk < 256) down_.reset(size_t(vk));
}

bool KeyState::held() const {
  for (int vk = kScanFirst; vk <= kScanLast; ++vk) {
    if (!down_.test(size_t(vk))) continue;
    return vk != kVkLeftWin && vk != kVkRightWin;
  }
  return false;
}

int KeyState::VirtualKeyFor(int qtKey, bool keypad) {
  if (keypad) {
    if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) return 96 + (qtKey - Qt::Key_0);  // VK_NUMPAD0..9
    switch (qtKey) {
      case Qt::Key_Asterisk: return 106;
      case Qt::Key_Plus: return 107;
      case Qt::Key_Minus: return 109;
      case Qt::Key_Period:
      case Qt::Key_Comma: return 110;
      case Qt::Key_Slash: return 111;
      default: break;  // keypad arrows, Home, Enter... share the main codes
    }
  }
  if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) return qtKey;  // same codes as VK_A..VK_Z
  if (qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) return qtKey;
  if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) return 112 + (qtKey - Qt::Key_F1);
  switch (qtKey) {
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return 9;
    case Qt::Key_Clear: return 12;
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Shift: return 16;
    case Qt::Key_Control: return 17;
    case Qt::Key_Alt:
    case Qt::Key_AltGr: return 18;
    case Qt::Key_Pause: return 19;
    case Qt::Key_CapsLock: return 20;
    case Qt::Key_Escape: return 27;
    case Qt::Key_Space: return 32;
    case Qt::Key_PageUp: return 33;
    case Qt::Key_PageDown: return 34;
    case Qt::Key_End: return 35;
    case Qt::Key_Home: return 36;
    case Qt::Key_Left: return 37;
    case Qt::Key_Up: return 38;
    case Qt::Key_Right: return 39;
    case Qt::Key_Down: return 40;
    case Qt::Key_Select: return 41;
    case Qt::Key_Print: return 44;
    case Qt::Key_Insert: return 45;
    case Qt::Key_Delete: return 46;
    case Qt::Key_Help: return 47;
    case Qt::Key_Meta:
    case Qt::Key_Super_L: return kVkLeftWin;
    case Qt::Key_Super_R: return kVkRightWin;
    case Qt::Key_Menu: return 93;
    case Qt::Key_Sleep: return 95;
    case Qt::Key_NumLock: return 144;
    case Qt::Key_ScrollLock: return 145;
    case Qt::Key_Semicolon: return 186;
    case Qt::Key_Equal: return 187;
    case Qt::Key_Comma: return 188;
    case Qt::Key_Minus: return 189;
    case Qt::Key_Period: return 190;
    case Qt::Key_Slash: return 191;
    case Qt::Key_QuoteLeft: return 192;
    case Qt::Key_BracketLeft: return 219;
    case Qt::Key_Backslash: return 220;
    case Qt::Key_BracketRight: return 221;
    case Qt::Key_Apostrophe: return 222;
    default: return 0;
  }
}

}  // namespace browser
