#include "browser/InlineRename.h"

#include "fileops/RenameSpecial.h"
#include "platform/NativePath.h"

namespace browser {

QString InlineRename(const QString& path, const QString& newName) {
  QString entry = path;
  while (entry.size() > 1 && entry.endsWith(platform::kSeparator)) entry.chop(1);
  const qsizetype cut = entry.lastIndexOf(platform::kSeparator);
  if (cut < 0 || cut + 1 == entry.size()) return QStringLiteral("Cannot rename %1.").arg(platform::DisplayText(path));
  const QString oldName = entry.mid(cut + 1);
  // The same checks and reasons as a batch rename: never onto an existing entry.
  const QString reason = fileops::RenameSpecial::RenameEntry(entry.left(cut), oldName, newName);
  if (reason.isEmpty()) return QString();
  return QStringLiteral("Cannot rename %1: %2").arg(platform::DisplayText(oldName), reason);
}

}  // namespace browser
