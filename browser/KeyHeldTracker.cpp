#include "browser/KeyHeldTracker.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace browser {

KeyHeldTracker::KeyHeldTracker(QObject* parent) : QObject(parent) {
  setObjectName(QStringLiteral("keyHeldTracker"));
  if (QCoreApplication* app = QCoreApplication::instance()) app->installEventFilter(this);
}

KeyHeldTracker::~KeyHeldTracker() {
  if (QCoreApplication* app = QCoreApplication::instance()) app->removeEventFilter(this);
}

void KeyHeldTracker::clear() {
  keys_.clear();
  byScanCode_.clear();
}

bool KeyHeldTracker::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride: {
      const auto* k = static_cast<QKeyEvent*>(event);
      const int vk = KeyState::VirtualKeyFor(k->key(), k->modifiers() & Qt::KeypadModifier);
      keys_.press(vk);
      if (k->nativeScanCode() != 0 && vk != 0) byScanCode_.insert(k->nativeScanCode(), vk);
      break;
    }
    case QEvent::KeyRelease: {
      const auto* k = static_cast<QKeyEvent*>(event);
      if (k->isAutoRepeat()) break;
      keys_.release(KeyState::VirtualKeyFor(k->key(), k->modifiers() & Qt::KeypadModifier));
      if (k->nativeScanCode() != 0) keys_.release(byScanCode_.take(k->nativeScanCode()));
      break;
    }
    case QEvent::ApplicationDeactivate:
      clear();
      break;
    default:
      break;
  }
  return QObject::eventFilter(watched, event);
}

}  // namespace browser
