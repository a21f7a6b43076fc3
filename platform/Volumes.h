#pragma once
#include <QString>
#include <vector>

namespace platform {

// Drive types with the numbering of GetDriveType.
enum DriveType : int {
  kDriveUnknown = 0,
  kDriveNoRoot = 1,
  kDriveRemovable = 2,
  kDriveFixed = 3,
  kDriveRemote = 4,
  kDriveCdRom = 5,
  kDriveRamDisk = 6,
};

// A mounted file system, standing in for a drive.
struct Volume {
  QString root;        // mount point, ending in "/"
  QString device;      // mount source
  QString fileSystem;  // "ext4", "vfat", ...
  int driveType = kDriveUnknown;
  bool floppy = false;
  double totalBytes = 0;
  double freeBytes = 0;  // available to this user
  qint64 clusterSize = 0;
  quint32 serial = 0;
};

// Real file systems from the mount table, in mount order; pseudo file systems
// and the system's runtime mounts are left out.
std::vector<Volume> MountedVolumes();

// Classification of one mount (exposed for tests).
int DriveTypeFor(const QString& fileSystem, unsigned major, unsigned minor);
bool IsPseudoMount(const QString& fileSystem, const QString& mountPoint);

// Total and free bytes of the file system holding `root`; false when it cannot be asked.
bool GetDiskSpace(const QString& root, double* total, double* free);
// Cluster size (fragment size) of the file system holding `path`, 0 if unknown.
qint64 ClusterSizeOf(const QString& path);
// The mount point (ending in "/") of the file system that holds `path`.
QString MountPointOf(const QString& path);

}  // namespace platform
