#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

#include "platform/DirEnumerator.h"
#include "platform/FileTime.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"
#include "platform/Volumes.h"
#include "tests/TestSupport.h"

using namespace platform;

class FileSystemTest : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;

 private Q_SLOTS:
  void attributes_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("mode");
    QTest::addColumn<quint32>("expected");
    QTest::newRow("plain file") << "plain.txt" << "file" << 0644 << quint32(kAttrArchive);
    QTest::newRow("read-only file") << "ro.txt" << "file" << 0444 << quint32(kAttrArchive | kAttrReadOnly);
    QTest::newRow("dot file") << ".profile" << "file" << 0644 << quint32(kAttrArchive | kAttrHidden);
    QTest::newRow("folder") << "sub" << "folder" << 0755 << quint32(kAttrDirectory);
    QTest::newRow("read-only dot folder") << ".cfg" << "folder" << 0555
                                          << quint32(kAttrDirectory | kAttrHidden | kAttrReadOnly);
    QTest::newRow("fifo") << "pipe" << "fifo" << 0644 << quint32(kAttrSystem);
  }

  void attributes() {
    QFETCH(QString, name);
    QFETCH(QString, kind);
    QFETCH(int, mode);
    QFETCH(quint32, expected);
    const QString path = dir_.filePath(QStringLiteral("attr/") + name);
    testsupport::MakeFolder(dir_.filePath(QStringLiteral("attr")));
    const QByteArray native = ToNative(path);
    if (kind == u"file") QVERIFY(testsupport::MakeFile(path, "x"));
    if (kind == u"folder") QVERIFY(testsupport::MakeFolder(path));
    if (kind == u"fifo") QCOMPARE(mkfifo(native.constData(), 0644), 0);
    QCOMPARE(chmod(native.constData(), mode_t(mode)), 0);
    DirEntry e;
    QVERIFY(StatPath(path, &e));
    QCOMPARE(e.attributes, expected);
    QCOMPARE(e.name, name);
  }

  void fileTimeConversions_data() {
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<qint64>("nanos");
    QTest::addColumn<qint64>("fileTime");
    QTest::newRow("unix epoch") << qint64(0) << qint64(0) << qint64(116444736000000000);
    QTest::newRow("1601 epoch") << qint64(-11644473600) << qint64(0) << qint64(0);
    QTest::newRow("2001-09-09") << qint64(1000000000) << qint64(123456700) << qint64(126444736001234567);
    QTest::newRow("before 1970") << qint64(-1) << qint64(999999900) << qint64(116444735999999999);
  }

  void fileTimeConversions() {
    QFETCH(qint64, seconds);
    QFETCH(qint64, nanos);
    QFETCH(qint64, fileTime);
    QCOMPARE(FileTimeFromUnix(seconds, nanos), fileTime);
    qint64 s = 0, n = 0;
    FileTimeToUnix(fileTime, &s, &n);
    QCOMPARE(s, seconds);
    QCOMPARE(n, nanos);
  }

  void fileTimesRoundTrip() {
    const QString path = dir_.filePath(QStringLiteral("times.txt"));
    QVERIFY(testsupport::MakeFile(path, "t"));
    const qint64 access = FileTimeFromUnix(946684800, 0);       // 2000-01-01
    const qint64 write = FileTimeFromUnix(1234567890, 500000000);
    QVERIFY(SetFileTimes(path, access, write));
    FileTimes t;
    QVERIFY(GetFileTimes(path, &t));
    QCOMPARE(t.lastAccess, access);
    QCOMPARE(t.lastWrite, write);
    QVERIFY(SetFileTimes(path, 0, FileTimeFromUnix(1300000000, 0)));  // zero keeps the access time
    QVERIFY(GetFileTimes(path, &t));
    QCOMPARE(t.lastAccess, access);
  }

  void birthTimes() {
    QCOMPARE(BirthFileTime(false, 1000, 0), qint64(0));        // not kept
    QCOMPARE(BirthFileTime(true, 0, 0), qint64(0));            // the epoch stands for "not recorded"
    QCOMPARE(BirthFileTime(true, 0, 100), kUnixEpochTicks + 1);
    QCOMPARE(BirthFileTime(true, 1000, 0), FileTimeFromUnix(1000, 0));
  }

  void enumeratesMatchesInFileSystemOrder() {
    const QString folder = dir_.filePath(QStringLiteral("enum/"));
    for (const char* n : {"a.txt", "B.TXT", "c.doc", "d", "e.txt.bak"}) testsupport::MakeFile(folder + QLatin1String(n), "x");
    FolderReader reader(folder);
    QStringList order;
    for (qsizetype i = 0; i < reader.count(); ++i) order << reader.name(i);

    DirEnumerator e(folder, u"*.txt");
    QVERIFY(e.isValid());
    QStringList found;
    DirEntry entry;
    while (e.next(&entry)) found << entry.name;
    QStringList expected;
    for (const QString& n : order)
      if (n == u"a.txt" || n == u"B.TXT") expected << n;
    QCOMPARE(found, expected);

    DirEnumerator all(folder, u"*.*");
    int count = 0;
    while (all.next(&entry)) ++count;
    QCOMPARE(count, 7);  // five files plus "." and ".."
    // A missing folder and a file list nothing.
    for (const char* bad : {"does-not-exist/", "enum/a.txt"}) {
      DirEnumerator none(dir_.filePath(QString::fromLatin1(bad)), u"*.*");
      QVERIFY(!none.isValid() && !none.next(&entry));
    }
  }

  // A reader that keeps only some names: the same entries in the same order,
  // a name left empty only where it matches nothing and cannot be a folder.
  void keepsMatchingNamesAndFolders() {
    const QString folder = dir_.filePath(QStringLiteral("keep/"));
    for (const char* n : {"a.txt", "B.TXT", "c.doc", "sub.txt.d/x", "plain/y", "\xC3\xA9t\xC3\xA9.doc"})
      testsupport::MakeFile(folder + QString::fromUtf8(n), "x");
    const FolderReader full(folder);
    for (const char* pattern : {"*.txt", "*", "zz"}) {
      const std::vector<WildcardPattern> keep{WildcardPattern(QString::fromLatin1(pattern))};
      const FolderReader some(folder, &keep);
      QCOMPARE(some.count(), full.count());
      QStringList left;
      for (qsizetype i = 0; i < full.count(); ++i) {
        if (some.name(i).isEmpty()) left << full.name(i);
        else QCOMPARE(some.name(i), full.name(i));
      }
      left.sort();
      const QStringList expected = pattern == QByteArray("*") ? QStringList()
                                   : pattern == QByteArray("zz") ? QStringList{"B.TXT", "a.txt", "c.doc"}
                                                                 : QStringList{"c.doc"};
      QCOMPARE(left, expected);
    }
  }

  void invalidUtf8NameReachesItsFile() {
    const QByteArray folder = ToNative(dir_.filePath(QStringLiteral("bytes/")));
    testsupport::MakeFolder(FromNative(folder));
    const QByteArray raw = folder + QByteArray("caf\xE9.txt");
    FILE* f = fopen(raw.constData(), "w");
    QVERIFY(f);
    fputs("12345", f);
    fclose(f);
    DirEnumerator e(FromNative(folder), u"caf*.txt");
    DirEntry entry;
    QVERIFY(e.next(&entry));
    QCOMPARE(entry.size, quint64(5));
    DirEntry again;
    QVERIFY(StatPath(FromNative(folder) + entry.name, &again));
    QCOMPARE(again.size, quint64(5));
  }

  void linksShowTheirTarget() {
    const QString folder = dir_.filePath(QStringLiteral("links/"));
    testsupport::MakeFile(folder + QStringLiteral("target.bin"), QByteArray(10, 'x'));
    testsupport::MakeFolder(folder + QStringLiteral("realdir"));
    QVERIFY(symlink("target.bin", ToNative(folder + QStringLiteral("tolink")).constData()) == 0);
    QVERIFY(symlink("realdir", ToNative(folder + QStringLiteral("dirlink")).constData()) == 0);
    QVERIFY(symlink("nowhere", ToNative(folder + QStringLiteral("dangling")).constData()) == 0);
    FolderReader reader(folder);
    for (qsizetype i = 0; i < reader.count(); ++i) {
      DirEntry e;
      QVERIFY(reader.stat(i, &e));
      const QString& n = reader.name(i);
      if (n == u"tolink") QVERIFY(e.isLink && e.size == 10 && !e.isDirectory());
      if (n == u"dirlink") QVERIFY(e.isLink && e.isDirectory() && !reader.isWalkableFolder(i));
      if (n == u"realdir") QVERIFY(!e.isLink && reader.isWalkableFolder(i));
      if (n == u"dangling") QVERIFY(e.isLink && !e.isDirectory());
    }
  }

  // The drive type of a mount (-1: a pseudo file system, left out).
  void driveTypes_data() {
    QTest::addColumn<QString>("fs");
    QTest::addColumn<QString>("mountPoint");
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("expected");
    QTest::newRow("ext4") << "ext4" << "/" << 0 << int(kDriveFixed);
    QTest::newRow("nfs") << "nfs4" << "/n" << 0 << int(kDriveRemote);
    QTest::newRow("cifs") << "cifs" << "/n" << 0 << int(kDriveRemote);
    QTest::newRow("sshfs") << "fuse.sshfs" << "/n" << 0 << int(kDriveRemote);
    QTest::newRow("iso9660") << "iso9660" << "/cd" << 0 << int(kDriveCdRom);
    QTest::newRow("sr device") << "vfat" << "/cd" << 11 << int(kDriveCdRom);
    QTest::newRow("tmp") << "tmpfs" << "/tmp" << 0 << int(kDriveRamDisk);
    QTest::newRow("floppy") << "vfat" << "/f" << 2 << int(kDriveRemovable);
    QTest::newRow("media under run") << "vfat" << "/run/media/u/STICK" << 0 << int(kDriveFixed);
    QTest::newRow("proc") << "proc" << "/proc" << 0 << -1;
    QTest::newRow("cgroup") << "cgroup2" << "/sys/fs/cgroup" << 0 << -1;
    QTest::newRow("run tmpfs") << "tmpfs" << "/run/lock" << 0 << -1;
  }
  void driveTypes() {
    QFETCH(QString, fs);
    QFETCH(QString, mountPoint);
    QFETCH(int, major);
    QFETCH(int, expected);
    QCOMPARE(IsPseudoMount(fs, mountPoint), expected < 0);
    if (expected >= 0) QCOMPARE(DriveTypeFor(fs, unsigned(major), 0), expected);
  }

  void volumesIncludeTheRoot() {
    const std::vector<Volume> volumes = MountedVolumes();
    bool root = false;
    for (const Volume& v : volumes) {
      QVERIFY(v.root.endsWith(u'/'));
      root = root || v.root == u"/";
    }
    QVERIFY(root);
    double total = 0, free = 0;
    QVERIFY(GetDiskSpace(QStringLiteral("/"), &total, &free));
    QVERIFY(total > 0 && free <= total);
    QVERIFY(!GetDiskSpace(dir_.filePath(QStringLiteral("missing/")), &total, &free));
    QCOMPARE(MountPointOf(QStringLiteral("/")), QStringLiteral("/"));
  }
};

QTEST_GUILESS_MAIN(FileSystemTest)
#include "FileSystemTest.moc"
