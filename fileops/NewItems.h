#pragma once
#include <QString>

namespace fileops {

// New folders and text files in a folder, under the first free name of the
// series "New Folder", "New Folder (2)", ... and "New Text File.txt", ...
class NewItems {
 public:
  static constexpr const char* kFolderName = "New Folder";
  static constexpr const char* kTextFileName = "New Text File.txt";

  static QString FreeName(const QString& folder, const QString& name);
  // Both return the new item's path, or empty with the reason in *error.
  static QString CreateFolder(const QString& folder, QString* error);
  static QString CreateTextFile(const QString& folder, QString* error);
};

}  // namespace fileops
