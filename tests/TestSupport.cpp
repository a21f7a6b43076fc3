#include "tests/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/FormatLocale.h"
#include "platform/FileTime.h"

namespace testsupport {

void PinLocale(const char* name) {
  const QLocale locale{QString::fromLatin1(name)};
  QLocale::setDefault(locale);
  core::SetFormatLocale(locale);
}

bool MakeFolder(const QString& path) { return QDir().mkpath(path); }

bool MakeFile(const QString& path, const QByteArray& content) {
  MakeFolder(QFileInfo(path).absolutePath());
  QFile f(path);
  if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
  return f.write(content) == content.size();
}

bool MakeSizedFile(const QString& path, qint64 size) {
  MakeFolder(QFileInfo(path).absolutePath());
  QFile f(path);
  if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
  return f.resize(size);
}

bool SetTimes(const QString& path, const QDateTime& access, const QDateTime& write) {
  auto ft = [](const QDateTime& t) {
    return platform::kUnixEpochTicks + t.toMSecsSinceEpoch() * 10'000;
  };
  return platform::SetFileTimes(path, ft(access), ft(write));
}

}  // namespace testsupport
