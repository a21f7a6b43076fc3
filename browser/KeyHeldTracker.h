#pragma once
#include <QHash>
#include <QObject>

#include "browser/KeyState.h"

namespace browser {

// The application-wide record of the keys that are down, for the browse
// flow's key-held test. Installed on the application, it sees every key
// press and release before any widget (also those a shortcut takes), ignores
// the releases of auto-repeat, and forgets all keys when the application
// loses the keyboard, since their releases will go elsewhere.
class KeyHeldTracker : public QObject {
  Q_OBJECT
 public:
  explicit KeyHeldTracker(QObject* parent = nullptr);
  ~KeyHeldTracker() override;

  bool held() const { return keys_.held(); }
  const KeyState& keys() const { return keys_; }
  void clear();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  KeyState keys_;
  // The code each physical key was pressed as: its release may map to another
  // Qt key (Shift pressed or let go in between) and must not leave it stuck.
  QHash<quint32, int> byScanCode_;
};

}  // namespace browser
