#include "platform/Volumes.h"

#include <sys/statvfs.h>

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include "platform/NativePath.h"

namespace platform {

namespace {

// mountinfo escapes blanks and the like as \ooo.
QString Unescape(const QByteArray& field) {
  QByteArray out;
  out.reserve(field.size());
  for (qsizetype i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size()) {
      bool ok = false;
      const int v = field.mid(i + 1, 3).toInt(&ok, 8);
      if (ok) {
        out.append(char(v));
        i += 3;
        continue;
      }
    }
    out.append(field[i]);
  }
  return FromNative(out);
}

bool SysfsFlag(const QString& file) {
  QFile f(file);
  return f.open(QIODevice::ReadOnly) && f.read(1) == "1";
}

bool IsRemovableDevice(unsigned major, unsigned minor) {
  const QString base = QStringLiteral("/sys/dev/block/%1:%2").arg(major).arg(minor);
  const QString real = QFileInfo(base).canonicalFilePath();
  if (real.isEmpty()) return false;
  // A partition's flag sits on its disk, one folder up.
  return SysfsFlag(real + QStringLiteral("/removable")) || SysfsFlag(real + QStringLiteral("/../removable"));
}

}  // namespace

bool IsPseudoMount(const QString& fs, const QString& mountPoint) {
  static const QStringList pseudo = {
      "proc",   "sysfs",    "cgroup",      "cgroup2",   "devpts",     "mqueue",      "debugfs", "tracefs",
      "securityfs", "pstore", "bpf",       "autofs",    "hugetlbfs",  "configfs",    "fusectl", "binfmt_misc",
      "devtmpfs", "nsfs",     "efivarfs",  "rpc_pipefs", "selinuxfs", "fuse.gvfsd-fuse", "fuse.portal", "squashfs"};
  if (pseudo.contains(fs)) return true;
  for (const char* sys : {"/proc", "/sys", "/dev", "/run"}) {
    const QString s = QString::fromLatin1(sys);
    if ((mountPoint == s || mountPoint.startsWith(s + u'/')) && !mountPoint.startsWith(QStringLiteral("/run/media/")))
      return true;
  }
  return false;
}

int DriveTypeFor(const QString& fs, unsigned major, unsigned minor) {
  static const QStringList remote = {"nfs", "nfs4", "cifs", "smb3", "smbfs", "fuse.sshfs", "9p", "afs", "ceph"};
  if (remote.contains(fs)) return kDriveRemote;
  if (fs == u"tmpfs" || fs == u"ramfs") return kDriveRamDisk;
  if (fs == u"iso9660" || fs == u"udf" || major == 11) return kDriveCdRom;
  if (major == 2) return kDriveRemovable;  // floppy
  if (major != 0 && IsRemovableDevice(major, minor)) return kDriveRemovable;
  return kDriveFixed;
}

std::vector<Volume> MountedVolumes() {
  std::vector<Volume> out;
  QFile f(QStringLiteral("/proc/self/mountinfo"));
  if (!f.open(QIODevice::ReadOnly)) return out;
  const QList<QByteArray> lines = f.readAll().split('\n');
  for (const QByteArray& line : lines) {
    const QList<QByteArray> fields = line.split(' ');
    const qsizetype dash = fields.indexOf("-");
    if (fields.size() < 10 || dash < 6 || dash + 2 >= fields.size()) continue;
    Volume v;
    v.root = WithSeparator(Unescape(fields[4]));
    v.fileSystem = QString::fromUtf8(fields[dash + 1]);
    v.device = Unescape(fields[dash + 2]);
    if (IsPseudoMount(v.fileSystem, v.root.size() > 1 ? v.root.chopped(1) : v.root)) continue;
    const QList<QByteArray> dev = fields[2].split(':');
    const unsigned major = dev.value(0).toUInt(), minor = dev.value(1).toUInt();
    v.driveType = DriveTypeFor(v.fileSystem, major, minor);
    v.floppy = major == 2;
    struct statvfs st {};
    if (statvfs(ToNative(v.root).constData(), &st) == 0) {
      v.totalBytes = double(st.f_blocks) * double(st.f_frsize);
      v.freeBytes = double(st.f_bavail) * double(st.f_frsize);
      v.clusterSize = qint64(st.f_frsize);
      v.serial = quint32(st.f_fsid);
    }
    out.push_back(v);
  }
  return out;
}

bool GetDiskSpace(const QString& root, double* total, double* free) {
  struct statvfs st {};
  if (statvfs(ToNative(root).constData(), &st) != 0) return false;
  *total = double(st.f_blocks) * double(st.f_frsize);
  *free = double(st.f_bavail) * double(st.f_frsize);
  return true;
}

qint64 ClusterSizeOf(const QString& path) {
  struct statvfs st {};
  if (statvfs(ToNative(path).constData(), &st) != 0) return 0;
  return qint64(st.f_frsize);
}

QString MountPointOf(const QString& path) {
  QFile f(QStringLiteral("/proc/self/mountinfo"));
  QString best = QStringLiteral("/");
  if (!f.open(QIODevice::ReadOnly)) return best;
  const QString target = WithSeparator(path);
  const QList<QByteArray> lines = f.readAll().split('\n');
  for (const QByteArray& line : lines) {
    const QList<QByteArray> fields = line.split(' ');
    if (fields.size() < 5) continue;
    const QString mp = WithSeparator(Unescape(fields[4]));
    if (target.startsWith(mp) && mp.size() > best.size()) best = mp;
  }
  return best;
}

}  // namespace platform
