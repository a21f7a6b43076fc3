#include <QtTest>

#include "browser/list/ListModel.h"
#include "tests/TestSupport.h"
#include "tests/browser/list/ListTestRows.h"

using browser::ListModel;

class tst_ListStatus : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  // 1000 files of 1 KB each, a folder; some of them selected.
  void browseStatus_data() {
    QTest::addColumn<int>("selected");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("status");
    QTest::newRow("none selected") << 0 << "11111111" << "Total: 1,000.00KB";
    QTest::newRow("one") << 1 << "11111111" << "1 object selected: 1.00KB";
    QTest::newRow("two") << 2 << "11111111" << "2 objects selected: 2.00KB";
    QTest::newRow("1000") << 1000 << "11111111" << "1,000 objects selected: 1,000.00KB";
    QTest::newRow("1001 with the folder") << 1001 << "11111111" << "1,001 objects selected: 1,000.00KB";
    QTest::newRow("no size column, none") << 0 << "11011111" << "0 objects selected";
    QTest::newRow("no size column, one") << 1 << "11011111" << "1 object selected";
    QTest::newRow("no size column, 1000") << 1000 << "11011111" << "1,000 objects selected";
  }
  void browseStatus() {
    QFETCH(int, selected);
    QFETCH(QString, mask);
    ListModel m;
    m.setVisibility(mask);
    const quint16 t = m.store().internType(QStringLiteral("t"), QString());
    for (int i = 0; i < 1000; ++i) m.addFileRow(listtest::Entry(QString::number(i), 1024), "/", t);
    m.addFileRow(listtest::Entry(QStringLiteral("dir"), 0, 0, true), "/", t);
    for (int i = 0; i < selected; ++i) m.toggleSelectedAt(i);
    QCOMPARE(m.selectedCount(), selected);
    QTEST(m.statusText(), "status");
  }

  void foundText_data() {
    QTest::addColumn<QString>("noun");
    QTest::addColumn<double>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("files") << "file" << 12.0 << "12 files found";
    QTest::newRow("one object") << "object" << 1.0 << "1 object found";
    QTest::newRow("none") << "file" << 0.0 << "0 files found";
    QTest::newRow("grouped") << "object" << 1234.0 << "1,234 objects found";
  }
  void foundText() {
    QFETCH(QString, noun);
    QFETCH(double, count);
    QTEST(ListModel::FoundText(count, noun), "text");
    ListModel m;
    m.setMode(core::kModeFind, core::DefaultModeRecord(core::kModeFind));
    QStringList names;
    for (int i = 0; i < int(count); ++i) names.append(QString::number(i));
    listtest::AddNames(&m, names);
    m.setFoundNoun(noun);
    QTEST(m.statusText(), "text");
  }

  void drivesStatus_data() {
    QTest::addColumn<int>("selected");  // -1 none, else the one row, 9 both
    QTest::addColumn<QString>("status");
    QTest::newRow("none") << -1 << "Total  Free: 3.00GB, Capacity: 30.00GB";
    QTest::newRow("one") << 1 << "/data/  Free: 2.00GB, Capacity: 20.00GB";
    QTest::newRow("both") << 9 << "Total  Free: 3.00GB, Capacity: 30.00GB";
  }
  void drivesStatus() {
    QFETCH(int, selected);
    ListModel m;
    m.setMode(core::kModeDrives, core::DefaultModeRecord(core::kModeDrives));
    const double gb = 1073741824.0;
    for (int i = 0; i < 2; ++i) {
      browser::TextRowData d;
      d.texts = QStringList(14);
      d.keys = QStringList(14);
      d.texts[0] = d.keys[0] = i == 0 ? QStringLiteral("/") : QStringLiteral("/data/");
      d.bytesTotal = (i + 1) * 10 * gb;
      d.bytesFree = (i + 1) * gb;
      d.sizes.insert(9, d.bytesTotal);
      m.addTextRow(d);
    }
    if (selected == 9) m.selectAll();
    else if (selected >= 0) m.click(selected, false, false);
    QTEST(m.statusText(), "status");
    QCOMPARE(m.cellText(1, 2), QStringLiteral("21474836480"));  // raw bytes by default
    m.setFormats(6, 0, 0);
    QCOMPARE(m.cellText(1, 2), QStringLiteral("20.00GB"));
  }
};

QTEST_GUILESS_MAIN(tst_ListStatus)
#include "tst_ListStatus.moc"
