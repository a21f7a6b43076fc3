#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <QtTest>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "fileops/BackupJob.h"
#include "fileops/FileOperation.h"
#include "fileops/FolderStructure.h"
#include "fileops/NewItems.h"
#include "fileops/Trash.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"
#include "tests/TestSupport.h"

using namespace fileops;
using platform::FileCopier;
using platform::NodeInfo;

namespace {

// Every entry under a folder: relative path -> kind letter + content (file
// bytes or link text). What the fault tests compare before and after.
using Snapshot = QMap<QString, QByteArray>;

void Take(const QString& root, const QString& rel, Snapshot* out) {
  const QString path = rel.isEmpty() ? root : root + u'/' + rel;
  const NodeInfo info = FileCopier::Stat(path);
  const QByteArray native = platform::ToNative(path);
  switch (info.kind) {
    case NodeInfo::kFile: {
      QByteArray bytes;
      const int fd = ::open(native.constData(), O_RDONLY);
      char buf[65536];
      ssize_t n;
      while (fd >= 0 && (n = ::read(fd, buf, sizeof buf)) > 0) bytes.append(buf, n);
      if (fd >= 0) ::close(fd);
      (*out)[rel] = "F" + bytes;
      break;
    }
    case NodeInfo::kLink: {
      char buf[4096];
      const ssize_t n = ::readlink(native.constData(), buf, sizeof buf);
      (*out)[rel] = "L" + QByteArray(buf, n > 0 ? n : 0);
      break;
    }
    case NodeInfo::kFolder: {
      if (!rel.isEmpty()) (*out)[rel] = "D";
      QStringList names;
      FileCopier::ListNames(path, &names);
      for (const QString& n : names) Take(root, rel.isEmpty() ? n : rel + u'/' + n, out);
      break;
    }
    case NodeInfo::kMissing: break;
    default: (*out)[rel] = "S"; break;
  }
}

Snapshot Shot(const QString& root) {
  Snapshot s;
  Take(root, QString(), &s);
  return s;
}

bool Write(const QString& path, const QByteArray& bytes) {
  QDir().mkpath(path.left(path.lastIndexOf(u'/')));
  const int fd = ::open(platform::ToNative(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (fd < 0) return false;
  const bool ok = ::write(fd, bytes.constData(), size_t(bytes.size())) == bytes.size();
  ::close(fd);
  return ok;
}

QByteArray Filler(qint64 size, char seed) {
  QByteArray b(size, Qt::Uninitialized);
  for (qint64 i = 0; i < size; ++i) b[i] = char(seed + i * 31 % 251);
  return b;
}

struct Recorder : FileOpSink {
  ConflictAnswer answer;
  int asked = 0;
  QStringList failed;
  ConflictAnswer askConflict(const QString&, const QString&) override {
    ++asked;
    return answer;
  }
  void item(ItemOutcome o, const QString& source, const QString&, const QString& detail) override {
    if (o == ItemOutcome::kFailed) failed << source + QStringLiteral(": ") + detail;
  }
};

// Mounts a small tmpfs (root only); empty when this machine does not allow it.
QString MountTmpfs(const QString& at, const char* options, unsigned long flags = 0) {
  QDir().mkpath(at);
  if (::mount("tmpfs", platform::ToNative(at).constData(), "tmpfs", flags, options) != 0) return QString();
  return at;
}

// Takes a test's mount away when the test ends, however it ends.
struct Unmount {
  QString at;
  ~Unmount() {
    if (!at.isEmpty()) ::umount2(platform::ToNative(at).constData(), MNT_DETACH);
  }
};

}  // namespace

class TestFileOperation : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void conflicts_data() {
    QTest::addColumn<int>("policy");
    QTest::addColumn<int>("answer");  // for kAsk
    QTest::addColumn<bool>("all");
    QTest::addColumn<QByteArray>("expectA");  // a.txt's content after
    QTest::addColumn<QStringList>("names");   // target folder's names after
    QTest::addColumn<int>("asked");
    const QStringList two{"a.txt", "b.txt"};
    QTest::newRow("default never overwrites") << int(ConflictPolicy::kAsk) << int(ConflictChoice::kSkip) << false
                                              << QByteArray("old") << two << 2;
    QTest::newRow("skip") << int(ConflictPolicy::kSkip) << 0 << false << QByteArray("old") << two << 0;
    QTest::newRow("overwrite") << int(ConflictPolicy::kOverwrite) << 0 << false << QByteArray("new") << two << 0;
    QTest::newRow("keep both") << int(ConflictPolicy::kKeepBoth) << 0 << false << QByteArray("old")
                               << QStringList{"a (2).txt", "a.txt", "b (2).txt", "b.txt"} << 0;
    QTest::newRow("overwrite, apply to all") << int(ConflictPolicy::kAsk) << int(ConflictChoice::kOverwrite) << true
                                             << QByteArray("new") << two << 1;
  }

  void conflicts() {
    QFETCH(int, policy);
    QFETCH(int, answer);
    QFETCH(bool, all);
    QTemporaryDir dir;
    const QString src = dir.path() + "/src", dst = dir.path() + "/dst";
    QVERIFY(Write(src + "/a.txt", "new") && Write(src + "/b.txt", "new2"));
    QVERIFY(Write(dst + "/a.txt", "old") && Write(dst + "/b.txt", "old2"));
    Recorder sink;
    sink.answer = {ConflictChoice(answer), all};
    FileOpOptions options;
    options.onConflict = ConflictPolicy(policy);
    std::atomic<bool> abort{false};
    FileOperation op(&sink, nullptr, abort, options);
    const FileOpResult r = op.run({src + "/a.txt", src + "/b.txt"}, dst);
    QCOMPARE(r.failed, 0);
    QTEST(Shot(dst).value("a.txt").mid(1), "expectA");
    QStringList names;
    FileCopier::ListNames(dst, &names);
    names.sort();
    QTEST(names, "names");
    QTEST(sink.asked, "asked");
    QCOMPARE(Shot(src).value("a.txt"), QByteArray("Fnew"));
  }

  void faults_data() {
    QTest::addColumn<QString>("fault");
    QTest::addColumn<bool>("move");
    for (const char* f : {"plain tree", "invalid UTF-8 and 255-byte names", "symlink loop", "special files",
                          "changes while copied", "stop inside a large file", "disk full", "read-only target",
                          "unreadable source"})
      QTest::newRow(f) << QString::fromLatin1(f) << false;
    QTest::newRow("move within a file system") << "plain tree" << true;
    QTest::newRow("move across file systems, stopped after a file") << "stop between files" << true;
  }

  void faults() {
    QFETCH(QString, fault);
    QFETCH(bool, move);
    QTemporaryDir dir;
    QString root = dir.path();
    QString targetRoot = root;
    const bool root0 = ::geteuid() == 0;
    if (fault == u"disk full" || fault == u"read-only target" || fault.startsWith(u"stop between")) {
      if (!root0) QSKIP("needs a tmpfs mount, which needs root");
      const unsigned long flags = fault == u"read-only target" ? MS_RDONLY : 0;
      targetRoot = MountTmpfs(root + "/mnt", "size=256k", flags);
      if (targetRoot.isEmpty()) QSKIP("this machine does not allow a tmpfs mount");
    }
    const Unmount unmount{targetRoot == root ? QString() : targetRoot};

    const QString src = root + "/src";
    const QString dst = targetRoot + (fault == u"read-only target" ? "" : "/dst");
    QDir().mkpath(dst);
    QVERIFY(Write(src + "/one.txt", "one") && Write(src + "/sub/two.bin", Filler(5000, 2)));
    FileOpOptions options;
    options.move = move;
    options.blockSize = 64 * 1024;
    int yields = 0;
    std::atomic<bool> abort{false};
    std::function<void()> yield;
    int expectFailed = 0;
    if (fault.startsWith(u"invalid")) {
      QVERIFY(Write(src + "/" + platform::FromNative(QByteArray("bad\xff\xfe name")), "x"));
      QVERIFY(Write(src + "/" + QString(255, u'n'), "long"));
    } else if (fault == u"symlink loop") {
      QVERIFY(::symlink("..", platform::ToNative(src + "/sub/up").constData()) == 0);
      QVERIFY(::symlink("missing", platform::ToNative(src + "/dangling").constData()) == 0);
    } else if (fault == u"special files") {
      QVERIFY(::mkfifo(platform::ToNative(src + "/pipe").constData(), 0600) == 0);
      if (root0) QVERIFY(::mknod(platform::ToNative(src + "/null").constData(), S_IFCHR | 0600, makedev(1, 3)) == 0);
    } else if (fault == u"changes while copied") {
      QVERIFY(Write(src + "/grow.bin", Filler(300000, 5)));
      yield = [&] {
        // Appends to the file while its blocks are being copied.
        if (++yields == 9) {
          QFile f(src + "/grow.bin");
          QVERIFY(f.open(QIODevice::Append));
          f.write("more");
        }
      };
      expectFailed = 1;
    } else if (fault == u"stop inside a large file") {
      QVERIFY(Write(src + "/sub/big.bin", Filler(1000000, 7)));
      yield = [&] {
        if (++yields == 12) abort = true;
      };
    } else if (fault == u"disk full") {
      QVERIFY(Write(src + "/sub/huge.bin", Filler(600000, 9)));
      expectFailed = 1;
    } else if (fault == u"read-only target") {
      expectFailed = 1;  // the top folder cannot be made
    } else if (fault == u"unreadable source") {
      QVERIFY(Write(src + "/secret.txt", "secret"));
      QVERIFY(::chmod(platform::ToNative(src + "/secret.txt").constData(), 0) == 0);
      if (root0) {
        // Root reads everything: run as nobody, on folders nobody may enter.
        QVERIFY(::chmod(platform::ToNative(root).constData(), 0777) == 0);
        for (const QString& d : {src, src + "/sub", dst}) ::chmod(platform::ToNative(d).constData(), 0777);
      }
      expectFailed = 1;
    } else if (fault == u"stop between files") {
      QVERIFY(Write(src + "/sub/three.txt", "three"));
      yield = [&] {
        if (++yields == 5) abort = true;
      };
    }
    const Snapshot before = Shot(src);
    FileOpOptions o = options;
    o.onConflict = ConflictPolicy::kSkip;
    Recorder sink;
    FileOperation op(&sink, yield, abort, o);
    const bool dropRoot = fault == u"unreadable source" && root0;
    if (dropRoot) QVERIFY(::seteuid(65534) == 0);
    const FileOpResult r = op.run({src}, dst);
    if (dropRoot) QVERIFY(::seteuid(0) == 0);

    const Snapshot after = Shot(src);
    const Snapshot copied = Shot(dst + "/src");
    // Nothing half-written under a real name and no temporary left behind.
    for (auto it = copied.begin(); it != copied.end(); ++it) {
      QVERIFY2(!it.key().contains(u".quorvane-"), qPrintable(it.key()));
      const QByteArray want = before.value(it.key());
      if (it.value() != "D" && want.startsWith('F'))
        QVERIFY2(it.value() == want, qPrintable("target differs: " + it.key()));
    }
    if (!move) {
      if (fault == u"changes while copied") {
        QCOMPARE(after.value("grow.bin"), before.value("grow.bin") + "more");
        QVERIFY(!copied.contains("grow.bin"));
      } else {
        QCOMPARE(after, before);
      }
    } else {
      // Every item is in exactly one place, with its bytes.
      for (auto it = before.begin(); it != before.end(); ++it) {
        if (it.value() == "D") continue;
        const bool inSource = after.value(it.key()) == it.value();
        const bool inTarget = copied.value(it.key()) == it.value();
        QVERIFY2(inSource != inTarget, qPrintable(it.key()));
      }
    }
    QCOMPARE(int(r.failed), expectFailed);
    if (fault == u"plain tree" || fault.startsWith(u"invalid") || fault == u"symlink loop") QCOMPARE(copied, before);
    if (fault == u"special files") {
      QCOMPARE(copied.value("pipe"), QByteArray("S"));
      QVERIFY(!copied.contains("null"));
    }
    if (fault.startsWith(u"stop")) {
      QVERIFY(r.stopped);
      QVERIFY(r.status(move).contains(u"Stopped by the user"));
    }
    if (fault == u"disk full") QVERIFY(sink.failed.join(u'\n').contains(platform::ErrorText(ENOSPC)));
    if (fault == u"unreadable source") QVERIFY(sink.failed.value(0).contains(u"secret.txt"));
    // QTemporaryDir cannot remove names that are not UTF-8.
    FileCopier::RemoveTree(src);
    FileCopier::RemoveTree(dst + "/src");
  }

  // A large selection's kinds come from one read of its folder: they must
  // be what a look at each name gives.
  void kindsFromOneRead() {
    QTemporaryDir dir;
    const QString d = dir.path();
    QVERIFY(Write(d + "/file.txt", "x") && QDir().mkpath(d + "/sub"));
    QVERIFY(::symlink("file.txt", platform::ToNative(d + "/link").constData()) == 0);
    QVERIFY(::mkfifo(platform::ToNative(d + "/pipe").constData(), 0600) == 0);
    const QStringList names{"file.txt", "sub", "link", "pipe", "gone", "file.txt"};
    std::vector<QByteArray> natives;
    for (const QString& n : names) natives.push_back(platform::ToNative(n));
    std::vector<std::string_view> views;
    for (const QByteArray& n : natives) views.emplace_back(n.constData(), size_t(n.size()));
    std::vector<NodeInfo> infos;
    QVERIFY(FileCopier::KindsIn(d, views, &infos));
    QCOMPARE(infos.size(), size_t(names.size()));
    for (qsizetype i = 0; i < names.size(); ++i) {
      const NodeInfo whole = FileCopier::Stat(d + u'/' + names[i]);
      QCOMPARE(int(infos[size_t(i)].kind), int(whole.kind));
      QCOMPARE(infos[size_t(i)].device, whole.device);
    }
  }

  // A selection large enough to be looked at in one read of its folder.
  void largeSelectionMoves_data() {
    QTest::addColumn<bool>("across");
    QTest::newRow("within a file system") << false;
    QTest::newRow("across file systems") << true;
  }
  void largeSelectionMoves() {
    QFETCH(bool, across);
    QTemporaryDir dir;
    QString dst = dir.path() + "/dst";
    if (across) {
      if (::geteuid() != 0) QSKIP("needs a tmpfs mount, which needs root");
      dst = MountTmpfs(dst, "size=4m");
      if (dst.isEmpty()) QSKIP("this machine does not allow a tmpfs mount");
    }
    const Unmount unmount{across ? dst : QString()};
    QVERIFY(QDir().mkpath(dst));
    QStringList sources;
    for (int i = 0; i < 600; ++i) {
      sources << dir.path() + QStringLiteral("/src/f%1").arg(i);
      QVERIFY(Write(sources.back(), Filler(100 + i, i)));
    }
    Recorder sink;
    std::atomic<bool> abort{false};
    FileOpOptions options;
    options.move = true;
    const FileOpResult r = FileOperation(&sink, nullptr, abort, options).run(sources, dst);
    QCOMPARE(sink.failed, QStringList());
    QCOMPARE(r.moved, 600);
    for (int i = 0; i < 600; ++i) {
      QVERIFY(!QFile::exists(sources[i]));
      QFile f(dst + QStringLiteral("/f%1").arg(i));
      QVERIFY(f.open(QIODevice::ReadOnly));
      QCOMPARE(f.readAll(), Filler(100 + i, i));
    }
  }

  void refusals() {
    QTemporaryDir dir;
    const QString src = dir.path() + "/src";
    QVERIFY(Write(src + "/in/a.txt", "a"));
    QVERIFY(FileOperation::CheckRequest({src}, src + "/in", false).contains(u"into itself"));
    QVERIFY(FileOperation::CheckRequest({src}, src, true).contains(u"into itself"));
    QVERIFY(FileOperation::CheckRequest({src}, dir.path() + "/none", false).contains(u"does not exist"));
    QVERIFY(FileOperation::CheckRequest({src + "/in"}, dir.path(), false).isEmpty());
    // A copy into its own folder makes a second one beside it.
    std::atomic<bool> abort{false};
    FileOperation op(nullptr, nullptr, abort, {});
    QCOMPARE(op.run({src + "/in/a.txt"}, src + "/in").copied, 1);
    QCOMPARE(Shot(src + "/in").value("a (2).txt"), QByteArray("Fa"));
  }

  // Source folders are read ahead in the job's order; a folder the job leaves
  // out puts the two out of step, and every folder after it must still be
  // copied whole.
  void folderLeftOut_data() {
    QTest::addColumn<bool>("backup");
    QTest::newRow("copy, name taken by a file") << false;
    QTest::newRow("backup, name taken by a file") << true;
  }
  void folderLeftOut() {
    QFETCH(bool, backup);
    QTemporaryDir dir;
    const QString src = dir.path() + "/src", dst = dir.path() + "/dst";
    for (const char* f : {"a/1.txt", "a/in/2.txt", "b/3.txt", "b/deep/er/4.txt", "c/5.txt", "c/x/6.txt", "c/y/7.txt"})
      QVERIFY(Write(src + "/" + f, f));
    QVERIFY(Write(dst + "/a", "taken"));
    FileOpOptions o;
    o.onConflict = backup ? ConflictPolicy::kOverwrite : ConflictPolicy::kSkip;
    o.onlyNewer = backup;
    Recorder sink;
    std::atomic<bool> abort{false};
    FileOperation op(&sink, nullptr, abort, o);
    const FileOpResult r = op.run({src + "/a", src + "/b", src + "/c"}, dst);
    QCOMPARE(int(r.skipped + r.failed), 1);
    QCOMPARE(int(r.copied), 5);
    QCOMPARE(Shot(dst + "/b"), Shot(src + "/b"));
    QCOMPARE(Shot(dst + "/c"), Shot(src + "/c"));
    QCOMPARE(Shot(dst).value("a"), QByteArray("Ftaken"));
  }

  void backupLog_data() {
    QTest::addColumn<bool>("touchNewer");
    QTest::addColumn<bool>("stop");
    QTest::addColumn<QStringList>("lines");  // expected log lines after the header, source paths relative
    QTest::newRow("unchanged") << false << false
                               << QStringList{"Skipped\tsrc/a.txt\tNot newer.", "Skipped\tsrc/b.txt\tNot newer."};
    QTest::newRow("one newer") << true << false << QStringList{"Copied\tsrc/a.txt", "Skipped\tsrc/b.txt\tNot newer."};
    QTest::newRow("stopped") << true << true << QStringList{"*** Job terminated by user ***"};
  }

  void backupLog() {
    QFETCH(bool, touchNewer);
    QFETCH(bool, stop);
    QFETCH(QStringList, lines);
    QTemporaryDir dir;
    const QString src = dir.path() + "/src", dst = dir.path() + "/bk";
    QVERIFY(Write(src + "/a.txt", "a") && Write(src + "/b.txt", "b"));
    std::atomic<bool> abort{false};
    const QDateTime first(QDate(2024, 1, 2), QTime(3, 4, 5));
    BackupJob(nullptr, nullptr, abort).run({src}, dst, true, first);
    QVERIFY(QFile::exists(dir.path() + "/Backup 2024-01-02_03-04-05.log"));
    if (touchNewer) QCOMPARE(FileCopier::SetModifiedTime(src + "/a.txt", 4102444800LL * 1000000000), 0);
    if (touchNewer) QVERIFY(Write(src + "/a.txt", "A2"));
    if (touchNewer) QCOMPARE(FileCopier::SetModifiedTime(src + "/a.txt", 4102444800LL * 1000000000), 0);
    abort = stop;
    const auto r = BackupJob(nullptr, nullptr, abort).run({src}, dst, true, first);
    QCOMPARE(r.logPath, dir.path() + "/Backup 2024-01-02_03-04-05 (2).log");
    QFile log(r.logPath);
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(log.readAll()).replace(dir.path() + "/", QString());
    QStringList got = text.split(u'\n', Qt::SkipEmptyParts).mid(2);
    got.removeIf([](const QString& l) { return l.startsWith(u"Copied ") || l.startsWith(u"Copied 0"); });
    got.sort();
    lines.sort();
    QCOMPARE(got, lines);
    QCOMPARE(Shot(dst + "/src").value("a.txt"), QByteArray(touchNewer && !stop ? "FA2" : "Fa"));
  }

  void trash() {
    QTemporaryDir dir;
    qputenv("XDG_DATA_HOME", (dir.path() + "/data").toUtf8());  // not there yet
    const QString file = dir.path() + "/gone.txt";
    QVERIFY(Write(file, "keep me"));
    QString error;
    QVERIFY2(Trash::MoveToTrash(file, &error), qPrintable(error));
    QVERIFY(!QFile::exists(file));
    QCOMPARE(Shot(dir.path() + "/data/Trash/files").value("gone.txt"), QByteArray("Fkeep me"));
    QVERIFY(QFile::exists(dir.path() + "/data/Trash/info/gone.txt.trashinfo"));
    QVERIFY(!Trash::MoveToTrash(file, &error));
    QVERIFY(Write(dir.path() + "/tree/x/y.txt", "y"));
    QVERIFY(::symlink(platform::ToNative(dir.path() + "/data").constData(),
                      platform::ToNative(dir.path() + "/tree/link").constData()) == 0);
    QVERIFY(Trash::DeleteForGood(dir.path() + "/tree", &error));
    QVERIFY(!QFile::exists(dir.path() + "/tree"));
    QVERIFY(QFile::exists(dir.path() + "/data/Trash/files/gone.txt"));  // the link was not followed
  }

  void newItems() {
    QTemporaryDir dir;
    QString error;
    QCOMPARE(NewItems::CreateFolder(dir.path(), &error), dir.path() + "/New Folder");
    QCOMPARE(NewItems::CreateFolder(dir.path(), &error), dir.path() + "/New Folder (2)");
    QCOMPARE(NewItems::CreateTextFile(dir.path(), &error), dir.path() + "/New Text File.txt");
    QCOMPARE(NewItems::CreateTextFile(dir.path(), &error), dir.path() + "/New Text File (2).txt");
    QVERIFY(NewItems::CreateFolder(dir.path() + "/none", &error).isEmpty());
    QVERIFY(!error.isEmpty());
  }

  void folderStructure() {
    QTemporaryDir dir;
    const QString src = dir.path() + "/src";
    QVERIFY(Write(src + "/a/b/file.txt", "f") && Write(src + "/c/file2.txt", "g"));
    QDir().mkpath(dir.path() + "/out");
    std::atomic<bool> abort{false};
    const auto r = FolderStructure::Recreate(src, dir.path() + "/out", nullptr, nullptr, abort);
    QCOMPARE(r.created, 4);
    const Snapshot s = Shot(dir.path() + "/out");
    QCOMPARE(s.keys(), (QStringList{"src", "src/a", "src/a/b", "src/c"}));
    QVERIFY(!FolderStructure::Recreate(src, src + "/a", nullptr, nullptr, abort).refusal.isEmpty());
  }
};

QTEST_GUILESS_MAIN(TestFileOperation)
#include "TestFileOperation.moc"
