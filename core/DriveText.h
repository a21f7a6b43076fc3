#pragma once
#include <QString>

namespace core {

// "Local Disk", "Removable Disk", ...; a floppy takes the first three
// characters of its display name before "Inch Floppy Disk".
QString DriveTypeName(int driveType, bool floppy, const QString& displayName);
// "1A2B-03C4".
QString VolumeSerialText(quint32 serial);
// " (/home) 1,234.56MB used, 789.00MB free (39%)"; empty when the space cannot be asked.
QString DriveSpaceText(const QString& path);

}  // namespace core
