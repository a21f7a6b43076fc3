#include "browser/InlineRename.h"

#include <cerrno>

#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace browser {

QString InlineRename(const QString& path, const QString& newName) {
  // A name, not a path: a separator would move the entry elsewhere.
  if (newName.isEmpty() || newName == u"." || newName == u".." || newName.contains(platform::kSeparator) ||
      newName.contains(QChar(0)))
    return QStringLiteral("\"%1\" is not a valid name.").arg(platform::DisplayText(newName));
  QString entry = path;
  while (entry.size() > 1 && entry.endsWith(platform::kSeparator)) entry.chop(1);
  const qsizetype cut = entry.lastIndexOf(platform::kSeparator);
  if (cut < 0 || cut + 1 == entry.size()) return QStringLiteral("Cannot rename %1.").arg(platform::DisplayText(path));
  const QString target = entry.left(cut + 1) + newName;
  const int error = platform::RenameNoReplace(entry, target);
  if (error == 0) return QString();
  if (error == EEXIST || error == ENOTEMPTY)
    return QStringLiteral("Cannot rename %1: \"%2\" already exists.")
        .arg(platform::DisplayText(entry.mid(cut + 1)), platform::DisplayText(newName));
  return QStringLiteral("Cannot rename %1: %2.").arg(platform::DisplayText(entry.mid(cut + 1)), platform::ErrorText(error));
}

}  // namespace browser
