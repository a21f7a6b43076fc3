#include "core/SettingsLocation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace core {

QString UserSettingsFilePath() {
  QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
  if (base.isEmpty() || !QDir::isAbsolutePath(base)) base = QDir::homePath() + QStringLiteral("/.config");
  return QDir::cleanPath(base) + QStringLiteral("/quorvane/") + QLatin1String(kSettingsFileName);
}

QString SettingsFilePath(const QString& iniOverride, const QString& programFolder) {
  if (!iniOverride.isEmpty()) return QFileInfo(iniOverride).absoluteFilePath();
  QString folder = programFolder;
  if (folder.isEmpty() && QCoreApplication::instance()) folder = QCoreApplication::applicationDirPath();
  if (!folder.isEmpty()) {
    const QString beside = QDir(folder).absoluteFilePath(QLatin1String(kSettingsFileName));
    const QFileInfo dir(folder);
    if (QFileInfo::exists(beside) || (dir.isDir() && dir.isWritable())) return beside;
  }
  return UserSettingsFilePath();
}

}  // namespace core
