#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QtTest>

#include "browser/list/CRellList.h"
#include "browser/list/CRellListHeader.h"
#include "tests/TestSupport.h"
#include "tests/browser/list/ListTestRows.h"

using browser::CRellList;

class tst_CRellList : public QObject {
  Q_OBJECT

 private:
  // A shown list with `count` files n00000... and, first, one folder "dir".
  static void Fill(CRellList* list, int count) {
    list->beginFill();
    browser::ListModel& m = list->model();
    const quint16 t = m.store().internType(QStringLiteral("file"), QStringLiteral("text-plain"));
    m.addFileRow(listtest::Entry(QStringLiteral("dir"), 0, 0, true), QStringLiteral("/t/"), t);
    for (int i = 0; i < count; ++i)
      m.addFileRow(listtest::Entry(QStringLiteral("n%1").arg(i, 5, 10, QChar(u'0')), quint64(count - i)),
                   QStringLiteral("/t/"), t);
    list->finishFill();
  }

  static void Show(CRellList* list) {
    list->resize(500, 300);
    list->show();
    QVERIFY(QTest::qWaitForWindowExposed(list));
    list->setFocus();
  }

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void keysMoveTheFocusAndSelectFiles_data() {
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("focus");
    QTest::addColumn<QString>("lastPath");
    QTest::newRow("down") << QList<int>{Qt::Key_Down} << 1 << "/t/n00000";
    QTest::newRow("end") << QList<int>{Qt::Key_End} << 50 << "/t/n00049";
    QTest::newRow("end, home") << QList<int>{Qt::Key_End, Qt::Key_Home} << 0 << "/t/dir";
    QTest::newRow("type-ahead extends") << QList<int>{Qt::Key_End, Qt::Key_D, Qt::Key_I} << 0 << "/t/dir";
  }
  void keysMoveTheFocusAndSelectFiles() {
    QFETCH(QList<int>, keys);
    CRellList list;
    Show(&list);
    Fill(&list, 50);
    QSignalSpy selected(&list, &CRellList::FileSelected);
    for (int k : keys) QTest::keyClick(&list, Qt::Key(k));
    QTEST(list.focusPosition(), "focus");
    QVERIFY(!selected.isEmpty());
    QTEST(selected.last().at(0).toString(), "lastPath");
    QCOMPARE(selected.last().at(1).toBool(), false);  // keyboard: not immediate
    QVERIFY(list.topIndex() <= list.focusPosition());
    QVERIFY(list.focusPosition() < list.topIndex() + list.model().pageRows());
  }

  // Enter browses a folder and opens a file; the menu key asks for the popup.
  void keysAskTheOwner() {
    CRellList list;
    Show(&list);
    Fill(&list, 3);
    QSignalSpy browse(&list, &CRellList::BeforeBrowse);
    QSignalSpy open(&list, &CRellList::OpenFile);
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(browse.size(), 1);
    QCOMPARE(browse.first().at(0).toString(), QStringLiteral("/t/dir/"));
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(open.size(), 1);
    QCOMPARE(open.first().at(0).toString(), QStringLiteral("/t/n00000"));
    QSignalSpy popup(&list, &CRellList::QueryPopup);
    QTest::keyClick(&list, Qt::Key_Menu);
    QCOMPARE(popup.size(), 1);
    QCOMPARE(popup.first().at(0).toInt(), 1);
    QCOMPARE(popup.first().at(2).toBool(), true);
  }

  void headerClickSorts() {
    CRellList list;
    Show(&list);
    Fill(&list, 20);
    QCOMPARE(list.model().sortColumn(), 0);
    // The third caption is Size (Name 100, Ext 38 wide by default).
    QTest::mouseClick(list.header(), Qt::LeftButton, {}, QPoint(100 + 38 + 10, 5));
    QCOMPARE(list.model().sortColumn(), 2);
    QVERIFY(!list.model().sortDescending());
    // Grouped and ascending: files ("8") from the smallest, then the folder ("9").
    QCOMPARE(list.model().name(list.model().rowAt(0)), QStringLiteral("n00019"));
    QCOMPARE(list.model().name(list.model().rowAt(20)), QStringLiteral("dir"));
    QTest::mouseClick(list.header(), Qt::LeftButton, {}, QPoint(100 + 38 + 10, 5));
    QVERIFY(list.model().sortDescending());
    QCOMPARE(list.model().name(list.model().rowAt(0)), QStringLiteral("dir"));
    QCOMPARE(list.model().name(list.model().rowAt(1)), QStringLiteral("n00000"));
  }

  void headerDragResizesAndReorders() {
    CRellList list;
    Show(&list);
    Fill(&list, 5);
    browser::CRellListHeader* h = list.header();
    // Drag the right edge of Name (x = 100) to 140.
    QTest::mousePress(h, Qt::LeftButton, {}, QPoint(100, 5));
    QMouseEvent move(QEvent::MouseMove, QPointF(140, 5), h->mapToGlobal(QPointF(140, 5)), Qt::LeftButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(h, &move);
    QTest::mouseRelease(h, Qt::LeftButton, {}, QPoint(140, 5));
    QVERIFY(list.model().columnOrder().startsWith(QStringLiteral("Name.140,Ext.38,")));
    // Drag the Ext caption onto Name.
    QTest::mousePress(h, Qt::LeftButton, {}, QPoint(150, 5));
    QMouseEvent move2(QEvent::MouseMove, QPointF(20, 5), h->mapToGlobal(QPointF(20, 5)), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(h, &move2);
    QTest::mouseRelease(h, Qt::LeftButton, {}, QPoint(20, 5));
    QVERIFY(list.model().columnOrder().startsWith(QStringLiteral("Ext.38,Name.140,")));
    // A double click on Name's right divider fits Name alone to its widest cell.
    QTest::mouseDClick(h, Qt::LeftButton, {}, QPoint(38 + 140, 5));
    const QString order = list.model().columnOrder();
    const int width = order.section(u',', 1, 1).section(u'.', 1).toInt();
    QVERIFY2(width < 140 && width >= list.fontMetrics().horizontalAdvance(QStringLiteral("n00004")), qPrintable(order));
    QVERIFY(order.startsWith(QStringLiteral("Ext.38,")));
  }

  void paintCostDoesNotGrowWithRows() {
    CRellList small, large;
    Show(&small);
    Show(&large);
    Fill(&small, 200);
    Fill(&large, 200000);
    small.viewport()->repaint();
    large.viewport()->repaint();
    QVERIFY(small.lastPaintCells() > 0);
    QCOMPARE(large.lastPaintCells(), small.lastPaintCells());
    QVERIFY(large.lastPaintCells() <= quint64(8 * (large.model().pageRows() + 1)));
    QTest::keyClick(&large, Qt::Key_End);
    large.viewport()->repaint();
    QVERIFY(large.lastPaintCells() <= quint64(8 * (large.model().pageRows() + 1)));
  }

  void mouseSelection() {
    CRellList list;
    Show(&list);
    Fill(&list, 10);
    QSignalSpy selected(&list, &CRellList::FileSelected);
    QSignalSpy status(&list, &CRellList::StatusObjects);
    const int h = list.rowHeight();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, QPoint(30, h * 2 + 2));
    QCOMPARE(list.focusPosition(), 2);
    QCOMPARE(selected.last().at(1).toBool(), true);  // a click asks for an immediate refresh
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ShiftModifier, QPoint(30, h * 5 + 2));
    QCOMPARE(list.model().selectedCount(), 4);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, QPoint(30, h * 3 + 2));
    QCOMPARE(list.model().selectedCount(), 3);
    QCOMPARE(status.last().at(0).toString(), QStringLiteral("3 objects selected: 22 bytes"));
    list.selectAll();
    QCOMPARE(list.model().selectedCount(), 11);
    list.invertSelection();
    QCOMPARE(list.model().selectedCount(), 0);
    QCOMPARE(status.last().at(0).toString(), QStringLiteral("Total: 55 bytes"));
  }

  void renameAsksTheOwner() {
    CRellList list;
    Show(&list);
    Fill(&list, 3);
    QTest::keyClick(&list, Qt::Key_Down);
    QString asked, newName;
    connect(&list, &CRellList::QueryRename, this, [&](const QString& file, const QString& name, bool* accept) {
      asked = file;
      newName = name;
      *accept = true;
    });
    QTest::keyClick(&list, Qt::Key_F2);
    auto* edit = list.findChild<QLineEdit*>(QStringLiteral("txtRename"));
    QVERIFY(edit);
    QCOMPARE(edit->text(), QStringLiteral("n00000"));
    edit->setText(QStringLiteral("renamed"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(asked, QStringLiteral("/t/n00000"));
    QCOMPARE(newName, QStringLiteral("renamed"));
    QCOMPARE(list.model().path(list.model().rowAt(1)), QStringLiteral("/t/renamed"));
    // Escape leaves the name alone.
    asked.clear();
    QTest::keyClick(&list, Qt::Key_F2);
    edit = list.findChild<QLineEdit*>(QStringLiteral("txtRename"));
    QVERIFY(edit);
    edit->setText(QStringLiteral("other"));
    QTest::keyClick(edit, Qt::Key_Escape);
    QVERIFY(asked.isEmpty());
  }

  void dropsAreHandedToTheOwner() {
    CRellList list;
    Show(&list);
    Fill(&list, 3);
    QSignalSpy drop(&list, &CRellList::Drop);
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a b.txt")), QUrl(QStringLiteral("https://x.example/"))});
    const QPointF at(30, list.rowHeight() + 2);
    QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list.viewport(), &enter);
    QDropEvent dropEvent(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(list.viewport(), &dropEvent);
    QCOMPARE(drop.size(), 1);
    QCOMPARE(drop.first().at(0).toStringList(), QStringList{QStringLiteral("/tmp/a b.txt")});
    QCOMPARE(drop.first().at(2).toInt(), 1);
  }
};

QTEST_MAIN(tst_CRellList)
#include "tst_CRellList.moc"
