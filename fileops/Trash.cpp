#include "fileops/Trash.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include "platform/FileCopier.h"
#include "platform/SafeRename.h"

namespace fileops {

bool Trash::MoveToTrash(const QString& path, QString* error) {
  if (platform::FileCopier::Stat(path).kind == platform::NodeInfo::kMissing) {
    *error = platform::ErrorText(ENOENT);
    return false;
  }
  // The home trash is made when first needed; the trash call itself does not
  // make a missing data folder and then files the entry beside it instead.
  const QString dataHome = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  if (!dataHome.isEmpty()) QDir().mkpath(dataHome + QStringLiteral("/Trash"));
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
