#include "browser/SubfolderReader.h"

#include <algorithm>

#include "platform/FolderReader.h"

namespace browser {

namespace {
bool IsDotName(const QString& n) { return n == QStringLiteral(".") || n == QStringLiteral(".."); }
}  // namespace

bool SubfolderReader::Before(const QString& a, const QString& b) {
  const int c = a.compare(b, Qt::CaseInsensitive);
  return c != 0 ? c < 0 : a < b;
}

QStringList SubfolderReader::List(const QString& folder) {
  QStringList out;
  platform::FolderReader reader(folder);
  if (!reader.isOpen()) return out;
  for (qsizetype i = 0; i < reader.count(); ++i) {
    const QString& n = reader.name(i);
    if (!IsDotName(n) && reader.isWalkableFolder(i)) out.append(n);
  }
  std::sort(out.begin(), out.end(), &SubfolderReader::Before);
  return out;
}

bool SubfolderReader::IsFolder(const QString& path) {
  platform::DirEntry entry;
  return platform::StatPath(path, &entry) && entry.isDirectory();
}

bool SubfolderReader::HasAny(const QString& folder) {
  platform::FolderReader reader(folder);
  if (!reader.isOpen()) return false;
  for (qsizetype i = 0; i < reader.count(); ++i)
    if (!IsDotName(reader.name(i)) && reader.isWalkableFolder(i)) return true;
  return false;
}

}  // namespace browser
