#include <QtTest>

#include "browser/list/ColumnLayout.h"
#include "core/ListModes.h"
#include "tests/TestSupport.h"

using browser::ColumnLayout;
using browser::ListColumn;

class tst_ColumnLayout : public QObject {
  Q_OBJECT

 private:
  static ColumnLayout Browse() {
    ColumnLayout layout;
    layout.define(QString::fromLatin1(core::kListModes[core::kModeBrowse].columns), u"Size");
    return layout;
  }

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void definition_data() {
    QTest::addColumn<QString>("definition");
    QTest::addColumn<QString>("rightAlign");
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("digits");
    QTest::addColumn<int>("dataIndex");
    QTest::addColumn<bool>("right");

    QTest::newRow("type slash 3") << "Name,Type/3" << "" << 1 << "Type" << 0 << 0 << 3 << false;
    QTest::newRow("empty after slash") << "Name,Vol Serial/" << "" << 1 << "Vol Serial" << 0 << 0 << 0 << false;
    QTest::newRow("numeric digits") << "Name,Ext,Size.n10" << "Size" << 2 << "Size" << 1 << 10 << 2 << true;
    QTest::newRow("upper-case date kind") << "Name,Created.D" << "" << 1 << "Created" << 2 << 0 << 1 << false;
    QTest::newRow("blanks trimmed") << " Name , Modified . d " << "" << 1 << "Modified" << 2 << 0 << 1 << false;
    QTest::newRow("unknown kind is text") << "A.x9" << "" << 0 << "A" << 0 << 0 << 0 << false;
    QTest::newRow("n without digits") << "A,B.n" << "" << 1 << "B" << 1 << 0 << 1 << false;
    QTest::newRow("kind and index") << "A,Total Size.n12/9" << "Total Size,Free Space" << 1 << "Total Size" << 1
                                    << 12 << 9 << true;
    QTest::newRow("column 0 never right") << "Size,Name" << "Size" << 0 << "Size" << 0 << 0 << 0 << false;
    QTest::newRow("substring right-align") << "A,Free" << "Free Space" << 1 << "Free" << 0 << 0 << 1 << true;
    QTest::newRow("non-numeric index") << "A,B/x" << "" << 1 << "B" << 0 << 0 << 0 << false;
  }

  void definition() {
    QFETCH(QString, definition);
    QFETCH(QString, rightAlign);
    QFETCH(int, column);
    const std::vector<ListColumn> cols = ColumnLayout::ParseDefinition(definition, rightAlign);
    QVERIFY(size_t(column) < cols.size());
    const ListColumn& c = cols[size_t(column)];
    QTEST(c.caption, "caption");
    QTEST(c.kind, "kind");
    QTEST(int(c.digits), "digits");
    QTEST(c.dataIndex, "dataIndex");
    QTEST(c.rightAligned, "right");
  }

  void drivesDefinition() {
    const core::ListModeDef& def = core::kListModes[core::kModeDrives];
    ColumnLayout layout;
    layout.define(QString::fromLatin1(def.columns), QString::fromLatin1(def.sizeColumns));
    QCOMPARE(layout.count(), 7);
    const int data[] = {0, 3, 9, 10, 11, 12, 13};
    const bool right[] = {false, false, true, true, true, false, false};
    for (int i = 0; i < 7; ++i) {
      QCOMPARE(layout.column(i).dataIndex, data[i]);
      QCOMPARE(layout.column(i).rightAligned, right[i]);
    }
    layout.setColumnOrder(QString::fromLatin1(def.defaultOrder));
    QCOMPARE(layout.columnOrder(), QStringLiteral("Name.130,Type.110,Total Size.70,Free Space.70,Per Cluster.76,"
                                                  "Vol Serial.68,File System.70,"));
    layout.setVisibility(QString::fromLatin1(def.defaultVisible));  // eight characters, seven columns
    QCOMPARE(layout.visibility(), QStringLiteral("1111111"));
  }

  void columnOrder_data() {
    QTest::addColumn<QString>("first");  // applied before, to set widths
    QTest::addColumn<QString>("order");
    QTest::addColumn<QString>("expected");
    const QString defaults = QString::fromLatin1(core::kListModes[core::kModeBrowse].defaultOrder);
    QTest::newRow("ext.40,NAME") << defaults << "ext.40,NAME"
                                 << "Ext.40,Name.100,Size.50,Type.80,Created.100,Modified.100,Accessed.64,Attr.43,";
    QTest::newRow("duplicate skipped") << defaults << "Name.100,Name.50"
                                       << "Name.100,Ext.38,Size.50,Type.80,Created.100,Modified.100,Accessed.64,"
                                          "Attr.43,";
    QTest::newRow("empty resets order, keeps widths")
        << "Attr.5,Name.7" << ""
        << "Name.7,Ext.80,Size.80,Type.80,Created.80,Modified.80,Accessed.80,Attr.5,";
    QTest::newRow("non-numeric width") << defaults << "Size.abc"
                                       << "Size.0,Name.100,Ext.38,Type.80,Created.100,Modified.100,Accessed.64,"
                                          "Attr.43,";
    QTest::newRow("unknown names dropped") << defaults << "Bogus.10,Attr.5,,Nope"
                                           << "Attr.5,Name.100,Ext.38,Size.50,Type.80,Created.100,Modified.100,"
                                              "Accessed.64,";
    QTest::newRow("empty names by position") << "" << ".11,.12,Type.13"
                                             << "Name.11,Ext.12,Type.13,Size.80,Created.80,Modified.80,Accessed.80,"
                                                "Attr.80,";
    QTest::newRow("read-back string round trip") << defaults << "Modified.99,Name.1,"
                                                 << "Modified.99,Name.1,Ext.38,Size.50,Type.80,Created.100,"
                                                    "Accessed.64,Attr.43,";
    QTest::newRow("width only leading number") << defaults << "Name.12px,Attr. 7"
                                               << "Name.12,Attr.7,Ext.38,Size.50,Type.80,Created.100,"
                                                  "Modified.100,Accessed.64,";
  }

  void columnOrder() {
    QFETCH(QString, first);
    QFETCH(QString, order);
    ColumnLayout layout = Browse();
    if (!first.isEmpty()) layout.setColumnOrder(first);
    layout.setColumnOrder(order);
    QTEST(layout.columnOrder(), "expected");
    // What is read back applies to the same layout again.
    const QString back = layout.columnOrder();
    layout.setColumnOrder(back);
    QCOMPARE(layout.columnOrder(), back);
  }

  void visibility_data() {
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("visibleCaptions");
    QTest::newRow("all") << "11111111" << "11111111" << "Name,Ext,Size,Type,Created,Modified,Accessed,Attr";
    QTest::newRow("longer mask") << "111111110000" << "11111111" << "Name,Ext,Size,Type,Created,Modified,Accessed,Attr";
    QTest::newRow("short mask hides the rest") << "101" << "10100000" << "Name,Size";
    QTest::newRow("only 1 shows") << "1x1-1111" << "10101111" << "Name,Size,Created,Modified,Accessed,Attr";
  }

  void visibility() {
    QFETCH(QString, mask);
    ColumnLayout layout = Browse();
    layout.setVisibility(mask);
    QTEST(layout.visibility(), "expected");
    QStringList captions;
    for (int c : layout.visibleInOrder()) captions.append(layout.column(c).caption);
    QTEST(captions.join(u','), "visibleCaptions");
  }

  void moveColumn() {
    ColumnLayout layout = Browse();
    layout.moveColumn(7, 0);
    QCOMPARE(layout.displayOrder().front(), 7);
    layout.moveColumn(0, 7);
    layout.moveColumn(-1, 3);  // ignored
    for (int i = 0; i < 8; ++i) QCOMPARE(layout.displayOrder()[size_t(i)], i);
  }
};

QTEST_GUILESS_MAIN(tst_ColumnLayout)
#include "tst_ColumnLayout.moc"
