#pragma once
#include <QString>
#include <QStringList>

namespace browser {

// What the folder tree needs of the disk: the subfolders of one folder, in
// the tree's order (without regard to case, then by code order), and whether
// a folder has any. Linked folders are left out, as every walk leaves them
// out, so the tree can never loop.
class SubfolderReader {
 public:
  static QStringList List(const QString& folder);
  static bool HasAny(const QString& folder);
  // Whether the path names a folder (following links, unlike List).
  static bool IsFolder(const QString& path);
  // The order of the tree's children.
  static bool Before(const QString& a, const QString& b);
};

}  // namespace browser
