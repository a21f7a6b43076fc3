#include "fileops/Trash.h"

#include <QFile>

#include "platform/FileCopier.h"
#include "platform/SafeRename.h"

namespace fileops {

bool Trash::MoveToTrash(const QString& path, QString* error) {
  if (platform::FileCopier::Stat(path).kind == platform::NodeInfo::kMissing) {
    *error = platform::ErrorText(ENOENT);
    return false;
  }
  QFile file(path);
  if (file.moveToTrash()) return true;
  *error = file.errorString().isEmpty() ? QStringLiteral("There is no trash on this drive.") : file.errorString();
  return false;
}

bool Trash::DeleteForGood(const QString& path, QString* error) {
  const int code = platform::FileCopier::RemoveTree(path);
  if (code == 0) return true;
  *error = platform::ErrorText(code);
  return false;
}

}  // namespace fileops
