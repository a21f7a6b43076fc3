// The window's own widgets: the folder tree, the key tracker, the status
// line's job display and the tab strip.
#include <QApplication>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "browser/CRellTree.h"
#include "browser/CTabCtrl.h"
#include "browser/KeyHeldTracker.h"
#include "browser/StatusLine.h"
#include "tests/TestSupport.h"

using namespace browser;

class WindowWidgetsTest : public QObject {
  Q_OBJECT

  QTemporaryDir dir_;
  QString root_;

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
    root_ = dir_.path() + u'/';
    for (const char* f : {"one/a", "one/b/deep", "two", "Three"}) QVERIFY(testsupport::MakeFolder(root_ + QLatin1String(f)));
    QVERIFY(testsupport::MakeFile(root_ + QStringLiteral("two/file.txt"), "x"));
  }

  void selectPathOpensTheWay() {
    CRellTree tree;
    tree.LoadVolumes();
    QSignalSpy spy(&tree, &CRellTree::FolderSelected);
    QVERIFY(tree.SelectPath(root_ + QStringLiteral("one/b")));  // no trailing "/" given
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy[0][0].toString(), root_ + QStringLiteral("one/b/"));
    QCOMPARE(spy[0][1].toBool(), false);
    QCOMPARE(tree.CurrentPath(), root_ + QStringLiteral("one/b/"));
    QTreeWidgetItem* one = tree.ItemOf(root_ + QStringLiteral("one/"));
    QVERIFY(one && one->isExpanded());
    QCOMPARE(one->childCount(), 2);
    // Folders only, sorted without regard to case.
    QTreeWidgetItem* top = tree.ItemOf(root_);
    QVERIFY(top);
    QStringList names;
    for (int i = 0; i < top->childCount(); ++i) names.append(top->child(i)->text(0));
    QCOMPARE(names, (QStringList{"one", "Three", "two"}));
    // The leaf found empty by the background probe loses its expander.
    QTRY_VERIFY(!tree.probing());
    QCOMPARE(tree.ItemOf(root_ + QStringLiteral("two/"))->childIndicatorPolicy(),
             QTreeWidgetItem::DontShowIndicatorWhenChildless);
    QVERIFY(tree.SelectPath(QString()));  // the drives
    QCOMPARE(spy.last()[0].toString(), QString());
  }

  void keyboardSelectionsAreFlagged() {
    CRellTree tree;
    tree.LoadVolumes();
    tree.show();
    QVERIFY(tree.SelectPath(root_ + QStringLiteral("one/a/")));
    QSignalSpy spy(&tree, &CRellTree::FolderSelected);
    QTest::keyClick(&tree, Qt::Key_Down);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(spy[0][0].toString(), root_ + QStringLiteral("one/b/"));
    QCOMPARE(spy[0][1].toBool(), true);
    // A mouse click is not a keyboard selection.
    QTreeWidgetItem* two = tree.ItemOf(root_ + QStringLiteral("two/"));
    QVERIFY(two);
    tree.scrollToItem(two);
    const QRect r = tree.visualItemRect(two);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, QPoint(r.left() + 8, r.center().y()));
    QCOMPARE(spy.size(), 2);
    QCOMPARE(spy[1][0].toString(), root_ + QStringLiteral("two/"));
    QCOMPARE(spy[1][1].toBool(), false);
  }

  void refreshKeepsWhatIsThere() {
    QTemporaryDir dir;
    const QString r = dir.path() + u'/';
    QVERIFY(testsupport::MakeFolder(r + QStringLiteral("keep/inner")));
    QVERIFY(testsupport::MakeFolder(r + QStringLiteral("gone")));
    CRellTree tree;
    tree.LoadVolumes();
    QVERIFY(tree.SelectPath(r + QStringLiteral("keep/inner/")));
    QTreeWidgetItem* keep = tree.ItemOf(r + QStringLiteral("keep/"));
    QVERIFY(QDir(r + QStringLiteral("gone")).removeRecursively());
    QVERIFY(testsupport::MakeFolder(r + QStringLiteral("new")));
    QSignalSpy spy(&tree, &CRellTree::FolderSelected);
    tree.RefreshFolder(r);
    QCOMPARE(tree.ItemOf(r + QStringLiteral("keep/")), keep);  // same node, still open
    QVERIFY(keep->isExpanded());
    QVERIFY(!tree.ItemOf(r + QStringLiteral("gone/")));
    QVERIFY(tree.ItemOf(r + QStringLiteral("new/")));
    QCOMPARE(tree.CurrentPath(), r + QStringLiteral("keep/inner/"));
    // Removing the selected folder moves the selection up without a fill request.
    QVERIFY(QDir(r + QStringLiteral("keep")).removeRecursively());
    tree.RefreshFolder(r);
    QCOMPARE(tree.CurrentPath(), r);
    QCOMPARE(spy.size(), 0);
  }

  void unlistedFoldersAreShownWhenSelected() {
    QTemporaryDir dir;
    const QString r = dir.path() + u'/';
    QVERIFY(testsupport::MakeFolder(r + QStringLiteral("real/sub")));
    QVERIFY(QFile::link(r + QStringLiteral("real"), r + QStringLiteral("linked")));
    CRellTree tree;
    tree.LoadVolumes();
    QVERIFY(tree.SelectPath(r + QStringLiteral("linked/sub/")));
    QCOMPARE(tree.CurrentPath(), r + QStringLiteral("linked/sub/"));
  }

  void missingFoldersCannotBeSelected() {
    CRellTree tree;
    tree.LoadVolumes();
    QVERIFY(tree.SelectPath(root_ + QStringLiteral("two/")));
    QSignalSpy spy(&tree, &CRellTree::FolderSelected);
    QVERIFY(!tree.SelectPath(root_ + QStringLiteral("nowhere/deeper/")));
    QVERIFY(!tree.SelectPath(root_ + QStringLiteral("two/file.txt")));
    QVERIFY(!tree.SelectPath(QStringLiteral("relative/path/")));
    QCOMPARE(spy.size(), 0);
    QCOMPARE(tree.CurrentPath(), root_ + QStringLiteral("two/"));
    QVERIFY(!tree.ItemOf(root_ + QStringLiteral("nowhere/")));
  }

  void treeStyles() {
    CRellTree tree;
    tree.LoadVolumes();
    QVERIFY(tree.SelectPath(root_));
    QVERIFY(!tree.currentItem()->icon(0).isNull());
    tree.setStyles(CRellTree::kShowLines);
    QVERIFY(tree.currentItem()->icon(0).isNull());
    QVERIFY(tree.rootIsDecorated());
    tree.setStyles(0);
    QVERIFY(!tree.rootIsDecorated());
    tree.setStyles(0xff);
    QCOMPARE(tree.styles(), int(CRellTree::kDefaultStyles));
  }

  void keyTracker() {
    QWidget w;
    w.show();
    KeyHeldTracker tracker;
    QVERIFY(!tracker.held());
    QTest::keyPress(&w, Qt::Key_Down);
    QVERIFY(tracker.held());
    // The release that auto-repeat sends does not let go of the key.
    QKeyEvent repeatRelease(QEvent::KeyRelease, Qt::Key_Down, Qt::NoModifier, QString(), true);
    QApplication::sendEvent(&w, &repeatRelease);
    QVERIFY(tracker.held());
    QTest::keyRelease(&w, Qt::Key_Down);
    QVERIFY(!tracker.held());
    QTest::keyPress(&w, Qt::Key_Meta);
    QVERIFY(tracker.keys().any());
    QVERIFY(!tracker.held());
    QTest::keyPress(&w, Qt::Key_F5);  // above the windows key: not seen by the scan
    QVERIFY(!tracker.held());
    QTest::keyPress(&w, Qt::Key_Down);
    QVERIFY(tracker.held());
    QEvent deactivate(QEvent::ApplicationDeactivate);
    QApplication::sendEvent(qApp, &deactivate);
    QVERIFY(!tracker.keys().any());
  }

  void jobStatusModes() {
    StatusLine status;
    const QImage normal = status.picture();
    status.ShowJobStatus(-1);
    status.ShowJobStatus(0, QStringLiteral("starting"));
    QCOMPARE(status.statusText(), QStringLiteral("starting"));
    QVERIFY(status.showsFindPicture());
    QVERIFY(!status.job().aborted());
    const QImage find = status.picture();

    status.ShowJobStatus(1, QStringLiteral("/usr/"));
    QCOMPARE(status.statusText(), QStringLiteral("/usr/"));
    const QImage blink = status.picture();
    for (int y = 0; y < StatusLine::kPictureSize; ++y)
      for (int x = 0; x < StatusLine::kPictureSize; ++x) {
        const bool inArea = x >= StatusLine::kBlinkX && x < StatusLine::kBlinkX + StatusLine::kBlinkW &&
                            y >= StatusLine::kBlinkY && y < StatusLine::kBlinkY + StatusLine::kBlinkH;
        const QRgb expected = inArea ? (find.pixel(x, y) ^ 0x00ffffffu) : find.pixel(x, y);
        QCOMPARE(blink.pixel(x, y), expected);
      }
    status.ShowJobStatus(1, QStringLiteral("/usr/lib/"));
    QCOMPARE(status.picture(), find);  // a second step inverts back

    status.ShowJobStatus(-1);
    status.ShowJobStatus(3, QString(), 1500, 2);
    QVERIFY(status.statusText().endsWith(QStringLiteral(" sec (1,500 folders scanned, 2 name hits)  ABORTED")));
    QVERIFY(!status.showsFindPicture());
    QCOMPARE(status.picture(), normal);

    status.ShowJobStatus(0);
    status.ShowJobStatus(4);
    QVERIFY(status.statusText().endsWith(QStringLiteral(" sec")));
    QVERIFY(!status.statusText().contains(QStringLiteral("ABORTED")));
    status.ShowJobStatus(5, QStringLiteral("Done."));
    QCOMPARE(status.statusText(), QStringLiteral("Done."));

    status.ShowDrive(QStringLiteral(" (/) 1.00MB used, 2.00MB free (67%)"));
    QCOMPARE(status.driveText(), QStringLiteral("Drive (/) 1.00MB used, 2.00MB free (67%)"));
    status.ShowDrive(QString());
    QCOMPARE(status.driveText(), QString());
  }

  void tabStrip() {
    CTabCtrl tabs;
    QStringList captions;
    for (int i = 0; i < tabs.count(); ++i) captions.append(tabs.tabText(i));
    QCOMPARE(captions, (QStringList{"Find Files", "Version", "General File Info", "Preview", "Report", "File View"}));
    QCOMPARE(tabs.reportTabs()->tabText(0), QStringLiteral("Current List"));
    QCOMPARE(tabs.reportTabs()->tabText(1), QStringLiteral("Current Folder"));
    for (int i = 0; i < CTabCtrl::kTabCount; ++i) QVERIFY(!tabs.HasPage(i));
    QSignalSpy spy(&tabs, &CTabCtrl::TabSelected);
    tabs.setCurrentIndex(CTabCtrl::kTabVersion);
    QCOMPARE(spy.size(), 1);
    auto* page = new QWidget;
    tabs.SetPage(CTabCtrl::kTabVersion, page);
    QCOMPARE(tabs.widget(CTabCtrl::kTabVersion), page);
    QCOMPARE(tabs.currentIndex(), int(CTabCtrl::kTabVersion));
    QCOMPARE(tabs.tabText(CTabCtrl::kTabVersion), QStringLiteral("Version"));
    QVERIFY(tabs.HasPage(CTabCtrl::kTabVersion));
    QCOMPARE(spy.size(), 1);  // putting a page in is not a selection
    tabs.SetReportPage(CTabCtrl::kRepFolder, new QWidget);
    QVERIFY(tabs.HasPage(CTabCtrl::kTabReport));
  }
};

QTEST_MAIN(WindowWidgetsTest)
#include "WindowWidgetsTest.moc"
