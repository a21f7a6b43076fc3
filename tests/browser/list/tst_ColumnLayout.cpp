#include <QtTest>

#include "browser/list/ColumnLayout.h"
#include "browser/list/ListModel.h"
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

  // A mode's stored "PosList" and "VisList" as the list applies them, and
  // what it writes back when the user changed nothing: the texts as read.
  void storedLayout_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("positions");
    QTest::addColumn<QString>("visible");
    QTest::addColumn<QString>("orderStart");
    QTest::addColumn<QString>("shown");
    const QString all = "Name,Ext,Size,Type,Created,Modified,Accessed,Attr";
    QTest::newRow("blank order: Find default, Path third")
        << 1 << " " << "111111111" << "Name.100,Ext.38,Path.100,Size.50,Type.50," << all + ",Path";
    QTest::newRow("whitespace order") << 1 << " \t " << "111111111" << "Name.100,Ext.38,Path.100," << all + ",Path";
    QTest::newRow("empty order") << 0 << "" << "11111111" << "Name.100,Ext.38,Size.50,Type.80," << all;
    QTest::newRow("blank drives order sets widths")
        << 2 << " " << "11111111" << "Name.130,Type.110," << "Name,Type,Total Size,Free Space,Per Cluster,Vol Serial,File System";
    QTest::newRow("own order") << 0 << "Ext.40,Name" << "11111111" << "Ext.40,Name.80,Size.80," << all;
    QTest::newRow("short mask: the rest as by default")
        << 0 << "" << "10" << "Name.100," << "Name,Size,Type,Created,Modified,Accessed,Attr";
    QTest::newRow("mask hiding all: default") << 0 << "" << "00000000" << "Name.100," << all;
    QTest::newRow("longer mask") << 0 << "" << "111111110000" << "Name.100," << all;
    QTest::newRow("other characters hide")
        << 0 << "" << "12111111" << "Name.100," << "Name,Size,Type,Created,Modified,Accessed,Attr";
  }
  void storedLayout() {
    QFETCH(int, mode);
    QFETCH(QString, positions);
    QFETCH(QString, visible);
    core::ModeRecord record = core::DefaultModeRecord(mode);
    record.positions = positions;
    record.visible = visible;
    browser::ListModel model;
    model.setMode(mode, record);
    const QString order = model.columnOrder();
    QFETCH(QString, orderStart);
    QVERIFY2(order.startsWith(orderStart), qPrintable(order));
    QStringList captions;
    for (int c : model.columns().visibleInOrder()) captions.append(model.columns().column(c).caption);
    captions.sort();
    QFETCH(QString, shown);
    QStringList wanted = shown.split(u',');
    wanted.sort();
    QCOMPARE(captions, wanted);

    core::ModeRecord back = record;
    model.storeInto(&back);
    QCOMPARE(back.positions, positions);
    QCOMPARE(back.visible, visible);
    // What the user changes is stored.
    model.columns().setVisible(0, !model.columns().column(0).visible);
    model.setColumnOrder(u"Type");
    model.storeInto(&back);
    QVERIFY(back.positions.startsWith(QStringLiteral("Type.")));
    QCOMPARE(back.visible, model.visibility());
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
