#include "browser/IconTheme.h"

#include <QHash>
#include <QStringList>

namespace browser {

void IconTheme::Setup() {
  static bool done = false;
  if (done) return;
  done = true;
  QStringList paths = QIcon::themeSearchPaths();
  for (const QString& p : {QStringLiteral("/usr/share/icons"), QStringLiteral("/usr/local/share/icons")})
    if (!paths.contains(p)) paths.append(p);
  QIcon::setThemeSearchPaths(paths);
  QIcon::setThemeName(QStringLiteral("Adwaita"));
  QIcon::setFallbackThemeName(QStringLiteral("hicolor"));
}

QIcon IconTheme::Get(const QString& name, const QString& fallback) {
  Setup();
  static QHash<QString, QIcon> cache;
  const QString key = name + u'|' + fallback;
  auto it = cache.constFind(key);
  if (it != cache.constEnd()) return *it;
  QIcon icon = QIcon::fromTheme(name);
  if (icon.isNull() && !fallback.isEmpty()) icon = QIcon::fromTheme(fallback);
  cache.insert(key, icon);
  return icon;
}

}  // namespace browser
