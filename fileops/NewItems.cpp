#include "fileops/NewItems.h"

#include <QFile>
#include <cerrno>

#include "fileops/FileOperation.h"
#include "platform/FileCopier.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

QString NewItems::FreeName(const QString& folder, const QString& name) {
  if (platform::FileCopier::Stat(platform::WithSeparator(folder) + name).kind == platform::NodeInfo::kMissing)
    return name;
  return FileOperation::KeepBothName(folder, name);
}

QString NewItems::CreateFolder(const QString& folder, QString* error) {
  // A name taken between the look and the mkdir just moves on to the next.
  for (int attempt = 0; attempt < 100; ++attempt) {
    const QString path = platform::WithSeparator(folder) + FreeName(folder, QString::fromLatin1(kFolderName));
    const int code = platform::FileCopier::MakeFolder(path);
    if (code == 0) return path;
    if (code != EEXIST) {
      *error = platform::ErrorText(code);
      return QString();
    }
  }
  *error = platform::ErrorText(EEXIST);
  return QString();
}

QString NewItems::CreateTextFile(const QString& folder, QString* error) {
  for (int attempt = 0; attempt < 100; ++attempt) {
    const QString path = platform::WithSeparator(folder) + FreeName(folder, QString::fromLatin1(kTextFileName));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) return path;
    if (platform::FileCopier::Stat(path).kind == platform::NodeInfo::kMissing) {
      *error = file.errorString();
      return QString();
    }
  }
  *error = platform::ErrorText(EEXIST);
  return QString();
}

}  // namespace fileops
