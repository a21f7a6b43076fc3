#pragma once
#include <QString>

namespace fileops {

// Deleting: to the desktop's trash, or for good when the user asked so.
class Trash {
 public:
  // Moves a file or folder to the freedesktop trash; false with the reason
  // when this mount has none (the caller then asks before deleting for good).
  static bool MoveToTrash(const QString& path, QString* error);
  // Removes a file, link or whole folder for good; links are never followed.
  static bool DeleteForGood(const QString& path, QString* error);
};

}  // namespace fileops
