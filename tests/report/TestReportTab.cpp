// The "Report" tab in the main window writes its reports to files.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include "browser/CTabCtrl.h"
#include "browser/ReportRunner.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "report/ReportFolderPage.h"
#include "report/ReportListPage.h"
#include "report/ReportOutputBar.h"
#include "report/ReportPrinter.h"
#include "tests/TestSupport.h"

using browser::frmMain;

class TestReportTab : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;

  static QString ReadAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
  }

 private Q_SLOTS:
  void writesReports() {
    testsupport::PinLocale();
    const QString folder = dir_.path() + QStringLiteral("/data/");
    const QString out = dir_.path() + QStringLiteral("/out/");
    QVERIFY(testsupport::MakeFile(folder + "a, b.txt", "12345"));
    QVERIFY(testsupport::MakeFile(folder + "sub/c.txt", "1"));
    QVERIFY(testsupport::MakeFolder(out));
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q.ini"), folder, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    QTRY_COMPARE(w.list()->model().rowCount(), 2);
    auto* runner = w.findChild<browser::ReportRunner*>();
    QVERIFY(runner);
    w.tabs()->setCurrentIndex(browser::CTabCtrl::kTabReport);

    // Current Folder: a recursive dump under a date-stamped name, no dialog.
    w.tabs()->reportTabs()->setCurrentIndex(browser::CTabCtrl::kRepFolder);
    report::ReportFolderPage* folderPage = runner->folderPage();
    QVERIFY(folderPage->isVisible());
    folderPage->optRepDump->setChecked(true);
    folderPage->chkCopyRecurse->setChecked(true);
    folderPage->output->findChild<QCheckBox*>("chkRepOFDate")->setChecked(true);
    QVERIFY(w.settings().report.copyRecurse && w.settings().settings.repOFDate.on());
    w.settings().report.path = out;
    w.settings().report.file = QStringLiteral("tree.txt");
    QTest::mouseClick(folderPage->findChild<QPushButton*>("cmdRepFile"), Qt::LeftButton);
    const QStringList written = QDir(out).entryList(QDir::Files);
    QCOMPARE(written.size(), 1);
    QVERIFY2(QRegularExpression("^tree_\\d{4}-\\d\\d-\\d\\d_\\d\\d-\\d\\d-\\d\\d\\.txt$").match(written[0]).hasMatch(),
             qPrintable(written[0]));
    const QString dump = ReadAll(out + written[0]);
    QVERIFY2(dump.contains(" Folder of " + folder + "sub\n") && dump.contains("a, b.txt\n") &&
                 dump.endsWith("Total: 2 files, 6 bytes, 1 folder\n"),
             qPrintable(dump));

    // Current List: CSV of the selected row through the file chooser.
    w.tabs()->reportTabs()->setCurrentIndex(browser::CTabCtrl::kRepList);
    report::ReportListPage* listPage = runner->listPage();
    listPage->output->findChild<QCheckBox*>("chkRepOFDate")->setChecked(false);
    listPage->findChild<QRadioButton*>("optSep2")->setChecked(true);
    listPage->chkCopyOnlySel->setChecked(true);
    QCOMPARE(w.settings().report.optSep, qint16(2));
    QString proposed;
    runner->SetFileChooser([&](const QString& p, bool) {
      proposed = p;
      return out + QStringLiteral("list.csv");
    });
    for (int p = 0; p < w.list()->model().rowCount(); ++p)
      if (w.list()->model().name(w.list()->model().rowAt(p)) == u"a, b.txt") w.list()->model().toggleSelectedAt(p);
    QTest::mouseClick(listPage->findChild<QPushButton*>("cmdRepFile"), Qt::LeftButton);
    QCOMPARE(proposed, out + QStringLiteral("tree.txt"));  // the last folder and name
    const QStringList csv = ReadAll(out + "list.csv").split(u'\n');
    QCOMPARE(csv.size(), 3);
    QVERIFY2(csv[1].startsWith(QStringLiteral("\"a, b.txt\",txt,")), qPrintable(csv[1]));
    QCOMPARE(w.settings().report.file, QStringLiteral("list.csv"));

    // The printer takes the same text; print to PDF needs no printer.
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(out + "report.pdf");
    report::ReportPrinter::Print(dump, QStringLiteral("Report"), &printer);
    QVERIFY(ReadAll(out + "report.pdf").startsWith(QStringLiteral("%PDF")));

    // Copy Info of the selection.
    w.findChild<QAction*>("menCopyInfo")->trigger();
    QVERIFY2(QApplication::clipboard()->text().startsWith(QStringLiteral("a, b.txt\t5 bytes\t")),
             qPrintable(QApplication::clipboard()->text()));
  }
};

QTEST_MAIN(TestReportTab)
#include "TestReportTab.moc"
