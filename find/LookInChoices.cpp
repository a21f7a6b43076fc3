#include "find/LookInChoices.h"

#include "platform/NativePath.h"

namespace find {

namespace {

// The root's name is no folder; everything else compares as a folder.
QString Key(const QString& item, const QString& root) {
  const QString t = item.trimmed();
  return t == root ? t : platform::WithSeparator(t);
}

}  // namespace

QStringList LookInChoices(const QString& root, const QString& current, const QStringList& volumes,
                          const QStringList& recent, int maxRecent) {
  QStringList out, keys;
  auto add = [&](const QString& item) {
    if (item.trimmed().isEmpty()) return false;
    const QString key = Key(item, root);
    if (keys.contains(key)) return false;
    keys.append(key);
    out.append(key == root ? root : key);
    return true;
  };
  add(root);
  add(current);
  for (const QString& v : volumes) add(v);
  int taken = 0;
  for (const QString& r : recent) {
    if (taken >= maxRecent) break;
    if (add(r)) ++taken;
  }
  return out;
}

void RememberLocation(QStringList* recent, const QString& location, int max) {
  const QString t = location.trimmed();
  if (t.isEmpty()) return;
  recent->removeAll(t);
  recent->prepend(t);
  while (recent->size() > max) recent->removeLast();
}

}  // namespace find
