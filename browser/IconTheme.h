#pragma once
#include <QIcon>
#include <QString>

namespace browser {

// The icon theme is set explicitly: a desktop session may name none (or one
// that is not installed), and the offscreen platform names none at all.
class IconTheme {
 public:
  static void Setup();  // idempotent
  // A themed icon, with a fallback name tried when the first is missing.
  static QIcon Get(const QString& name, const QString& fallback = QString());
};

}  // namespace browser
