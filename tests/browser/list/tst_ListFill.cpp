#include <QTemporaryDir>
#include <QtTest>

#include "browser/list/ListFill.h"
#include "browser/list/ListModel.h"
#include "browser/list/ListPrinter.h"
#include "browser/list/RowBuilder.h"
#include "cli/ListCommand.h"
#include "core/DateStyles.h"
#include "platform/FileTime.h"
#include "platform/NativePath.h"
#include "tests/TestSupport.h"
#include "tests/browser/list/ListTestRows.h"

using browser::FillContext;
using browser::FillResult;
using browser::ListFill;
using browser::ListModel;

class tst_ListFill : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir dir_;
  QString folder_;

  static QStringList SortedNames(const ListModel& m) {
    QStringList names;
    for (int i = 0; i < m.rowCount(); ++i) names.append(m.name(m.rowAt(i)));
    names.sort();
    return names;
  }

  int runList(const QStringList& args, QString* out, QString* err) {
    QTextStream o(out), e(err);
    cli::CliContext ctx{args, o, e, QString()};
    const int status = cli::RunListCommand(ctx);
    o.flush();
    e.flush();
    return status;
  }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
    folder_ = dir_.path() + u'/';
    QVERIFY(testsupport::MakeSizedFile(folder_ + "b.txt", 2048));
    QVERIFY(testsupport::MakeFile(folder_ + "a.TXT", "x"));
    QVERIFY(testsupport::MakeFile(folder_ + ".hidden"));
    QVERIFY(testsupport::MakeFile(folder_ + "tool.exe", "MZ"));
    QVERIFY(testsupport::MakeFolder(folder_ + "sub.d"));
    QVERIFY(testsupport::MakeFolder(folder_ + "zz"));
    const QDateTime t(QDate(2020, 5, 17), QTime(13, 45, 30), Qt::UTC);
    for (const char* n : {"b.txt", "a.TXT", ".hidden", "tool.exe", "sub.d", "zz"})
      QVERIFY(testsupport::SetTimes(folder_ + n, t, t.addSecs(qstrlen(n))));
  }

  void browseSkipsDots() {
    ListModel m;
    m.beginFill();
    QCOMPARE(ListFill::Browse(&m, dir_.path(), {}), FillResult::kDone);
    m.endFill();
    QCOMPARE(SortedNames(m), (QStringList{".hidden", "a.TXT", "b.txt", "sub.d", "tool.exe", "zz"}));
    m.sortAgain();
    // Grouping on: folders first, then files, by name.
    QCOMPARE(listtest::Names(m), QStringLiteral("sub.d,zz,.hidden,a.TXT,b.txt,tool.exe"));
    const browser::RowId folder = m.rowAt(0);
    QVERIFY(m.isFolder(folder));
    QCOMPARE(m.path(folder), folder_ + "sub.d");
    QCOMPARE(m.dataText(folder, 1), QStringLiteral("d"));
    QCOMPARE(m.dataText(m.rowAt(4), 2), QStringLiteral("2048"));
    QCOMPARE(m.dataText(m.rowAt(4), 7), QStringLiteral("----A---"));
    QCOMPARE(m.dataText(m.rowAt(2), 7), QStringLiteral("-H--A---"));
    QCOMPARE(m.statusText(), QStringLiteral("Total: 2.00KB"));
  }

  void abortStopsAfterTheEntry() {
    ListModel m;
    std::atomic<bool> abort{true};  // a fill clears it when it starts
    int entries = 0;
    FillContext context{&abort, [&] {
                          if (++entries == 4) abort = true;
                        }};
    QCOMPARE(ListFill::Browse(&m, dir_.path(), context), FillResult::kAborted);
    QCOMPARE(entries, 4);  // "." and ".." are entries too
    QVERIFY(m.rowCount() >= 2 && m.rowCount() <= 4);
    ListModel none;
    QCOMPARE(ListFill::Browse(&none, folder_ + "missing", {}), FillResult::kUnreadable);
    QCOMPARE(none.rowCount(), 0);
  }

  void typeNames() {
    ListModel m;
    browser::RowBuilder builder(&m);
    QVERIFY(browser::RowBuilder::AskedOneByOne(u"EXE"));
    QVERIFY(browser::RowBuilder::AskedOneByOne(u"ani"));
    QVERIFY(!browser::RowBuilder::AskedOneByOne(u"ex"));
    QVERIFY(!browser::RowBuilder::AskedOneByOne(u""));
    builder.add(listtest::Entry("x.txt"), folder_);
    builder.add(listtest::Entry("Y.TXT"), folder_);
    builder.add(listtest::Entry("d", 0, 0, true), folder_);
    QCOMPARE(m.store().typeCount(), 2u);  // one per extension, case-blind
    QCOMPARE(m.dataText(m.rowAt(0), 3), m.dataText(m.rowAt(1), 3));
    QVERIFY(!m.dataText(m.rowAt(0), 3).isEmpty());
    QVERIFY(!m.iconKey(m.rowAt(2)).isEmpty());
    // Types the database does not know are named after their extension.
    QCOMPARE(builder.typeOf(listtest::Entry("a.qzx9")).name, QStringLiteral("QZX9 File"));
    QCOMPARE(builder.typeOf(listtest::Entry("README-no-ext")).name, QStringLiteral("File"));
  }

  void dateCellsMatchFileTimeText_data() {
    QTest::addColumn<int>("dateStyle");
    QTest::addColumn<int>("timeStyle");
    for (int d = 0; d < 4; ++d)
      for (int t = 0; t < 4; ++t) QTest::addRow("%d/%d", d, t) << d << t;
  }
  void dateCellsMatchFileTimeText() {
    QFETCH(int, dateStyle);
    QFETCH(int, timeStyle);
    ListModel m;
    m.setFormats(0, dateStyle, timeStyle);
    const quint16 type = m.store().internType(QStringLiteral("t"), QString());
    const qint64 ft = platform::kUnixEpochTicks + 1589723130LL * platform::kTicksPerSecond;
    platform::DirEntry e = listtest::Entry("f", 0, ft);
    e.creationTime = 0;
    m.addFileRow(e, "/", type);
    const QString expected = core::FileTimeText(ft, core::DateStylePattern(dateStyle),
                                                core::TimeStylePattern(timeStyle), false);
    QCOMPARE(m.dataText(m.rowAt(0), 5), expected);
    QCOMPARE(m.dataText(m.rowAt(0), 4), QStringLiteral("(unknown)"));
    m.setAge(true);
    QVERIFY(m.dataText(m.rowAt(0), 5).endsWith(QStringLiteral(" years")));
    QCOMPARE(m.dataText(m.rowAt(0), 4), QStringLiteral("(unknown)"));
  }

  void invalidUtf8NameShownButKeptForIo() {
    const QString name = platform::FromNative(QByteArray("bad\xff.txt"));
    const QByteArray native = platform::ToNative(folder_ + name);
    FILE* f = fopen(native.constData(), "wb");
    QVERIFY(f);
    fclose(f);
    ListModel m;
    ListFill::Browse(&m, folder_, {});
    int found = -1;
    for (int i = 0; i < m.rowCount(); ++i)
      if (m.name(m.rowAt(i)) == name) found = i;
    QVERIFY(found >= 0);
    QCOMPARE(m.dataText(m.rowAt(found), 0), QStringLiteral("bad\uFFFD.txt"));
    QCOMPARE(platform::ToNative(m.path(m.rowAt(found))), native);
    // Command-line rows carry the byte itself, escaped, one entry one line.
    QString out;
    QTextStream stream(&out);
    browser::ListPrinter::Print(m, stream, false);
    stream.flush();
    QVERIFY2(out.contains(QStringLiteral("\nbad\\xFF.txt\ttxt\t")), qPrintable(out));
    remove(native.constData());
  }

  // "Path" of a find row, as the list shows it with and without "RelPath".
  void relativePaths_data() {
    QTest::addColumn<QStringList>("bases");
    QTest::addColumn<bool>("relative");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("path");
    const QStringList one{"/data/"};
    QTest::newRow("off") << one << false << "/data/a/b/" << "/data/a/b/";
    QTest::newRow("below the location") << one << true << "/data/a/b/" << "a/b/";
    QTest::newRow("the location itself") << one << true << "/data/" << "";
    QTest::newRow("a name that only begins alike") << one << true << "/database/x/" << "/database/x/";
    QTest::newRow("the longest of nested locations") << QStringList{"/", "/data/", "/data/a/"} << true << "/data/a/b/"
                                                     << "b/";
    QTest::newRow("no location") << QStringList{} << true << "/data/a/" << "/data/a/";
  }
  void relativePaths() {
    QFETCH(QStringList, bases);
    QFETCH(bool, relative);
    QFETCH(QString, folder);
    ListModel m;
    m.setMode(core::kModeFind, core::DefaultModeRecord(core::kModeFind));
    m.setPathBases(bases);
    m.setRelativePaths(relative);
    browser::RowBuilder(&m).add(listtest::Entry(QStringLiteral("f.txt")), folder);
    QTEST(m.dataText(m.rowAt(0), core::kSlotPath), "path");
    QCOMPARE(m.path(m.rowAt(0)), folder + QStringLiteral("f.txt"));  // the real path stays whole
  }

  // "@" in an argument stands for the test folder (a lone "@" for no folder at
  // all); without one the folder comes last.
  void command_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("firstLines");
    QTest::addColumn<QString>("err");
    QTest::newRow("name ascending") << QStringList{"--no-header", "--size-format", "1"} << 0
                                    << "sub.d\td\t0\t" << "Total: 2.00KB\n";
    QTest::newRow("header") << QStringList{} << 0 << "Name\tExt\tSize\tType\tCreated\tModified\tAccessed\tAttr\n"
                            << "Total: 2.00KB\n";
    QTest::newRow("by size descending, no group") << QStringList{"--no-header", "--sort", "size:desc", "--no-group"}
                                                  << 0 << "b.txt\ttxt\t2048\t" << "Total: 2.00KB\n";
    QTest::newRow("modified starts newest, folders first") << QStringList{"--no-header", "--sort", "Modified"} << 0
                                                           << "sub.d\t" << "Total: 2.00KB\n";
    QTest::newRow("modified ascending, files first") << QStringList{"--no-header", "--sort", "5:asc"} << 0
                                                     << "a.TXT\t" << "Total: 2.00KB\n";
    QTest::newRow("size format 9: grouped bytes") << QStringList{"--no-header", "--sort", "size:desc", "--no-group",
                                                               "--size-format", "9"}
                                                  << 0 << "b.txt\ttxt\t2,048\t" << "Total: 2.00KB\n";
    QTest::newRow("bad size format") << QStringList{"--size-format", "-1"} << 2 << ""
                                     << "quorvane list: --size-format takes a number from 0 to 99\n";
    QTest::newRow("bad column") << QStringList{"--sort", "Colour"} << 2 << ""
                                << "quorvane list: --sort: no column 'Colour'\n";
    QTest::newRow("no such folder") << QStringList{"@nothing-here"} << 2 << ""
                                    << "quorvane list: no such folder: @nothing-here\n";
    QTest::newRow("a file") << QStringList{"@b.txt"} << 2 << "" << "quorvane list: not a folder: @b.txt\n";
    QTest::newRow("no folder") << QStringList{"--no-header", "@"} << 2 << "" << "quorvane list: give one FOLDER\n";
  }
  void command() {
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QString, firstLines);
    QFETCH(QString, err);
    if (args.filter(u"@").isEmpty()) args << dir_.path();
    args.replaceInStrings(QStringLiteral("@"), folder_);
    args.removeAll(folder_);
    QString out, error;
    QCOMPARE(runList(args, &out, &error), status);
    QVERIFY2(firstLines.isEmpty() ? out.isEmpty() : out.startsWith(firstLines), qPrintable(out.left(200)));
    QCOMPARE(error, err.replace(u'@', folder_));
  }
};

QTEST_GUILESS_MAIN(tst_ListFill)
#include "tst_ListFill.moc"
