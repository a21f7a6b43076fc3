#include <QtTest>

#include "browser/list/ListModel.h"
#include "tests/TestSupport.h"
#include "tests/browser/list/ListTestRows.h"

using browser::KeyResult;
using browser::ListKey;
using browser::ListModel;

Q_DECLARE_METATYPE(ListKey)

class tst_ListKeys : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  // A sequence of "key@seconds" presses from a focus row; the focus after each.
  // A name ending in "/" is a folder (grouped: its key starts with "0").
  void typeAhead_data() {
    QTest::addColumn<QString>("names");
    QTest::addColumn<int>("focus");
    QTest::addColumn<QString>("presses");
    QTest::addColumn<QString>("focusAfter");
    const QString fruit = QStringLiteral("apple,avocado,banana,blueberry,cherry,Apricot");
    QTest::newRow("same letter twice steps") << fruit << 0 << "A@0,A@0.1,A@0.2,A@0.3" << "1,5,0,1";
    QTest::newRow("two letters extend from focus") << fruit << 0 << "B@0,L@0.2" << "2,3";
    QTest::newRow("extension finds focus itself") << fruit << 0 << "A@0,V@0.1" << "1,1";
    QTest::newRow("pause starts over") << fruit << 0 << "B@0,L@0.7" << "2,2";
    QTest::newRow("exactly half a second is a pause") << fruit << 0 << "A@1,P@1.5" << "1,1";
    QTest::newRow("only match stays") << fruit << 4 << "C@0,C@1" << "4,4";
    QTest::newRow("wraps to the top") << fruit << 4 << "B@0" << "2";
    QTest::newRow("no match stays") << fruit << 2 << "Z@0" << "2";
    QTest::newRow("lower-case names match") << QStringLiteral("x,Yak,yes") << 0 << "Y@0,Y@1,Y@2" << "1,2,1";
    QTest::newRow("digits") << QStringLiteral("a,1b,2c,10") << 0 << "1@0,0@0.1" << "1,3";
    QTest::newRow("three letters") << QStringLiteral("abc,abd,abe,b") << 3 << "A@0,B@0.1,E@0.2" << "0,0,2";
    QTest::newRow("focus row 0, one row") << QStringLiteral("a") << 0 << "A@0,A@1" << "0,0";
    QTest::newRow("the group mark is no letter") << QStringLiteral("red/,0ne,1x") << 0 << "0@0,1@5" << "1,2";
  }

  void typeAhead() {
    QFETCH(QString, names);
    QFETCH(int, focus);
    QFETCH(QString, presses);
    QFETCH(QString, focusAfter);
    ListModel m;
    const quint16 t = m.store().internType(QStringLiteral("t"), QString());
    for (const QString& n : names.split(u','))
      m.addFileRow(listtest::Entry(n.endsWith(u'/') ? n.chopped(1) : n, 0, 0, n.endsWith(u'/')), "/", t);
    m.moveTo(focus, false, false);
    QStringList got;
    for (const QString& p : presses.split(u',')) {
      const QStringList kt = p.split(u'@');
      m.keyDown(ListKey::Character, kt[0][0], false, false, false, kt[1].toDouble());
      got.append(QString::number(m.focus()));
    }
    QCOMPARE(got.join(u','), focusAfter);
  }

  void typeAheadNeedsNoModifier() {
    for (int modifier = 0; modifier < 4; ++modifier) {  // none, Shift, Ctrl, Alt
      ListModel m;
      listtest::AddNames(&m, {"a", "b"});
      const KeyResult r = m.keyDown(ListKey::Character, u'B', modifier == 1, modifier == 2, modifier == 3, 0);
      QCOMPARE(r.handled, modifier == 0);
      QCOMPARE(m.focus(), modifier == 0 ? 1 : 0);
    }
  }

  // Page keys with 100 rows and 10 rows to a page.
  void targets_data() {
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("focusAfter");
    QTest::addColumn<QString>("topAfter");
    QTest::newRow("page down twice") << "PgDn,PgDn" << "9,18" << "0,9";
    QTest::newRow("page down from the middle") << "Down,Down,PgDn,PgDn" << "1,2,9,18" << "0,0,0,9";
    QTest::newRow("page up twice") << "End,PgUp,PgUp" << "99,90,81" << "90,90,81";
    QTest::newRow("page up from the middle") << "End,Up,Up,PgUp" << "99,98,97,90" << "90,90,90,90";
    QTest::newRow("clamped at the ends") << "Up,Home,PgUp,End,Down,PgDn" << "0,0,0,99,99,99" << "0,0,0,90,90,90";
    QTest::newRow("page down to the end") << "End,Home,PgDn,PgDn,PgDn,PgDn,PgDn,PgDn,PgDn,PgDn,PgDn,PgDn,PgDn"
                                          << "99,0,9,18,27,36,45,54,63,72,81,90,99"
                                          << "90,0,0,9,18,27,36,45,54,63,72,81,90";
  }
  void targets() {
    QFETCH(QString, keys);
    QFETCH(QString, focusAfter);
    QFETCH(QString, topAfter);
    ListModel m;
    QStringList names;
    for (int i = 0; i < 100; ++i) names.append(QStringLiteral("n%1").arg(i, 3, 10, QChar(u'0')));
    listtest::AddNames(&m, names);
    m.setPageRows(10);
    const QHash<QString, ListKey> map = {{"Up", ListKey::Up},     {"Down", ListKey::Down},
                                         {"Home", ListKey::Home}, {"End", ListKey::End},
                                         {"PgUp", ListKey::PageUp}, {"PgDn", ListKey::PageDown}};
    QStringList focus, top;
    for (const QString& k : keys.split(u',')) {
      m.keyDown(map.value(k), QChar(), false, false, false, 0);
      focus.append(QString::number(m.focus()));
      top.append(QString::number(m.top()));
    }
    QCOMPARE(focus.join(u','), focusAfter);
    QCOMPARE(top.join(u','), topAfter);
  }

  void oneSelectedAndNoMove() {
    ListModel m;
    listtest::AddNames(&m, {"a", "b", "c"});
    // Nothing selected yet: Space selects the focus row.
    KeyResult r = m.keyDown(ListKey::Space, QChar(), false, false, false, 0);
    QVERIFY(r.moved);
    QCOMPARE(m.selectedCount(), 1);
    r = m.keyDown(ListKey::Space, QChar(), false, false, false, 0);
    QVERIFY(r.handled && !r.moved);
    r = m.keyDown(ListKey::Up, QChar(), false, false, false, 0);  // clamped to the focus
    QVERIFY(!r.moved);
    m.selectAll();
    r = m.keyDown(ListKey::Left, QChar(), false, false, false, 0);  // three selected: the mover runs
    QVERIFY(r.moved);
    QCOMPARE(m.selectedCount(), 1);
    QVERIFY(!m.lastMoveWasJump());
    m.keyDown(ListKey::End, QChar(), false, false, false, 0);
    QVERIFY(m.lastMoveWasJump());
  }

  void shiftAndCtrl() {
    ListModel m;
    listtest::AddNames(&m, {"a", "b", "c", "d", "e"});
    m.keyDown(ListKey::Down, QChar(), false, false, false, 0);  // 1
    m.keyDown(ListKey::Down, QChar(), true, false, false, 0);   // 1..2
    m.keyDown(ListKey::Down, QChar(), true, false, false, 0);   // 1..3
    QCOMPARE(m.selectedCount(), 3);
    m.keyDown(ListKey::Up, QChar(), true, false, false, 0);  // 1..2
    QCOMPARE(m.selectedPositions(), (std::vector<int>{1, 2}));
    m.keyDown(ListKey::End, QChar(), false, true, false, 0);  // Ctrl: focus alone
    QCOMPARE(m.focus(), 4);
    QCOMPARE(m.selectedCount(), 2);
    m.keyDown(ListKey::Space, QChar(), false, true, false, 0);  // Ctrl+Space toggles
    QCOMPARE(m.selectedPositions(), (std::vector<int>{1, 2, 4}));
    m.click(0, false, true);
    QCOMPARE(m.selectedCount(), 4);
    m.click(3, true, false);  // range from the anchor (0)
    QCOMPARE(m.selectedPositions(), (std::vector<int>{0, 1, 2, 3}));
    m.invertSelection();
    QCOMPARE(m.selectedPositions(), (std::vector<int>{4}));
    m.setMultiSelect(false);
    m.click(1, true, false);
    QCOMPARE(m.selectedPositions(), (std::vector<int>{1}));
  }

  void emptyListAndFocusPastTheEnd() {
    ListModel m;
    for (ListKey k : {ListKey::Up, ListKey::Down, ListKey::Home, ListKey::End, ListKey::PageUp, ListKey::PageDown,
                      ListKey::Space, ListKey::F2, ListKey::Character}) {
      const KeyResult r = m.keyDown(k, u'A', false, false, false, 0);
      QVERIFY(!r.moved && !r.rename);
    }
    listtest::AddNames(&m, {"a", "b", "c"});
    m.moveTo(2, false, false);
    m.clearRows();
    listtest::AddNames(&m, {"x"});
    m.moveTo(7, false, false);
    QCOMPARE(m.focus(), 0);
    QVERIFY(m.keyDown(ListKey::F2, QChar(), false, false, false, 0).rename);
  }
};

QTEST_GUILESS_MAIN(tst_ListKeys)
#include "tst_ListKeys.moc"
