#include <QDir>
#include <functional>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>
#include <sys/stat.h>

#include "core/JobFlags.h"
#include "find/FindFilters.h"
#include "find/FindJob.h"
#include "find/FolderPrefetcher.h"
#include "tests/TestSupport.h"

namespace {

// Records what a find delivers; can press Escape after a number of rows.
class Recorder : public find::FindSink {
 public:
  QStringList rows;          // folder + name, relative to the base
  QStringList displayRows;   // the same with the shown folder
  QList<QPair<int, QString>> statuses;
  int sorts = 0;
  int abortAfter = -1;
  QString base;

  void addRow(const platform::DirEntry& entry, const QString& folder, const QString& displayFolder) override {
    rows.append(folder.mid(base.size()) + entry.name);
    displayRows.append(displayFolder.mid(base.size()) + entry.name);
    if (rows.size() == abortAfter) core::JobFlags::RequestAbort();
  }
  qsizetype rowCount() const override { return rows.size(); }
  void sortRows() override { ++sorts; }
  void showJobStatus(int mode, const QString& text) override { statuses.append({mode, text}); }

  QString summary() const { return statuses.isEmpty() ? QString() : statuses.last().second; }
  bool sawStatus(int mode, const QString& text) const { return statuses.contains({mode, text}); }
};

}  // namespace

class TestFindJob : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir dir_;
  QString root_;

  find::FindCriteria Criteria(const QStringList& patterns, bool subfolders, const QStringList& locations = {}) {
    find::FindCriteria c;
    c.patterns = patterns;
    c.includeSubfolders = subfolders;
    c.locations = locations.isEmpty() ? QStringList{root_} : locations;
    return c;
  }

  Recorder Run(find::FindCriteria& c, bool sort = false) {
    Recorder r;
    r.base = root_;
    find::FindJob::Run(c, r, sort);
    return r;
  }

  // Every row below `folder` (relative, ending in "/") comes in one run.
  static bool Contiguous(const QStringList& rows, const QString& folder) {
    qsizetype first = -1, last = -1, count = 0;
    for (qsizetype i = 0; i < rows.size(); ++i) {
      if (!rows[i].startsWith(folder)) continue;
      if (first < 0) first = i;
      last = i;
      ++count;
    }
    return count == 0 || last - first + 1 == count;
  }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
    root_ = dir_.path() + QStringLiteral("/t/");
    for (const char* f : {"a.txt", "b.txt", "DOCS/c.txt", "DOCS/x.doc", "sub/d.txt", "sub/deep/e.txt",
                          "sub/deep/y.doc", "nomatch/f.txt", "two/lx", "two/la", "two/bx", "excl/g.txt",
                          "excl/inner/h.txt"})
      QVERIFY(testsupport::MakeFile(root_ + QString::fromLatin1(f), "data"));
    QVERIFY(QFile::link(root_ + QStringLiteral("sub"), root_ + QStringLiteral("link")));
  }
  void init() { core::JobFlags::ClearAbort(); }

  // What a walk finds (sorted) and counts; with a contained text as well,
  // every folder is still walked once. An Escape from before the find does
  // not stop it: the flag is cleared when a find starts.
  void walks_data() {
    QTest::addColumn<QString>("patterns");
    QTest::addColumn<bool>("subfolders");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("rows");
    QTest::addColumn<int>("folders");
    const QString txt = "DOCS/c.txt,a.txt,b.txt,excl/g.txt,excl/inner/h.txt,nomatch/f.txt,sub/d.txt,sub/deep/e.txt";
    QTest::newRow("one extension in every folder") << "*.txt" << true << QByteArray() << txt
                                                   << 8;  // the root and its seven real subfolders, not the link
    QTest::newRow("two patterns") << "*.doc;*x" << true << QByteArray() << "DOCS/x.doc,sub/deep/y.doc,two/bx,two/lx"
                                  << 8;
    QTest::newRow("no subfolders") << "a.txt" << false << QByteArray() << "a.txt" << 1;
    QTest::newRow("nothing found") << "nothing-like-this" << true << QByteArray() << "" << 8;
    QTest::newRow("every name, text found") << "*.*" << true << QByteArray("DATA")
                                            << "DOCS/c.txt,DOCS/x.doc,a.txt,b.txt,excl/g.txt,excl/inner/h.txt,"
                                               "nomatch/f.txt,sub/d.txt,sub/deep/e.txt,sub/deep/y.doc,two/bx,two/la,two/lx"
                                            << 8;
    QTest::newRow("every name, text absent") << "*.*" << true << QByteArray("nothing") << "" << 8;
    QTest::newRow("one extension and a text") << "*.txt" << true << QByteArray("data") << txt << 8;
  }
  void walks() {
    QFETCH(QString, patterns);
    QFETCH(bool, subfolders);
    QFETCH(QByteArray, text);
    QFETCH(QString, rows);
    QFETCH(int, folders);
    core::JobFlags::RequestAbort();
    find::FindCriteria c = Criteria(patterns.split(u';'), subfolders);
    c.textOn = !text.isEmpty();
    c.text = text;
    find::SetTextCompare(&c, false);
    c.search.SetText(text);
    const Recorder r = Run(c, true);
    QStringList sorted = r.rows;
    sorted.sort();
    QCOMPARE(sorted.join(u','), rows);
    QCOMPARE(c.foldersScanned, folders);
    if (!c.textOn) QCOMPARE(c.nameHits, r.rows.size());
    QCOMPARE(r.sorts, r.rows.isEmpty() ? 0 : 1);  // no sort without rows
    QCOMPARE(r.statuses.last().first, int(find::kStatusFindEnd));
  }

  // A folder's own hits come before any of its subfolders'; the progress shows
  // each folder as the list will (its tidied name) and the summary the counts.
  void orderAndStatus() {
    find::FindCriteria c = Criteria({QStringLiteral("*.txt")}, true);
    const Recorder r = Run(c);
    QCOMPARE(QSet<QString>(r.rows.begin(), r.rows.begin() + 2), (QSet<QString>{"a.txt", "b.txt"}));
    QVERIFY(r.rows.indexOf("sub/d.txt") < r.rows.indexOf("sub/deep/e.txt"));
    for (const char* f : {"DOCS/", "sub/", "sub/deep/", "excl/", "nomatch/"})
      QVERIFY2(Contiguous(r.rows, QString::fromLatin1(f)), f);
    QVERIFY(!r.rows.join(u' ').contains(QStringLiteral("link/")));  // never through a link
    const qsizetype at = r.rows.indexOf(QStringLiteral("DOCS/c.txt"));
    QVERIFY(at >= 0);  // the walk used the real name
    QCOMPARE(r.displayRows[at], QStringLiteral("Docs/c.txt"));
    QCOMPARE(r.statuses.first(), qMakePair(int(find::kStatusStart), QString()));
    QVERIFY(r.sawStatus(find::kStatusProgress, root_));
    QVERIFY(r.sawStatus(find::kStatusProgress, root_ + QStringLiteral("Docs/")));
    QVERIFY(r.sawStatus(find::kStatusProgress, root_ + QStringLiteral("sub/deep/")));
    QVERIFY(QRegularExpression(QStringLiteral("^\\d+\\.\\d{3} sec \\(8 folders scanned, 8 name hits\\)$"))
                .match(r.summary())
                .hasMatch());
    QVERIFY(!core::JobFlags::Busy());
    QCOMPARE(find::FindJob::SummaryText(1.5, 1234, 56, false),
             QStringLiteral("1.500 sec (1,234 folders scanned, 56 name hits)"));
  }

  void everythingPreOrder() {
    find::FindCriteria c = Criteria({QStringLiteral("*.*")}, true);
    const Recorder r = Run(c);
    QCOMPARE(r.rows.size(), 13 + 7 + 1);  // files, folders, the link itself
    for (const char* folder : {"sub", "sub/deep", "DOCS", "excl", "excl/inner", "two", "nomatch"}) {
      const QString f = QString::fromLatin1(folder);
      const qsizetype at = r.rows.indexOf(f);
      QVERIFY2(at >= 0, folder);
      // The folder's row comes first, its contents right after it.
      for (qsizetype i = 0; i < r.rows.size(); ++i)
        if (r.rows[i].startsWith(f + u'/')) QVERIFY2(i > at, folder);
      QVERIFY2(Contiguous(r.rows.mid(at), f + u'/'), folder);
    }
    QVERIFY(r.rows.contains(QStringLiteral("link")));
    QVERIFY(!r.rows.contains(QStringLiteral("link/d.txt")));
  }

  // Folder readers and content workers hand over in the walk's order: rows,
  // statuses and counters are those of the walk alone, and Escape shows
  // nothing found after it.
  void threadsGiveTheSameFind_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("threads");
    for (const char* kind : {"names", "every entry", "text only", "with size"})
      for (int threads : {1, 2, 8}) QTest::addRow("%s, %d threads", kind, threads) << QString::fromLatin1(kind) << threads;
  }
  void threadsGiveTheSameFind() {
    QFETCH(QString, kind);
    QFETCH(int, threads);
    const bool text = kind == u"text only" || kind == u"with size";
    const QString many = dir_.path() + QStringLiteral("/threads/");
    if (!QFileInfo::exists(many)) {
      for (int i = 0; i < 400; ++i)
        QVERIFY(testsupport::MakeFile(many + QStringLiteral("f%1/n%2.txt").arg(i % 7).arg(i),
                                      i % 3 ? QByteArray(40000 + i, 'x') + "needle" : QByteArray("hay")));
      // A deeper tree for the folder readers: 6 x 5 x 4 folders, one excluded branch.
      for (int i = 0; i < 120; ++i)
        for (const char* name : {"a.txt", "b.doc"})
          QVERIFY(testsupport::MakeFile(many + QStringLiteral("t/d%1/e%2/g%3/").arg(i / 20).arg(i / 4 % 5).arg(i % 4) +
                                            QString::fromLatin1(name), "x"));
    }
    const QString location = text ? many : many + QStringLiteral("t/");
    auto run = [&](int n, int abortAfter) {
      find::FindCriteria c = Criteria({kind == u"names" ? QStringLiteral("*.TXT") : QStringLiteral("*.*")}, true, {location});
      c.excludeOn = !text;
      c.excludes = {QStringLiteral("/d3/e1/")};
      c.textOn = text;
      c.text = "NEEDLE";
      find::SetTextCompare(&c, false);
      c.search.SetText(c.text);
      c.sizeOn = kind == u"with size";
      c.threads = n;
      Recorder r;
      r.base = location;
      r.abortAfter = abortAfter;
      core::JobFlags::ClearAbort();
      find::FindJob::Run(c, r, false);
      r.statuses.removeLast();  // the summary holds the time
      return std::make_tuple(r.rows, r.statuses, c.nameHits, c.foldersScanned);
    };
    // The walk's order from the file system's own listing order.
    QStringList expected;
    std::function<void(const QString&)> walk = [&](const QString& rel) {
      const QStringList names = QDir(location + rel).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Unsorted);
      for (const QString& name : names) {
        const bool folder = QFileInfo(location + rel + name).isDir();
        if (kind == u"every entry" || name.endsWith(u".txt")) expected.append(rel + name);
        if (folder && kind == u"every entry" && !(rel + name + u'/').contains(u"d3/e1/")) walk(rel + name + u'/');
      }
      if (kind == u"names")
        for (const QString& name : names)
          if (QFileInfo(location + rel + name).isDir() && !(rel + name + u'/').contains(u"d3/e1/")) walk(rel + name + u'/');
    };
    const auto alone = text ? run(1, -1) : decltype(run(1, -1))();
    const auto full = run(threads, -1);
    if (text) {
      QCOMPARE(std::get<0>(alone).size(), 266);
      QVERIFY(full == alone);
    } else {
      walk(QString());
      QCOMPARE(std::get<0>(full), expected);
      QCOMPARE(std::get<3>(full), 1 + 6 + 29 + 116);  // d3/e1 and its four left out
    }
    const auto stopped = run(threads, 5);
    QCOMPARE(std::get<0>(stopped), std::get<0>(full).mid(0, 5));
    QCOMPARE(std::get<1>(stopped).last().first, int(find::kStatusAborted));
  }

  // A contained-text find leaves every file's access and write times (and
  // a read-only file's mode) as they were.
  void timeStampsKeptByTextFind_data() {
    QTest::addColumn<bool>("textOnly");
    QTest::newRow("text only") << true;
    QTest::newRow("with a size filter") << false;
  }
  void timeStampsKeptByTextFind() {
    QFETCH(bool, textOnly);
    const QString folder = dir_.path() + (textOnly ? QStringLiteral("/stamps1/") : QStringLiteral("/stamps2/"));
    const QStringList names{"a.txt", "b.txt", "ro.txt", "big.txt"};
    for (const QString& n : names)
      QVERIFY(testsupport::MakeFile(folder + n, n == u"big.txt" ? QByteArray(100000, 'x') + "needle" : "a needle"));
    QVERIFY(QFile::setPermissions(folder + "ro.txt", QFileDevice::ReadOwner));
    struct stat before[4];
    for (int i = 0; i < 4; ++i) {
      QVERIFY(testsupport::SetTimes(folder + names[i], QDateTime(QDate(2001, 1, 1), QTime(1, 2, 3), Qt::UTC),
                                    QDateTime(QDate(2002, 2, 2), QTime(4, 5, 6), Qt::UTC)));
      QCOMPARE(::stat(QFile::encodeName(folder + names[i]).constData(), &before[i]), 0);
    }
    find::FindCriteria c = Criteria({QStringLiteral("*.txt")}, true, {folder});
    c.textOn = true;
    c.text = "NEEDLE";
    find::SetTextCompare(&c, false);
    c.search.SetText(c.text);
    c.sizeOn = !textOnly;
    const Recorder r = Run(c);
    QCOMPARE(r.rows.size(), 4);
    for (int i = 0; i < 4; ++i) {
      struct stat after {};
      QCOMPARE(::stat(QFile::encodeName(folder + names[i]).constData(), &after), 0);
      QCOMPARE(after.st_atim.tv_sec, before[i].st_atim.tv_sec);
      QCOMPARE(after.st_mtim.tv_sec, before[i].st_mtim.tv_sec);
      QCOMPARE(after.st_mode, before[i].st_mode);
    }
  }

  void entryListedOncePerPattern() {
    find::FindCriteria c = Criteria({QStringLiteral("l*"), QStringLiteral("*x")}, false, {root_ + "two/"});
    const Recorder r = Run(c);
    QStringList firstPattern = r.rows.mid(0, 2), secondPattern = r.rows.mid(2);
    firstPattern.sort();
    secondPattern.sort();
    QCOMPARE(firstPattern, (QStringList{"two/la", "two/lx"}));
    QCOMPARE(secondPattern, (QStringList{"two/bx", "two/lx"}));
    QCOMPARE(c.nameHits, 4);
  }

  void excludedLocationStillSearched() {
    find::FindCriteria c = Criteria({QStringLiteral("*.txt")}, true, {root_ + "excl/", root_});
    c.excludeOn = true;
    c.excludes = QStringList{QStringLiteral("EXCL"), QStringLiteral("/deep/")};
    const Recorder r = Run(c);
    // The first location is searched, subfolders included, without exclusions.
    QCOMPARE(r.rows.mid(0, 2), (QStringList{"excl/g.txt", "excl/inner/h.txt"}));
    // The second is searched with them: excl and deep are left out.
    QStringList rest = r.rows.mid(2);
    rest.sort();
    QCOMPARE(rest, (QStringList{"DOCS/c.txt", "a.txt", "b.txt", "nomatch/f.txt", "sub/d.txt"}));
    QVERIFY(c.excludeOn);
    // excl/inner + root, DOCS, sub, nomatch, two: the excluded location is not counted.
    QCOMPARE(c.foldersScanned, 6);
  }

  void tidy_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("shown");
    QTest::newRow("capitals") << "DOCS" << "Docs";
    QTest::newRow("two words") << "MY DOCS" << "My Docs";
    QTest::newRow("digits") << "WIN95" << "Win95";
    QTest::newRow("dot") << "A.B" << "A.b";
    QTest::newRow("12 characters") << "ABCDEFGHIJKL" << "Abcdefghijkl";
    QTest::newRow("13 characters kept") << "ABCDEFGHIJKLM" << "ABCDEFGHIJKLM";
    QTest::newRow("mixed case kept") << "Docs" << "Docs";
    QTest::newRow("lower case kept") << "docs" << "docs";
    QTest::newRow("umlaut") << "ÄRGER" << "Ärger";
  }
  void tidy() {
    QFETCH(QString, name);
    QFETCH(QString, shown);
    QCOMPARE(find::FindJob::TidyFolderName(name), shown);
  }

  void escapeKeepsRows() {
    find::FindCriteria c = Criteria({QStringLiteral("*.*")}, true);
    Recorder r;
    r.base = root_;
    r.abortAfter = 3;
    QVERIFY(!find::FindJob::Run(c, r, true));
    QCOMPARE(r.rows.size(), 3);  // stopped before the next entry
    QVERIFY(r.sawStatus(find::kStatusAborted, QString()));
    QVERIFY(r.summary().endsWith(QStringLiteral(" name hits)  ABORTED")));
    QCOMPARE(find::FindJob::SummaryText(0, 0, 0, true), QStringLiteral("0.000 sec (0 folders scanned, 0 name hits)  ABORTED"));
    QCOMPARE(r.sorts, 1);  // the partial result is sorted like a full one
    QVERIFY(!core::JobFlags::Busy());
  }

  void sortAnnouncement_data() {
    QTest::addColumn<int>("sizeMax");
    QTest::addColumn<int>("rows");
    QTest::addColumn<bool>("sorting");
    // 3001 files, one of them not empty: a size limit of 0 lists 3000.
    QTest::newRow("3000 silent") << 0 << 3000 << false;
    QTest::newRow("3001 announced") << 1 << 3001 << true;
  }
  void sortAnnouncement() {
    QFETCH(int, sizeMax);
    QFETCH(int, rows);
    QFETCH(bool, sorting);
    const QString folder = dir_.path() + QStringLiteral("/many/");
    if (!QDir(folder).exists()) {
      QVERIFY(testsupport::MakeFolder(folder));
      for (int i = 0; i < 3000; ++i) QFile(folder + QString::number(i)).open(QIODevice::WriteOnly);
      QVERIFY(testsupport::MakeFile(folder + QStringLiteral("x"), "1"));
    }
    find::FindCriteria c = Criteria({QStringLiteral("*.*")}, false, {folder});
    c.sizeOn = true;
    c.sizeMax = sizeMax;
    const Recorder r = Run(c, true);
    QCOMPARE(r.rows.size(), rows);
    QCOMPARE(r.sawStatus(find::kStatusProgress, QStringLiteral("Sorting...")), sorting);
    QCOMPARE(r.sorts, 1);
    QCOMPARE(r.statuses.last().first, int(find::kStatusFindEnd));
  }

  // The read-ahead serves folders in walk order, with the matching entries
  // looked up, and gives up, without harm, when the walk asks for another one.
  void readAhead_data() {
    QTest::addColumn<int>("readers");
    QTest::newRow("one reader") << 1;
    QTest::newRow("four readers") << 4;
  }
  void readAhead() {
    QFETCH(int, readers);
    const std::vector<platform::WildcardPattern> screen{platform::WildcardPattern(u"*.TXT")};
    find::FolderPrefetcher ahead(root_, true, {QStringLiteral("/two/")}, readers, &screen);
    const auto first = ahead.take(root_);
    QVERIFY(first && first->isOpen());
    QVERIFY(first->isScreened());
    QStringList walkOrder, screened;
    for (qsizetype i = 0; i < first->count(); ++i) {
      if (first->passedScreen(i)) screened.append(first->name(i));
      if (first->isWalkableFolder(i) && first->name(i) != u"." && first->name(i) != u".." && first->name(i) != u"two")
        walkOrder.append(first->name(i));
    }
    screened.sort();
    QCOMPARE(screened, (QStringList{"a.txt", "b.txt"}));
    const auto second = ahead.take(root_ + walkOrder.first() + u'/');
    QVERIFY(second && second->isOpen());
    QVERIFY(!ahead.take(root_ + QStringLiteral("not-next/")));
    QVERIFY(!ahead.take(root_ + walkOrder.last() + u'/'));  // off for good
  }
};

QTEST_GUILESS_MAIN(TestFindJob)
#include "TestFindJob.moc"
