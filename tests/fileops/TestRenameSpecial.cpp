#include <QDir>
#include <QTemporaryDir>
#include <QtTest>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/RowEscape.h"
#include "fileops/RenameLog.h"
#include "fileops/RenameSpecial.h"
#include "platform/FileCopier.h"
#include "platform/NativePath.h"
#include "tests/TestSupport.h"

using namespace fileops;
using platform::FromNative;
using platform::ToNative;

namespace {

// A name from its bytes, so that invalid UTF-8 can be written in a table.
QString N(const char* bytes) { return FromNative(QByteArray(bytes)); }

bool Touch(const QString& path) {
  const int fd = ::open(ToNative(path).constData(), O_WRONLY | O_CREAT | O_EXCL, 0644);
  if (fd < 0) return false;
  const bool ok = ::write(fd, "x", 1) == 1;
  ::close(fd);
  return ok;
}

// The folder's names, sorted, bytes escaped as command rows show them.
QString Listing(const QString& folder) {
  QStringList names;
  platform::FileCopier::ListNames(folder, &names);
  for (QString& n : names) n = core::RowField(n);
  names.sort();
  return names.join(u'|');
}

}  // namespace

class TestRenameSpecial : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void newName_data() {
    QTest::addColumn<int>("how");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("alias");
    QTest::addColumn<QString>("expected");  // "" = no rename
    const int proper = 0, lower = 1, upper = 2, htm = 3, blank = 4, umlauts = 5, dos = 6;
    QTest::newRow("proper: of rule") << proper << "THE LORD OF THE RINGS.TXT" << "" << "The Lord of The Rings.txt";
    QTest::newRow("proper: no of, Of stays") << proper << "a tale Ofra.txt" << "" << "A Tale Ofra.txt";
    QTest::newRow("proper: Of Of not rescanned") << proper << "x of of y" << "" << "X of Of Y";
    QTest::newRow("proper: only blanks part words") << proper << "o'neil-smith_x.TXT" << "" << "O'neil-smith_x.txt";
    QTest::newRow("proper: double blanks") << proper << "  two  blanks" << "" << "  Two  Blanks";
    QTest::newRow("proper: raw byte keeps, word after") << proper << N("\xff" "ABC d\xe9") << "" << N("\xff" "abc D\xe9");
    QTest::newRow("lower") << lower << "README.TXT" << "" << "readme.txt";
    QTest::newRow("lower: umlaut") << lower << "ÄRGER.DOC" << "" << "ärger.doc";
    QTest::newRow("upper") << upper << "readme.txt" << "" << "README.TXT";
    QTest::newRow("upper: sharp s grows") << upper << "straße" << "" << "STRASSE";
    QTest::newRow("upper: raw bytes kept") << upper << N("a\xc3\x28z\x80") << "" << N("A\xc3(Z\x80");
    QTest::newRow("upper: astral text") << upper << N("\xf0\x90\x90\xa8x") << "" << N("\xf0\x90\x90\x80X");
    QTest::newRow("htm: shtml") << htm << "index.shtml" << "" << "index.htm";
    QTest::newRow("htm: html") << htm << "page.html" << "" << "page.htm";
    QTest::newRow("htm: shtm") << htm << "a.b.shtm" << "" << "a.b.htm";
    QTest::newRow("htm: txt left alone") << htm << "notes.txt" << "" << "";
    QTest::newRow("htm: case as written") << htm << "INDEX.HTML" << "" << "";
    QTest::newRow("htm: htm itself") << htm << "x.htm" << "" << "";
    QTest::newRow("htm: part of a listed one") << htm << "x.tml" << "" << "";
    QTest::newRow("htm: no dot") << htm << "html" << "" << "";
    QTest::newRow("htm: trailing dot") << htm << "x." << "" << "";
    QTest::newRow("htm: dot name") << htm << ".html" << "" << ".htm";
    QTest::newRow("blanks") << blank << "Müller Straße.doc" << "" << "Müller_Straße.doc";
    QTest::newRow("umlauts") << umlauts << "Müller Straße.doc" << "" << "Mueller Strasse.doc";
    QTest::newRow("umlauts: capitals, no rescan") << umlauts << "ÄÖÜäöüßß" << "" << "AeOeUeaeoeuessss";
    QTest::newRow("umlauts: decomposed left") << umlauts << "u\u0308.txt" << "" << "u\u0308.txt";
    QTest::newRow("dos: alias") << dos << "Program Files" << "PROGRA~1" << "PROGRA~1";
    QTest::newRow("dos: cut at zero") << dos << "Long name.txt" << QString("LONGNA~1.TXT") + QChar(0) + "X" << "LONGNA~1.TXT";
    QTest::newRow("dos: none") << dos << "SHORT.TXT" << "" << "";
  }
  void newName() {
    QFETCH(int, how);
    QFETCH(QString, name);
    QFETCH(QString, alias);
    QFETCH(QString, expected);
    QCOMPARE(RenameSpecial::NewName(RenameHow(how), name, alias), expected);
  }

  // A batch on a real folder: which names are there afterwards, how many refused.
  void run_data() {
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<int>("how");
    QTest::addColumn<QString>("after");
    QTest::addColumn<int>("refused");
    // 255 bytes; upper case makes "ʼN" of the last letter, one byte more.
    const QString longName = QString(253, u'a') + QChar(0x149);
    QTest::newRow("case only, there and back") << QStringList{"readme.txt"} << QStringList{"readme.txt"} << 2
                                               << "README.TXT" << 0;
    QTest::newRow("taken name refused") << QStringList{"a.txt", "A.TXT"} << QStringList{"a.txt"} << 2 << "A.TXT|a.txt"
                                        << 1;
    QTest::newRow("same new name: first wins") << QStringList{"Abc", "aBC", "x"} << QStringList{"Abc", "aBC", "x"} << 1
                                               << "aBC|abc|x" << 1;
    QTest::newRow("later ones still go") << QStringList{"A b", "A_b", "c d"} << QStringList{"A b", "c d"} << 4
                                         << "A b|A_b|c_d" << 1;
    QTest::newRow("grows past 255 bytes") << QStringList{longName, "b"} << QStringList{longName, "b"} << 2
                                          << "B|" + longName << 1;
    QTest::newRow("vanished entry") << QStringList{"b.html"} << QStringList{"gone.html", "b.html"} << 3 << "b.htm"
                                    << 1;
    QTest::newRow("raw bytes kept") << QStringList{N("x\xe9y.txt")} << QStringList{N("x\xe9y.txt")} << 2
                                    << "X\\xE9Y.TXT" << 0;
    QTest::newRow("no short names off vfat") << QStringList{"Long file name.text"} << QStringList{"Long file name.text"}
                                             << 6 << "Long file name.text" << 0;
    QTest::newRow("unchanged skipped") << QStringList{"ABC"} << QStringList{"ABC", ".", ".."} << 2 << "ABC" << 0;
  }
  void run() {
    QFETCH(QStringList, files);
    QFETCH(QStringList, selected);
    QFETCH(int, how);
    QFETCH(QString, after);
    QFETCH(int, refused);
    QTemporaryDir dir;
    for (const QString& f : files) QVERIFY(Touch(dir.path() + u'/' + f));
    QStringList paths;
    for (const QString& s : selected) paths << dir.path() + u'/' + s;

    std::vector<RenameItem> dry = RenameSpecial::Plan(RenameHow(how), paths);
    QCOMPARE(RenameSpecial::Check(&dry), qsizetype(refused));
    std::vector<RenameItem> items = RenameSpecial::Plan(RenameHow(how), paths);
    const RenameResult r = RenameSpecial::Run(&items, nullptr, nullptr, nullptr);
    QCOMPARE(Listing(dir.path()), after);
    QCOMPARE(r.refused, qsizetype(refused));
    for (const RenameItem& item : items) QVERIFY2(item.done != !item.refusal.isEmpty(), qPrintable(item.oldName));
    // Undone, every name is back.
    std::vector<RenameItem> back = RenameSpecial::Reverse(items);
    QCOMPARE(RenameSpecial::Run(&back, nullptr, nullptr, nullptr).refused, qsizetype(0));
    QStringList before = files;
    for (QString& f : before) f = core::RowField(f);
    before.sort();
    QCOMPARE(Listing(dir.path()), before.join(u'|'));
  }

  void linkRenamedNotTarget() {
    QTemporaryDir dir;
    QVERIFY(Touch(dir.path() + "/target.txt"));
    QVERIFY(::symlink("target.txt", ToNative(dir.path() + "/my link").constData()) == 0);
    QCOMPARE(RenameSpecial::RenameEntry(dir.path(), "my link", "my_link"), QString());
    QCOMPARE(Listing(dir.path()), QString("my_link|target.txt"));
    QCOMPARE(platform::FileCopier::Stat(dir.path() + "/my_link").kind, platform::NodeInfo::kLink);
  }

  void refusalTexts_data() {
    QTest::addColumn<QString>("oldName");
    QTest::addColumn<QString>("newName");
    QTest::addColumn<QString>("reason");
    QTest::newRow("taken") << "a" << "b" << "\"b\" already exists.";
    QTest::newRow("vanished") << "nothing" << "z" << "It is no longer there.";
    QTest::newRow("empty") << "a" << "" << "The new name is empty.";
    QTest::newRow("dot dot") << ".." << "x" << "\"..\" cannot be renamed.";
    QTest::newRow("slash") << "a" << "x/y" << "A name cannot hold \"/\".";
    QTest::newRow("256 bytes") << "a" << QString(256, u'n')
                               << "The new name \"" + QString(256, u'n') + "\" is too long: 256 bytes, at most 255.";
  }
  void refusalTexts() {
    QFETCH(QString, oldName);
    QFETCH(QString, newName);
    QFETCH(QString, reason);
    QTemporaryDir dir;
    QVERIFY(Touch(dir.path() + "/a") && Touch(dir.path() + "/b"));
    QCOMPARE(RenameSpecial::RenameEntry(dir.path(), oldName, newName), reason);
    QCOMPARE(Listing(dir.path()), QString("a|b"));
  }

  void readOnlyFolder() {
    QTemporaryDir dir;
    const QByteArray at = ToNative(dir.path() + "/ro");
    QVERIFY(QDir().mkpath(dir.path() + "/ro"));
    QVERIFY(Touch(dir.path() + "/ro/x.html"));
    bool mounted = false;
    if (geteuid() == 0) {
      // Root may write anywhere; a read-only mount still refuses.
      if (::mount(at.constData(), at.constData(), nullptr, MS_BIND, nullptr) != 0) QSKIP("no bind mount here");
      mounted = true;
      QVERIFY(::mount(nullptr, at.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0);
    } else {
      QVERIFY(::chmod(at.constData(), 0555) == 0);
    }
    std::vector<RenameItem> items = RenameSpecial::Plan(RenameHow::kHtm, {dir.path() + "/ro/x.html"});
    const RenameResult r = RenameSpecial::Run(&items, nullptr, nullptr, nullptr);
    if (mounted) ::umount2(at.constData(), MNT_DETACH);
    else ::chmod(at.constData(), 0755);
    QCOMPARE(r.refused, qsizetype(1));
    QVERIFY2(items[0].refusal == "The file system is read-only." || items[0].refusal == "Access denied.",
             qPrintable(items[0].refusal));
    QCOMPARE(Listing(dir.path() + "/ro"), QString("x.html"));
  }

  // The log's last batch undoes a run, and a damaged log never yields a wrong rename.
  void undoLog_data() {
    QTest::addColumn<QByteArray>("tail");  // written after the batch
    QTest::addColumn<int>("batchSize");
    QTest::newRow("clean") << QByteArray() << 3;
    QTest::newRow("torn last line ignored") << QByteArray("2030-01-01T00:00:00.000Z\t/tmp/x") << 3;
    QTest::newRow("bad escape line skipped") << QByteArray("2030-01-01T00:00:00.000Z\t/a/\\q\t/a/b\n") << 3;
    QTest::newRow("other folder skipped") << QByteArray("2030-01-01T00:00:00.000Z\t/a/b\t/c/b\n") << 3;
    QTest::newRow("newer batch wins") << QByteArray("2030-01-01T00:00:00.000Z\t/a/b\t/a/c\n") << 1;
  }
  void undoLog() {
    QFETCH(QByteArray, tail);
    QFETCH(int, batchSize);
    QTemporaryDir dir;
    const QStringList names{"one two", N("tab\there \xfe"), "three four"};
    for (const QString& n : names) QVERIFY(Touch(dir.path() + u'/' + n));
    QStringList paths;
    for (const QString& n : names) paths << dir.path() + u'/' + n;
    const QString logPath = dir.path() + "/log/" + RenameLog::kFileName;
    QVERIFY(QDir().mkpath(dir.path() + "/log"));
    // The older batch begins in the same millisecond: it must stay a batch of its own.
    const QDateTime start = QDateTime::currentDateTime();
    {
      RenameLog older(logPath, start);
      QCOMPARE(older.append("/old/a", "/old/b"), QString());
    }
    std::vector<RenameItem> items = RenameSpecial::Plan(RenameHow::kUnderscore, paths);
    RenameLog log(logPath, start);
    const RenameResult r = RenameSpecial::Run(&items, &log, nullptr, nullptr);
    QCOMPARE(r.renamed, qsizetype(3));
    QCOMPARE(r.logError, QString());
    QFile f(logPath);
    QVERIFY(f.open(QIODevice::Append));
    f.write(tail);
    f.close();

    std::vector<RenameItem> last;
    QString error;
    QVERIFY2(RenameLog::LastBatch(logPath, &last, &error), qPrintable(error));
    QCOMPARE(int(last.size()), batchSize);
    if (batchSize != 3) return;
    for (size_t i = 0; i < last.size(); ++i) {
      QCOMPARE(last[i].oldPath(), items[i].oldPath());
      QCOMPARE(last[i].newPath(), items[i].newPath());
    }
    std::vector<RenameItem> back = RenameSpecial::Reverse(last);
    QCOMPARE(RenameSpecial::Run(&back, nullptr, nullptr, nullptr).renamed, qsizetype(3));
    QStringList sorted = names;
    for (QString& n : sorted) n = core::RowField(n);
    sorted << "log";
    sorted.sort();
    QCOMPARE(Listing(dir.path()), sorted.join(u'|'));
  }

  void rowFieldRoundTrip() {
    const QString awkward = N("a\\b\tc\nd\re\x01" "f\x7f\xff\xc3\xa9\xf0\x9f\x98\x80");
    QString back;
    QVERIFY(core::ParseRowField(core::RowField(awkward), &back));
    QCOMPARE(ToNative(back), ToNative(awkward));
    for (const char* bad : {"x\\", "\\x4", "\\x41", "\\xZZ", "\\q"}) QVERIFY2(!core::ParseRowField(QString(bad), &back), bad);
  }
};

QTEST_GUILESS_MAIN(TestRenameSpecial)
#include "TestRenameSpecial.moc"
