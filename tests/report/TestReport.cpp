// Folder reports, list export, report files and file info texts over a
// fixture tree with awkward names and a versioned library.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "../fileinfo/VersionFixtures.h"
#include "browser/list/ListFill.h"
#include "browser/list/ListModel.h"
#include "core/DateStyles.h"
#include "core/JobFlags.h"
#include "core/ListModes.h"
#include "core/Settings.h"
#include "platform/FileTime.h"
#include "report/FileInfoText.h"
#include "report/FolderReport.h"
#include "report/ListExport.h"
#include "report/ReportFile.h"
#include "report/TextReportSink.h"
#include "tests/TestSupport.h"

using report::ReportResult;

Q_DECLARE_METATYPE(ReportResult)

namespace {

// Stops a report at its n-th write (refusing it) or at its n-th folder (Escape).
class StoppingSink : public report::TextReportSink {
 public:
  StoppingSink(int failWrite, int abortAtFolder) : failWrite_(failWrite), abortAt_(abortAtFolder) {}
  bool write(QStringView text) override {
    if (++writes_ == failWrite_) return false;
    return TextReportSink::write(text);
  }
  void progress(const QString&) override {
    if (++folders_ == abortAt_) core::JobFlags::RequestAbort();
  }

 private:
  int failWrite_, abortAt_;
  int writes_ = 0, folders_ = 0;
};

QString ReadAll(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QStringLiteral("<missing>");
}

}  // namespace

class TestReport : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;
  QString root_;

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    core::SetupDateStyles();
    root_ = dir_.path() + QStringLiteral("/root");
    using S = QVector<QPair<QString, QString>>;
    const S strings = {{"CompanyName", "Acme"}, {"FileVersion", "1.02 beta"}};
    QVERIFY(testsupport::MakeFile(root_ + "/lib.dll", fixtures::WrapPe(fixtures::Block(true, {}, {{"040904B0", strings}},
                                                                                          {{0x409, 1200}}),
                                                                        false)));
    QVERIFY(testsupport::MakeFile(root_ + "/file1.txt", "0123456789"));
    QVERIFY(testsupport::MakeFile(root_ + "/tab\tname", "abc"));
    QVERIFY(testsupport::MakeFile(root_ + "/new\nline", "x"));
    QVERIFY(testsupport::MakeFile(root_ + "/b/deep/x.txt", "12345"));
    QVERIFY(testsupport::MakeFolder(root_ + "/A"));
    QVERIFY(testsupport::MakeFolder(root_ + "/c"));
    // A name that is not valid UTF-8.
    const QByteArray bad = QFile::encodeName(root_) + "/caf\xE9";
    const int fd = ::open(bad.constData(), O_CREAT | O_WRONLY, 0644);
    QVERIFY(fd >= 0 && ::write(fd, "z", 1) == 1);
    ::close(fd);
    const QDateTime t(QDate(2024, 3, 5), QTime(14, 7, 9), Qt::UTC);
    for (const char* p : {"/lib.dll", "/file1.txt", "/tab\tname", "/new\nline", "/b/deep/x.txt", "/b/deep", "/b", "/A",
                          "/c", ""})
      QVERIFY(testsupport::SetTimes(root_ + QLatin1String(p), t, t));
    struct timespec times[2] = {{1709647629, 0}, {1709647629, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, bad.constData(), times, 0), 0);
  }

  void cleanupTestCase() { ::unlink((QFile::encodeName(root_) + "/caf\xE9").constData()); }

  void folderReport_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("recurse");
    QTest::addColumn<bool>("versions");
    QTest::addColumn<bool>("fixed");
    QTest::addColumn<QString>("expected");
    const int tree = report::FolderReportOptions::kTree, dump = report::FolderReportOptions::kDump;
    QTest::newRow("tree, this folder") << tree << false << false << false
                                       << "@\n"
                                          "\u251C\u2500\u2500 A\n"
                                          "\u251C\u2500\u2500 b\n"
                                          "\u2514\u2500\u2500 c\n"
                                          "\n3 folders\n";
    QTest::newRow("tree, subfolders") << tree << true << false << false
                                      << "@\n"
                                         "\u251C\u2500\u2500 A\n"
                                         "\u251C\u2500\u2500 b\n"
                                         "\u2502   \u2514\u2500\u2500 deep\n"
                                         "\u2514\u2500\u2500 c\n"
                                         "\n4 folders\n";
    QTest::newRow("dump, fixed versions") << dump << false << true << true
                                          << " Folder of @\n\n"
                                             "3/5/2024 14:07:09    <DIR>            A\n"
                                             "3/5/2024 14:07:09    <DIR>            b\n"
                                             "3/5/2024 14:07:09    <DIR>            c\n"
                                             "3/5/2024 14:07:09                  1  caf\\xE9\n"
                                             "3/5/2024 14:07:09                 10  file1.txt\n"
                                             "3/5/2024 14:07:09                LIB  lib.dll  ver 1.02.03.04\n"
                                             "3/5/2024 14:07:09                  1  new\\nline\n"
                                             "3/5/2024 14:07:09                  3  tab\\tname\n"
                                             "     5 files, LIBSUM bytes, 3 folders\n\n"
                                             "Total: 5 files, LIBSUM bytes, 3 folders\n";
    QTest::newRow("dump, string versions, subfolders")
        << dump << true << true << false
        << " Folder of @\n\n"
           "3/5/2024 14:07:09    <DIR>            A\n"
           "3/5/2024 14:07:09    <DIR>            b\n"
           "3/5/2024 14:07:09    <DIR>            c\n"
           "3/5/2024 14:07:09                  1  caf\\xE9\n"
           "3/5/2024 14:07:09                 10  file1.txt\n"
           "3/5/2024 14:07:09                LIB  lib.dll  ver 1.02 beta\n"
           "3/5/2024 14:07:09                  1  new\\nline\n"
           "3/5/2024 14:07:09                  3  tab\\tname\n"
           "     5 files, LIBSUM bytes, 3 folders\n\n"
           " Folder of @/A\n\n"
           "     0 files, 0 bytes, 0 folders\n\n"
           " Folder of @/b\n\n"
           "3/5/2024 14:07:09    <DIR>            deep\n"
           "     0 files, 0 bytes, 1 folder\n\n"
           " Folder of @/b/deep\n\n"
           "3/5/2024 14:07:09                  5  x.txt\n"
           "     1 file, 5 bytes, 0 folders\n\n"
           " Folder of @/c\n\n"
           "     0 files, 0 bytes, 0 folders\n\n"
           "Total: 6 files, LIBSUM5 bytes, 4 folders\n";
  }
  void folderReport() {
    QFETCH(int, kind);
    QFETCH(bool, recurse);
    QFETCH(bool, versions);
    QFETCH(bool, fixed);
    QFETCH(QString, expected);
    const qint64 lib = QFileInfo(root_ + "/lib.dll").size();
    expected.replace(u'@', root_)
        .replace(QStringLiteral("LIBSUM5"), QLocale().toString(lib + 20))
        .replace(QStringLiteral("LIBSUM"), QLocale().toString(lib + 15))
        .replace(QStringLiteral("  LIB"), QString::number(lib).rightJustified(5));
    report::TextReportSink sink;
    QCOMPARE(report::FolderReport::Run(root_, {kind, recurse, versions, fixed}, sink), ReportResult::kDone);
    QCOMPARE(sink.text(), expected);
    QVERIFY(!core::JobFlags::Busy());
  }

  // Escape and a failing output stop the report; Escape marks the end.
  void stops_data() {
    QTest::addColumn<int>("failWrite");
    QTest::addColumn<int>("abortAtFolder");
    QTest::addColumn<ReportResult>("result");
    QTest::addColumn<QString>("ending");
    QTest::newRow("Escape entering the second folder") << 0 << 2 << ReportResult::kAborted << "3 folders\n\n  ABORTED\n";
    QTest::newRow("Escape at once") << 0 << 1 << ReportResult::kAborted << "  ABORTED\n";
    QTest::newRow("write refused") << 1 << 0 << ReportResult::kWriteFailed << "";
  }
  void stops() {
    QFETCH(int, failWrite);
    QFETCH(int, abortAtFolder);
    QFETCH(ReportResult, result);
    QFETCH(QString, ending);
    StoppingSink sink(failWrite, abortAtFolder);
    QCOMPARE(report::FolderReport::Run(root_, {report::FolderReportOptions::kDump, true, false, false}, sink), result);
    QVERIFY2(ending.isEmpty() ? sink.text().isEmpty() : sink.text().endsWith(ending), qPrintable(sink.text()));
    if (abortAtFolder == 1) QCOMPARE(sink.text(), ending);
    QVERIFY(!sink.text().contains(QStringLiteral("Total:")));
    core::JobFlags::ClearAbort();
  }

  void listExport_data() {
    QTest::addColumn<int>("separator");
    QTest::addColumn<QString>("own");
    QTest::addColumn<bool>("headers");
    QTest::addColumn<bool>("onlySelected");
    QTest::addColumn<QString>("head");
    QTest::addColumn<QString>("expected");
    const QString rows = "A\t0\nb\t0\nc\t0\ncaf\uFFFD\t1\nfile1.txt\t10\nlib.dll\tLIB\n\"new\nline\"\t1\n\"tab\tname\"\t3\n";
    QTest::newRow("tab, header") << 0 << "" << true << false << "" << "Name\tSize\n" + rows;
    QTest::newRow("comma, only selected") << 2 << "" << false << true << ""
                                          << "file1.txt,10\n\"new\nline\",1\ntab\tname,3\n";
    QTest::newRow("semicolon, specs quoted where needed")
        << 1 << "" << true << true << "Location(s)\r\n /x;y\r\nResults: 3 objects\r\n"
        << "Location(s)\n\" /x;y\"\nResults: 3 objects\n\nName;Size\nfile1.txt;10\n\"new\nline\";1\ntab\tname;3\n";
    QTest::newRow("own separator") << 4 << " | " << true << true << ""
                                   << "Name | Size\nfile1.txt | 10\n\"new\nline\" | 1\ntab\tname | 3\n";
    QTest::newRow("own separator's characters quoted") << 4 << "a" << true << true << ""
                                                       << "\"Name\"aSize\nfile1.txta10\n\"new\nline\"a1\n\"tab\tname\"a3\n";
    QTest::newRow("a quote is no separator") << 4 << "\"" << false << true << "" << "file1.txt\t10\n\"new\nline\"\t1\n\"tab\tname\"\t3\n";
    QTest::newRow("empty own separator is a tab") << 4 << "" << false << true << "" << "file1.txt\t10\n\"new\nline\"\t1\n\"tab\tname\"\t3\n";
    QTest::newRow("fixed width, escaped, numbers right")
        << 3 << "" << true << true << "Date: 1/2/2025 10:00:00\r\n"
        << "Date: 1/2/2025 10:00:00\n\nName       Size\nfile1.txt    10\nnew\\nline     1\ntab\\tname     3\n";
  }
  void listExport() {
    QFETCH(int, separator);
    QFETCH(QString, own);
    QFETCH(bool, headers);
    QFETCH(bool, onlySelected);
    QFETCH(QString, head);
    QFETCH(QString, expected);
    browser::ListModel model;
    model.setMode(core::kModeBrowse, core::DefaultModeRecord(core::kModeBrowse));
    model.setVisibility(u"10100000");  // Name, Size
    model.setFormats(1, 0, 0);         // plain byte counts
    model.beginFill();
    QCOMPARE(browser::ListFill::Browse(&model, root_, {}), browser::FillResult::kDone);
    model.endFill();
    model.sortAgain();
    for (int p = 0; p < model.rowCount(); ++p)
      if (QStringList{"file1.txt", "new\nline", "tab\tname"}.contains(model.name(model.rowAt(p)))) model.toggleSelectedAt(p);
    report::ListExportOptions o;
    o.separator = separator;
    o.ownSeparator = own;
    o.headers = headers;
    o.onlySelected = onlySelected;
    if (head.startsWith(u"Date")) o.dateLine = head.trimmed();
    else o.specs = head;
    report::TextReportSink sink;
    QCOMPARE(report::ListExport::Run(model, o, sink), ReportResult::kDone);
    expected.replace(QStringLiteral("LIB"), QString::number(QFileInfo(root_ + "/lib.dll").size()));
    QCOMPARE(sink.text(), expected);
  }

  // Replacing is all or nothing; appending cuts a failed tail back; a taken
  // stamped name is never reused. The size limit stands in for a full disk.
  void files_data() {
    QTest::addColumn<bool>("append");
    QTest::addColumn<qint64>("limit");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("expected");
    QTest::newRow("replace") << false << qint64(0) << true << "new";
    QTest::newRow("append") << true << qint64(0) << true << "earlier\nnew";
    QTest::newRow("replace, disk full") << false << qint64(200000) << false << "earlier\n";
    QTest::newRow("append, disk full") << true << qint64(200000) << false << "earlier\n";
  }
  void files() {
    QFETCH(bool, append);
    QFETCH(qint64, limit);
    QFETCH(bool, ok);
    QFETCH(QString, expected);
    const QString path = dir_.path() + QStringLiteral("/out/report.txt");
    QVERIFY(testsupport::MakeFile(path, "earlier\n"));
    const QString content = limit ? QString(400000, u'x') : QStringLiteral("new");
    struct rlimit old {};
    getrlimit(RLIMIT_FSIZE, &old);
    if (limit) {
      std::signal(SIGXFSZ, SIG_IGN);
      struct rlimit small = old;
      small.rlim_cur = rlim_t(limit);
      QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    report::ReportFile file;
    QVERIFY(file.open(path, append));
    file.write(content);
    const bool committed = file.commit();
    setrlimit(RLIMIT_FSIZE, &old);
    QCOMPARE(committed, ok);
    QCOMPARE(file.error().isEmpty(), ok);
    QCOMPARE(ReadAll(path), expected);
    QCOMPARE(QDir(dir_.path() + "/out").entryList(QDir::Files | QDir::Hidden).size(), 1);  // no temporary left
  }

  void proposedNames() {
    const QDateTime when(QDate(2026, 11, 24), QTime(8, 30, 5));
    const QString out = dir_.path() + QStringLiteral("/names/");
    QVERIFY(testsupport::MakeFolder(out));
    QCOMPARE(report::ReportFile::ProposedPath(out, "", false, when), out + "Report.txt");
    QCOMPARE(report::ReportFile::ProposedPath(out, "list.csv", true, when), out + "list_2026-11-24_08-30-05.csv");
    QVERIFY(testsupport::MakeFile(out + "list_2026-11-24_08-30-05.csv", "taken"));
    QCOMPARE(report::ReportFile::ProposedPath(out, "list.csv", true, when), out + "list_2026-11-24_08-30-05 (2).csv");
    report::ReportFile file;
    QVERIFY(!file.open(dir_.path() + "/no/such/folder/r.txt", false));
    QVERIFY(file.error().contains("Cannot write"));
  }

  void fileInfo() {
    const QStringList paths{root_ + "/lib.dll", root_ + "/tab\tname"};
    const QString lib = QLocale().toString(QFileInfo(root_ + "/lib.dll").size());
    QCOMPARE(report::FileInfoText::Compact(paths, true),
             "lib.dll\t" + lib + " bytes\t3/5/2024 14:07:09\tver 1.02.03.04\ntab\\tname\t3 bytes\t3/5/2024 14:07:09\n");
    const QString extended = report::FileInfoText::Extended(paths, false);
    for (const char* line : {"Path: @/lib.dll\n", "Size: LIB bytes\n", "Modified: 3/5/2024 14:07:09\n",
                             "Attributes: ----A---\n", "Version: ver 1.02 beta\n", "Company Name: Acme\n",
                             "\n\nPath: @/tab\\tname\n", "Version: [No version info contained]\n"})
      QVERIFY2(extended.contains(QString::fromUtf8(line).replace(u'@', root_).replace("LIB", lib)), line);
  }
};

QTEST_GUILESS_MAIN(TestReport)
#include "TestReport.moc"
