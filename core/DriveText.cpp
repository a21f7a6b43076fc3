#include "core/DriveText.h"

#include "core/NumberFormat.h"
#include "core/Rounding.h"
#include "platform/Volumes.h"

namespace core {

QString DriveTypeName(int driveType, bool floppy, const QString& displayName) {
  switch (driveType) {
    case platform::kDriveRemovable:
      return floppy ? displayName.left(3) + QStringLiteral("Inch Floppy Disk") : QStringLiteral("Removable Disk");
    case platform::kDriveFixed: return QStringLiteral("Local Disk");
    case platform::kDriveRemote: return QStringLiteral("Network Disk");
    case platform::kDriveCdRom: return QStringLiteral("CD-ROM Disk");
    case platform::kDriveRamDisk: return QStringLiteral("RAM Disk");
    default: return QString();
  }
}

QString VolumeSerialText(quint32 serial) {
  const QString hex = QStringLiteral("%1").arg(serial, 8, 16, QLatin1Char('0')).toUpper();
  return hex.left(4) + u'-' + hex.mid(4);
}

QString DriveSpaceText(const QString& path) {
  const QString root = platform::MountPointOf(path);
  double total = 0, free = 0;
  if (!platform::GetDiskSpace(root, &total, &free) || total <= 0) return QString();
  const std::optional<int16_t> percent = ToInt16(free / total * 100);
  QString name = root;
  if (name.size() > 1 && name.endsWith(u'/')) name.chop(1);
  return QStringLiteral(" (") + name + QStringLiteral(") ") + LocaleNumber((total - free) / 1048576) +
         QStringLiteral("MB used, ") + LocaleNumber(free / 1048576) + QStringLiteral("MB free (") +
         QString::number(percent.value_or(0)) + QStringLiteral("%)");
}

}  // namespace core
