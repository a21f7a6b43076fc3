// The main window as the user meets it: browsing with a held key, a click
// during a fill, Find mode, Escape, closing during a job, the info refresh,
// and the settings round trip through a real start and exit.
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QSignalSpy>
#include <QSplitter>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "browser/BrowseFlow.h"
#include "browser/CRellTree.h"
#include "browser/CTabCtrl.h"
#include "browser/FindRunner.h"
#include "browser/MainMenus.h"
#include "browser/StatusLine.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "browser/list/RowBuilder.h"
#include "core/JobFlags.h"
#include "core/ListModes.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"
#include "preview/FileViewDocument.h"
#include "preview/FileViewTab.h"
#include "tests/TestSupport.h"

using browser::frmMain;
using core::JobFlags;

namespace {

struct Fill {
  QString folder;
  bool aborted;
};

// A started window on a settings file of its own, with a record of its fills.
struct Window {
  frmMain w;
  QList<Fill> fills;
  explicit Window(const QString& ini, const QString& start = QString())
      : w(frmMain::StartOptions{ini, start, true}) {
    QObject::connect(&w, &frmMain::ListFilled, &w, [this](const QString& f, bool aborted) { fills.append({f, aborted}); });
    w.Load();
    w.show();
    w.ShowStartFolder();
  }
  QAction* Action(const char* name) { return w.findChild<QAction*>(QString::fromLatin1(name)); }
  QSplitter* Splitter(const char* name) { return w.findChild<QSplitter*>(QString::fromLatin1(name)); }
};

void ClearJobFlags() {
  JobFlags::ClearAbort();
  JobFlags::ClearCancel();
  JobFlags::SetBusy(false);
  JobFlags::SetJobState(JobFlags::kNotStopped);
}

}  // namespace

class MainWindowTest : public QObject {
  Q_OBJECT

  QTemporaryDir dir_;
  QString root_;   // fixture folders
  QString many_;   // twenty sibling folders
  QString wide_;   // two hundred
  QString big_;    // a folder whose fill takes a while
  QString mixed_;  // files and a folder whose names interleave
  QString ini_;

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
    root_ = dir_.path() + QStringLiteral("/root/");
    many_ = root_ + QStringLiteral("many/");
    big_ = root_ + QStringLiteral("big/");
    wide_ = root_ + QStringLiteral("wide/");
    for (int i = 0; i < 200; ++i) QVERIFY(testsupport::MakeFolder(wide_ + QStringLiteral("w%1").arg(i, 3, 10, QLatin1Char('0'))));
    for (int i = 0; i < 20; ++i) {
      QVERIFY(testsupport::MakeFolder(many_ + QStringLiteral("d%1").arg(i, 2, 10, QLatin1Char('0'))));
      QVERIFY(testsupport::MakeFile(many_ + QStringLiteral("d%1/f.txt").arg(i, 2, 10, QLatin1Char('0')), "x"));
    }
    QVERIFY(testsupport::MakeFolder(root_ + QStringLiteral("small")));
    QVERIFY(testsupport::MakeFile(root_ + QStringLiteral("small/a.txt"), "hello"));
    QVERIFY(testsupport::MakeFile(root_ + QStringLiteral("small/b.txt"), "world"));
    mixed_ = root_ + QStringLiteral("mixed/");
    for (const char* f : {"a.txt", "c.txt"}) QVERIFY(testsupport::MakeFile(mixed_ + QLatin1String(f), "x"));
    QVERIFY(testsupport::MakeFolder(mixed_ + QStringLiteral("b")));
    QVERIFY(testsupport::MakeFolder(big_));
    for (int i = 0; i < 40000; ++i) {
      QFile f(big_ + QStringLiteral("file%1.dat").arg(i));
      QVERIFY(f.open(QIODevice::WriteOnly));
    }
  }

  void init() {
    ClearJobFlags();
    ini_ = dir_.path() + QStringLiteral("/ini%1/Quorvane.ini").arg(QTest::currentTestFunction());
  }
  void cleanup() { ClearJobFlags(); }

  void startsWithItsPartsAndTheStartFolder() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    QCOMPARE(win.fills[0].folder, root_ + QStringLiteral("small/"));
    QCOMPARE(win.w.list()->model().rowCount(), 2);
    QCOMPARE(win.w.tree()->CurrentPath(), root_ + QStringLiteral("small/"));
    QVERIFY(win.w.findChild<QTimer*>(QStringLiteral("tmrVersionDelay")));
    QVERIFY(win.w.statusLine()->driveText().startsWith(QStringLiteral("Drive (")));
    QVERIFY(win.w.windowTitle().contains(root_ + QStringLiteral("small/")));
    for (const char* name : {"menRenSpecial", "menCopyTo", "menMoveTo", "menSizeFormat", "menDateFormat", "menStyleTree",
                             "menStyleList", "menSort", "menTools", "menFavorites", "menHistory", "menHelp"})
      QVERIFY2(win.w.findChild<QMenu*>(QString::fromLatin1(name)), name);
    QCOMPARE(win.w.menus()->menSize.size(), 9);
    QCOMPARE(win.w.menus()->menSize[8]->text(), QStringLiteral("Clusters"));
    QCOMPARE(win.w.menus()->menListStyle[5]->text(), QStringLiteral("Column Width Auto-Adjustment"));
    QCOMPARE(win.Action("menShowPanel")->text(), QStringLiteral("Show &Panel"));
    QCOMPARE(win.Action("menAutoFind")->text(), QStringLiteral("&Automatic File Find when Browsing"));
    QCOMPARE(win.w.menus()->menSortCol.size(), 8);
    // Style bits 7 and 23 by default.
    QCOMPARE(win.w.tree()->styles(), 7);
    QCOMPARE(win.w.list()->styles(), 23);
    QVERIFY(win.Action("menListStyle4")->isChecked());
    QVERIFY(!win.Action("menListStyle3")->isChecked());
    // Features that are not here are not offered as working.
    QVERIFY(win.Action("menRenSpecial0")->isEnabled());
    QVERIFY(!win.w.tabs()->HasPage(browser::CTabCtrl::kTabGeneral));
  }

  void heldArrowFillsOnceForTheLastFolder_data() {
    QTest::addColumn<int>("count");
    QTest::newRow("20 folders") << 20;
    QTest::newRow("200 folders") << 200;
  }
  void heldArrowFillsOnceForTheLastFolder() {
    QFETCH(int, count);
    const QString parent = count == 20 ? many_ : wide_;
    auto name = [&](int i) {
      return (count == 20 ? QStringLiteral("d") : QStringLiteral("w")) + QStringLiteral("%1").arg(i, count == 20 ? 2 : 3, 10, QLatin1Char('0'));
    };
    Window win(ini_, parent + name(0));
    QTRY_COMPARE(win.fills.size(), 1);
    browser::CRellTree* tree = win.w.tree();
    tree->setFocus();
    for (int i = 1; i < count; ++i) {
      QTest::keyPress(tree, Qt::Key_Down);  // auto-repeat: presses without releases
      QTest::qWait(2);
    }
    QCOMPARE(tree->CurrentPath(), parent + name(count - 1) + u'/');
    QTest::qWait(6 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(win.fills.size(), 1);
    QTest::keyRelease(tree, Qt::Key_Down);
    QTRY_COMPARE(win.fills.size(), 2);
    QTest::qWait(4 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(win.fills.size(), 2);
    QCOMPARE(win.fills[1].folder, parent + name(count - 1) + u'/');
    QVERIFY(!win.fills[1].aborted);
  }

  void modifierHeldAtTheTick_data() {
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("delays");
    QTest::newRow("Meta") << int(Qt::Key_Meta) << false;
    QTest::newRow("right Super") << int(Qt::Key_Super_R) << false;
    QTest::newRow("Shift") << int(Qt::Key_Shift) << true;
    QTest::newRow("Control") << int(Qt::Key_Control) << true;
  }
  void modifierHeldAtTheTick() {
    QFETCH(int, key);
    QFETCH(bool, delays);
    Window win(ini_, many_ + QStringLiteral("d00"));
    QTRY_COMPARE(win.fills.size(), 1);
    browser::CRellTree* tree = win.w.tree();
    tree->setFocus();
    QTest::keyPress(tree, Qt::Key(key));
    QTest::keyClick(tree, Qt::Key_Down);
    QTest::qWait(5 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(win.fills.size(), delays ? 1 : 2);
    QTest::keyRelease(tree, Qt::Key(key));
    QTRY_COMPARE(win.fills.size(), 2);
    QCOMPARE(win.fills[1].folder, many_ + QStringLiteral("d01/"));
  }

  void clickDuringAFillAbortsItAndFillsOnTheTimer() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    browser::CRellTree* tree = win.w.tree();
    QTreeWidgetItem* small = tree->ItemOf(root_ + QStringLiteral("small/"));
    QVERIFY(small);
    bool clicked = false, timerArmed = false, filledAtOnce = false;
    // Fires at the first yield of the big fill.
    QTimer::singleShot(0, &win.w, [&] {
      QVERIFY(JobFlags::Busy());
      const auto before = win.fills.size();
      tree->scrollToItem(small);
      const QRect r = tree->visualItemRect(small);
      QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, QPoint(r.left() + 8, r.center().y()));
      clicked = true;
      timerArmed = win.w.flow()->browseTimer()->isActive();
      filledAtOnce = win.fills.size() != before;
      QVERIFY(JobFlags::AbortRequested());
    });
    QVERIFY(tree->SelectPath(big_));
    QVERIFY2(clicked, "the fill ended before it yielded");
    QVERIFY(timerArmed);
    QVERIFY(!filledAtOnce);
    QCOMPARE(win.fills.size(), 2);
    QCOMPARE(win.fills[1].folder, big_);
    QVERIFY(win.fills[1].aborted);
    QVERIFY(win.w.list()->model().rowCount() < 40000);
    QTRY_COMPARE(win.fills.size(), 3);
    QCOMPARE(win.fills[2].folder, root_ + QStringLiteral("small/"));
    QVERIFY(!win.fills[2].aborted);
    QCOMPARE(win.w.list()->model().rowCount(), 2);
  }

  void findModeKeepsItsRows() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    win.w.SwitchMode(core::kModeFind);
    browser::CRellList* list = win.w.list();
    list->beginFill();
    {
      browser::RowBuilder rows(&list->model());
      platform::FolderReader reader(many_);
      for (qsizetype i = 0; i < reader.count(); ++i) {
        platform::DirEntry e;
        if (reader.name(i).startsWith(u'.') || !reader.stat(i, &e)) continue;
        e.name = reader.name(i);
        rows.add(e, many_);
      }
    }
    list->finishFill();
    QCOMPARE(list->model().rowCount(), 20);
    QCOMPARE(list->model().columns().count(), 9);  // with "Path"

    QStringList autoFinds;
    win.w.SetAutoFindHandler([&](const QString& folder) { autoFinds.append(folder); });
    QVERIFY(win.w.tree()->SelectPath(many_ + QStringLiteral("d03")));
    QTest::qWait(4 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(win.fills.size(), 1);
    QCOMPARE(list->model().rowCount(), 20);
    QCOMPARE(win.w.mode(), int(core::kModeFind));
    QVERIFY(autoFinds.isEmpty());

    win.Action("menAutoFind")->trigger();
    QVERIFY(win.w.tree()->SelectPath(many_ + QStringLiteral("d04")));
    QCOMPARE(autoFinds, QStringList{many_ + QStringLiteral("d04/")});
    QCOMPARE(win.w.mode(), int(core::kModeFind));
  }

  void escapeOnlyAsksJobsToStop() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    const QString before = win.w.tree()->CurrentPath();
    win.w.list()->setFocus();
    QTest::keyClick(win.w.list(), Qt::Key_Escape);
    QVERIFY(JobFlags::AbortRequested());
    QVERIFY(JobFlags::CancelRequested());
    QCOMPARE(JobFlags::JobState(), int(JobFlags::kStoppedByUser));
    QVERIFY(win.w.isVisible());
    QCOMPARE(win.w.tree()->CurrentPath(), before);
    QCOMPARE(win.w.list()->model().rowCount(), 2);
    QTest::qWait(3 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(win.fills.size(), 1);
  }

  void closingDuringAJobStopsItFirstAndSavesOnce() {
    auto* win = new Window(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win->fills.size(), 1);
    bool firstCloseAccepted = true, visibleAfterRequest = false;
    int stateAtAbort = -1, savesDuringJob = -1;
    bool jobSawAbort = false;
    // A long job the way a find runs one: busy, polling the abort flag, yielding.
    QTimer::singleShot(0, &win->w, [&] {
      JobFlags::ClearAbort();
      JobFlags::SetBusy(true);
      QTimer::singleShot(20, &win->w, [&] {
        firstCloseAccepted = win->w.close();
        visibleAfterRequest = win->w.isVisible();
      });
      QElapsedTimer t;
      t.start();
      while (t.elapsed() < 5000 && !(jobSawAbort = JobFlags::AbortRequested())) QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
      stateAtAbort = JobFlags::JobState();
      savesDuringJob = win->w.settingsSaveCount();
      QTest::qWait(50);  // the job unwinds; the close must wait for it
      JobFlags::SetBusy(false);
    });
    QTRY_VERIFY_WITH_TIMEOUT(!win->w.isVisible(), 6000);
    QVERIFY(!firstCloseAccepted);
    QVERIFY(visibleAfterRequest);
    QVERIFY(jobSawAbort);
    QCOMPARE(stateAtAbort, int(JobFlags::kStoppedForClose));
    QCOMPARE(savesDuringJob, 0);
    QCOMPARE(win->w.settingsSaveCount(), 1);
    QVERIFY(QFile::exists(ini_));
    QVERIFY(win->w.close());
    QCOMPARE(win->w.settingsSaveCount(), 1);
    delete win;
  }

  void sameFileTwiceRefreshesThePanelOnce() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    QSignalSpy refresh(&win.w, &frmMain::InfoRefresh);
    const QString a = root_ + QStringLiteral("small/a.txt");
    Q_EMIT win.w.list()->FileSelected(a, false);
    QTRY_COMPARE(refresh.size(), 1);
    Q_EMIT win.w.list()->FileSelected(a, false);
    QTest::qWait(4 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(refresh.size(), 1);
    QCOMPARE(refresh[0][0].toString(), a);
    QCOMPARE(refresh[0][1].toInt(), win.w.tabs()->currentIndex());

    // Down held in the list: one refresh, after the release.
    win.w.list()->setFocusPosition(0);
    win.w.list()->setFocus();
    refresh.clear();
    QTest::keyPress(win.w.list(), Qt::Key_Down);
    QTest::qWait(4 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(refresh.size(), 0);
    QTest::keyRelease(win.w.list(), Qt::Key_Down);
    QTRY_COMPARE(refresh.size(), 1);
    QCOMPARE(refresh[0][0].toString(), root_ + QStringLiteral("small/b.txt"));
  }

  void formatChoicesWriteTheCurrentModesRecord() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    win.Action("menSize2")->trigger();
    win.Action("menDate3")->trigger();
    win.Action("menTime1")->trigger();
    const core::ModeRecord& browse = win.w.settings().lists[core::kModeBrowse];
    QCOMPARE(browse.sizeFormat, 2);
    QCOMPARE(browse.dateStyle, qint16(3));
    QCOMPARE(browse.timeStyle, qint16(1));
    QCOMPARE(win.w.list()->model().sizeFormat(), 2);
    QCOMPARE(win.w.list()->model().dateStyle(), 3);
    QCOMPARE(win.w.settings().lists[core::kModeDrives].sizeFormat, 0);
    QVERIFY(win.Action("menSize2")->isChecked());
    // The drives have their own record, and the menu shows it.
    QVERIFY(win.w.tree()->SelectPath(QString()));
    QCOMPARE(win.w.mode(), int(core::kModeDrives));
    QVERIFY(win.Action("menSize0")->isChecked());
    win.Action("menSize5")->trigger();
    QCOMPARE(win.w.settings().lists[core::kModeDrives].sizeFormat, 5);
    QVERIFY(win.w.tree()->SelectPath(root_ + QStringLiteral("small")));
    QCOMPARE(win.w.mode(), int(core::kModeBrowse));
    QVERIFY(win.Action("menSize2")->isChecked());
    QCOMPARE(win.w.list()->model().sizeFormat(), 2);
  }

  void settingsComeBackAfterARealStartAndExit() {
    QRect geometry;
    QString layout;
    {
      Window win(ini_, root_ + QStringLiteral("small"));
      QTRY_COMPARE(win.fills.size(), 1);
      win.w.setGeometry(90, 70, 720, 540);
      QTRY_COMPARE(win.w.geometry(), QRect(90, 70, 720, 540));
      win.Splitter("splitMain")->setSizes({230, 490});
      QList<int> panel = win.Splitter("splitPanel")->sizes();
      win.Splitter("splitPanel")->setSizes({panel[0] + panel[1] - 150, 150});
      win.Action("menSize4")->trigger();
      win.Action("menDate2")->trigger();
      win.Action("menTime3")->trigger();
      win.w.list()->model().setColumnOrder(u"Ext.40,Name,Attr.61");
      win.w.list()->model().columns().setVisible(3, false);  // Type
      win.w.list()->sortBy(5, false);                         // Modified, newest first
      win.w.list()->refresh();
      layout = win.w.list()->model().columnOrder();
      QVERIFY(win.w.tree()->SelectPath(QString()));  // the drives keep theirs
      win.Action("menSize6")->trigger();
      QVERIFY(win.w.tree()->SelectPath(root_ + QStringLiteral("small")));
      geometry = win.w.geometry();
      QVERIFY(win.w.close());
      QCOMPARE(win.w.settingsSaveCount(), 1);
    }
    QVERIFY(QFileInfo(ini_).size() >= 500);

    Window again(ini_);
    QTRY_COMPARE(again.fills.size(), 1);
    QCOMPARE(again.fills[0].folder, root_ + QStringLiteral("small/"));
    QCOMPARE(again.w.geometry(), geometry);
    QCOMPARE(again.Splitter("splitMain")->sizes().value(0), 230);
    QCOMPARE(again.Splitter("splitPanel")->sizes().value(1), 150);
    const browser::ListModel& m = again.w.list()->model();
    QCOMPARE(m.sizeFormat(), 4);
    QCOMPARE(m.dateStyle(), 2);
    QCOMPARE(m.timeStyle(), 3);
    QCOMPARE(m.columnOrder(), layout);
    QVERIFY(m.columnOrder().startsWith(QStringLiteral("Ext.40,Name.")));
    QVERIFY(!m.columns().column(3).visible);
    QCOMPARE(m.sortColumn(), 5);
    QVERIFY(m.sortDescending());
    QCOMPARE(again.w.settings().lists[core::kModeDrives].sizeFormat, 6);
    QVERIFY(again.Action("menSize4")->isChecked());
  }

  void panelAndStylesComeBack() {
    {
      Window win(ini_, root_ + QStringLiteral("small"));
      QTRY_COMPARE(win.fills.size(), 1);
      win.Action("menShowPanel")->trigger();
      QVERIFY(win.w.tabs()->isHidden());
      win.Action("menTreeStyle2")->trigger();  // lines off
      win.Action("menListStyle3")->trigger();  // highlight row on
      win.w.tabs()->setCurrentIndex(browser::CTabCtrl::kTabPreview);
      win.Action("menFavAdd")->trigger();
      win.Action("menFavAdd")->trigger();  // once is enough
      QCOMPARE(win.w.settings().favorites, QStringList{root_ + QStringLiteral("small/")});
      QVERIFY(win.w.close());
    }
    Window again(ini_);
    QTRY_COMPARE(again.fills.size(), 1);
    QVERIFY(again.w.tabs()->isHidden());
    QVERIFY(!again.Action("menShowPanel")->isChecked());
    QCOMPARE(again.w.tree()->styles(), 3);
    QCOMPARE(again.w.list()->styles(), 23 | 8);
    QCOMPARE(again.w.tabs()->currentIndex(), int(browser::CTabCtrl::kTabPreview));
    QAction* favorite = again.Action("menFav0");
    QVERIFY(favorite);
    QCOMPARE(favorite->text(), root_ + QStringLiteral("small/"));
    QVERIFY(again.w.tree()->SelectPath(many_));
    favorite->trigger();
    QCOMPARE(again.w.tree()->CurrentPath(), root_ + QStringLiteral("small/"));
    again.Action("menFavRemove")->trigger();
    QVERIFY(again.w.settings().favorites.isEmpty());
    QVERIFY(again.w.menus()->menFav.isEmpty());
  }

  void sortMenuAndResetToDefaults() {
    Window win(ini_, many_);
    QTRY_COMPARE(win.fills.size(), 1);
    browser::ListModel& m = win.w.list()->model();
    win.w.menus()->menSort->aboutToShow();
    QCOMPARE(win.w.menus()->menSortCol[0]->text(), QStringLiteral("Name"));
    win.Action("menSortCol0")->trigger();  // Name again: reversed
    QVERIFY(m.sortDescending());
    QCOMPARE(m.name(m.rowAt(0)), QStringLiteral("d19"));
    win.Action("menSortCol5")->trigger();
    QCOMPARE(m.sortColumn(), 5);
    m.setColumnOrder(u"Attr.10,Size");
    win.Action("menDefaultOrder")->trigger();
    QCOMPARE(m.columnOrder(), QString::fromLatin1(core::kListModes[core::kModeBrowse].defaultOrder) + u',');

    win.Action("menSize7")->trigger();
    win.Action("menShowPanel")->trigger();
    win.w.setGeometry(10, 10, 500, 400);
    win.w.ResetToDefaults();
    QCOMPARE(win.w.settings().lists[core::kModeBrowse].sizeFormat, 0);
    QCOMPARE(m.sizeFormat(), 0);
    QVERIFY(win.Action("menSize0")->isChecked());
    QVERIFY(!win.w.tabs()->isHidden());
    QVERIFY(win.w.geometry().width() <= 800);
    QVERIFY(win.w.geometry().width() > 500);
    QTRY_COMPARE(win.fills.size(), 2);  // the list is shown again in its default layout
    QCOMPARE(m.rowCount(), 20);
  }

  void aVanishedStartFolderFallsBackToHome() {
    const QString gone = dir_.path() + QStringLiteral("/gone/");
    QVERIFY(testsupport::MakeFolder(gone));
    {
      Window win(ini_, gone);
      QTRY_COMPARE(win.fills.size(), 1);
      QVERIFY(win.w.close());
    }
    QVERIFY(QDir(gone).removeRecursively());
    Window again(ini_);
    QTRY_COMPARE(again.fills.size(), 1);
    QCOMPARE(again.fills[0].folder, platform::WithSeparator(QDir::homePath()));
  }

  void aFailedSaveIsShownOnceAndTheWindowCloses() {
    // The settings folder cannot be made: a file stands in its place.
    const QString blocker = dir_.path() + QStringLiteral("/blocker");
    QVERIFY(testsupport::MakeFile(blocker, "not a folder"));
    Window win(blocker + QStringLiteral("/Quorvane.ini"), root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    QSignalSpy saved(&win.w, &frmMain::SettingsSaved);
    QVERIFY(win.w.close());
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved[0][0].toBool(), false);
    QVERIFY(win.w.statusLine()->statusText().startsWith(QStringLiteral("Settings not saved")));
    QVERIFY(win.w.close());
    QCOMPARE(saved.size(), 1);
  }

  // Whatever would refill the list while a job runs asks the job to stop
  // and leaves the fill to the browse timer.
  void noFillStartsWhileAJobRuns_data() {
    QTest::addColumn<QString>("action");
    QTest::newRow("Refresh") << "menRefresh";
    QTest::newRow("Reset to Defaults") << "reset";
    QTest::newRow("Sort Folders Apart") << "menSortFoldersApart";
    QTest::newRow("tree click") << "tree";
  }
  void noFillStartsWhileAJobRuns() {
    QFETCH(QString, action);
    Window win(ini_, mixed_);
    QTRY_COMPARE(win.fills.size(), 1);
    JobFlags::SetBusy(true);
    if (action == u"reset") {
      win.w.ResetToDefaults();
    } else if (action == u"tree") {
      QVERIFY(win.w.tree()->SelectPath(root_ + QStringLiteral("small")));
    } else {
      QAction* a = win.w.findChild<QAction*>(action);
      QVERIFY(a);
      a->trigger();
    }
    QTest::qWait(4 * browser::BrowseFlow::kDelayMs);
    QCOMPARE(win.fills.size(), 1);
    QVERIFY(JobFlags::AbortRequested());
    QCOMPARE(win.w.list()->model().rowCount(), 3);
    JobFlags::SetBusy(false);
    QTRY_COMPARE(win.fills.size(), 2);
  }

  // F5 during a real find: the find stops, its rows stay alone in Find mode,
  // and the folder is listed once the find has ended.
  void refreshDuringAFindWaitsForIt() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    win.w.findChild<QComboBox*>(QStringLiteral("cboNamed"))->setEditText(QStringLiteral("*.dat"));
    win.w.findChild<QComboBox*>(QStringLiteral("cboLookIn"))->setEditText(big_);
    bool pressed = false;
    QTimer::singleShot(0, &win.w, [&] {
      pressed = JobFlags::Busy();
      win.Action("menRefresh")->trigger();  // F5
    });
    QVERIFY(win.w.finder()->RunFind());
    QVERIFY2(pressed, "the find ended before it yielded");
    QCOMPARE(win.fills.size(), 1);
    QCOMPARE(win.w.mode(), int(core::kModeFind));
    const browser::ListModel& m = win.w.list()->model();
    for (int i = 0; i < m.rowCount(); ++i) QVERIFY(m.path(m.rowAt(i)).startsWith(big_ + QStringLiteral("file")));
    QVERIFY(win.w.statusLine()->statusText().endsWith(QStringLiteral("  ABORTED")));
    QTRY_COMPARE(win.fills.size(), 2);
    QCOMPARE(win.w.mode(), int(core::kModeBrowse));
    QCOMPARE(m.rowCount(), 2);
  }

  // Values the menus do not offer and the blank of an empty layout survive
  // a start and an exit as they were written; a blank layout is the default.
  void oddStoredValuesSurviveARestart() {
    QVERIFY(QDir().mkpath(QFileInfo(ini_).absolutePath()));
    QByteArray text = "[ListBrowse]\nNumStyle=12\nVisList=1\n[ListFind]\nPosList= \nDateStyle=9\n"
                      "[ListDrives]\nPosList= \n[Settings]\nSortFoldersApart=0\n; ";
    text += QByteArray(600, '-') + '\n';
    QVERIFY(testsupport::MakeFile(ini_, text));
    {
      Window win(ini_, mixed_);
      QTRY_COMPARE(win.fills.size(), 1);
      const browser::ListModel& m = win.w.list()->model();
      QCOMPARE(m.sizeFormat(), 12);
      QCOMPARE(m.columns().visibleInOrder().size(), size_t(8));  // a short VisList leaves the rest shown
      // Folders apart off: one name order for folders and files.
      QCOMPARE(m.name(m.rowAt(0)) + m.name(m.rowAt(1)) + m.name(m.rowAt(2)), QStringLiteral("a.txtbc.txt"));
      win.w.SwitchMode(core::kModeFind);
      QVERIFY2(m.columnOrder().startsWith(QStringLiteral("Name.100,Ext.38,Path.100,")), qPrintable(m.columnOrder()));
      win.w.SwitchMode(core::kModeBrowse);
      QVERIFY(win.w.close());
    }
    const QByteArray saved = [&] {
      QFile f(ini_);
      return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    for (const char* line : {"\nNumStyle=12\n", "\nVisList=1\n", "\nPosList= \n", "\nDateStyle=9\n", "\nSortFoldersApart=0\n"})
      QVERIFY2(saved.contains(line), line);
  }

  // F2 renames through the no-clobber rename; refusals are shown.
  void renameInTheList_data() {
    QTest::addColumn<QString>("newName");
    QTest::addColumn<QString>("status");  // start of the status text; empty: renamed
    QTest::newRow("renamed") << "d.txt" << "";
    QTest::newRow("taken") << "c.txt" << "Cannot rename a.txt: \"c.txt\" already exists.";
  }
  void renameInTheList() {
    QFETCH(QString, newName);
    QFETCH(QString, status);
    const QString folder = dir_.path() + QStringLiteral("/ren-%1/").arg(QString::fromLatin1(QTest::currentDataTag()).replace(u' ', u'-'));
    QVERIFY(testsupport::MakeFile(folder + QStringLiteral("a.txt"), "aaa"));
    QVERIFY(testsupport::MakeFile(folder + QStringLiteral("c.txt"), "ccc"));
    Window win(ini_, folder);
    QTRY_COMPARE(win.fills.size(), 1);
    browser::CRellList* list = win.w.list();
    const browser::ListModel& m = list->model();
    for (int p = 0; p < m.rowCount(); ++p)
      if (m.name(m.rowAt(p)) == u"a.txt") list->setFocusPosition(p);
    list->setFocus();
    QTest::keyClick(list, Qt::Key_F2);
    auto* editor = list->findChild<QLineEdit*>(QStringLiteral("txtRename"));
    QVERIFY(editor);
    editor->setText(newName);
    QString box;
    QTimer::singleShot(200, [&box] {
      if (auto* b = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
        box = b->text();
        b->accept();
      }
    });
    QTest::keyClick(editor, Qt::Key_Return);
    const bool renamed = status.isEmpty();
    QCOMPARE(QFile::exists(folder + QStringLiteral("a.txt")), !renamed);
    QCOMPARE(m.name(m.rowAt(list->focusPosition())), renamed ? newName : QStringLiteral("a.txt"));
    if (renamed) return;
    QCOMPARE(win.w.statusLine()->statusText(), status);
    QTRY_COMPARE(box, status);
  }

  // The right-click menu offers the File menu's commands for what was hit.
  void rightClickOffersTheFileCommands_data() {
    QTest::addColumn<bool>("onRow");
    QTest::addColumn<QStringList>("items");
    QTest::newRow("a file") << true
                            << QStringList{"Open", "Rename", "Cut", "Copy", "Copy To", "Move To", "Delete", "Properties", "Copy Info"};
    QTest::newRow("empty space") << false << QStringList{"Paste", "New Folder", "New Text File"};
  }
  void rightClickOffersTheFileCommands() {
    QFETCH(bool, onRow);
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    browser::CRellList* list = win.w.list();
    QStringList shown;
    bool popped = false;
    QTimer::singleShot(100, [&] {
      if (auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
        popped = true;
        for (QAction* a : menu->actions())
          if (!a->isSeparator()) shown << a->text().section(u'\t', 0, 0).remove(u'&');
        menu->close();
      }
    });
    const QPoint at(20, onRow ? list->rowHeight() / 2 : list->viewport()->height() - 4);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, list->viewport()->mapToGlobal(at));
    QApplication::sendEvent(list->viewport(), &event);
    QTRY_VERIFY(popped);
    QTEST(shown, "items");
  }

  // The selected row takes the system's selection colour by default.
  void selectedRowsUseTheSystemColours() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    const QColor highlight = win.w.palette().color(QPalette::Highlight);
    const quint32 ref = quint32(highlight.red()) | quint32(highlight.green()) << 8 | quint32(highlight.blue()) << 16;
    QCOMPARE(quint32(win.w.settings().general.selRowColor), ref);
    QCOMPARE(win.w.list()->selectedRowColor(), highlight);
    QCOMPARE(win.w.list()->SelectedTextColor(), win.w.palette().color(QPalette::HighlightedText));
  }

  // A file selected while the File View tab shows is loaded into it.
  void infoRefreshReachesTheFileView() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    win.w.tabs()->setCurrentIndex(browser::CTabCtrl::kTabFileView);
    auto* view = win.w.findChild<preview::FileViewTab*>(QStringLiteral("FileViewTab"));
    QVERIFY(view);
    Q_EMIT win.w.list()->FileSelected(root_ + QStringLiteral("small/a.txt"), true);
    QTRY_VERIFY(!view->document().fileText().isEmpty());
  }

  void historyGoesBackAndForth() {
    Window win(ini_, root_ + QStringLiteral("small"));
    QTRY_COMPARE(win.fills.size(), 1);
    QVERIFY(win.w.tree()->SelectPath(many_));
    // A fresh list starts at its first row, whatever order the disk gave.
    QCOMPARE(win.w.list()->focusPosition(), 0);
    QCOMPARE(win.w.list()->focusPath(), many_ + QStringLiteral("d00"));
    QVERIFY(win.w.tree()->SelectPath(many_ + QStringLiteral("d05")));
    QCOMPARE(win.fills.size(), 3);
    win.w.tree()->setFocus();
    QTest::keyClick(win.w.tree(), Qt::Key_Left, Qt::AltModifier);
    QTRY_COMPARE(win.fills.size(), 4);
    QCOMPARE(win.fills[3].folder, many_);
    QCOMPARE(win.w.tree()->CurrentPath(), many_);
    win.Action("menHistBack")->trigger();
    QCOMPARE(win.w.tree()->CurrentPath(), root_ + QStringLiteral("small/"));
    win.Action("menHistForward")->trigger();
    win.Action("menHistForward")->trigger();
    QCOMPARE(win.w.tree()->CurrentPath(), many_ + QStringLiteral("d05/"));
    QVERIFY(!win.Action("menHistForward")->isEnabled());
    QCOMPARE(win.w.history().entries().size(), 3);
  }
};

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"
