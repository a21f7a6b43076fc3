// The "Version" tab in the main window: selecting files in the list fills
// it through the delayed info refresh, and the picked key is remembered.
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTemporaryDir>
#include <QTest>

#include "VersionFixtures.h"
#include "browser/CTabCtrl.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "fileinfo/VersionTab.h"
#include "tests/TestSupport.h"

using browser::frmMain;

class TestVersionTab : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;
  QString folder_;

  static QStringList Items(QListWidget* list) {
    QStringList items;
    for (int i = 0; i < list->count(); ++i) items << list->item(i)->text();
    return items;
  }
  static void Select(frmMain& w, const QString& name) {
    browser::CRellList* list = w.list();
    for (int i = 0; i < list->model().rowCount(); ++i) {
      list->setFocusPosition(i);
      if (list->focusPath().endsWith(u'/' + name)) return;
    }
    QFAIL(qPrintable(name + " not in the list"));
  }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    folder_ = dir_.path() + QStringLiteral("/dlls/");
    using S = QVector<QPair<QString, QString>>;
    const S full = {{"CompanyName", "Acme"}, {"FileVersion", "1.2.3.4"}, {"ProductName", "Alpha"}};
    const S noProduct = {{"CompanyName", "Acme"}, {"FileVersion", "7.0"}};
    QVERIFY(testsupport::MakeFile(
        folder_ + "a.dll", fixtures::WrapPe(fixtures::Block(true, {}, {{"040904B0", full}}, {{0x409, 1200}}), false)));
    QVERIFY(testsupport::MakeFile(
        folder_ + "b.dll", fixtures::WrapPe(fixtures::Block(true, {}, {{"040904B0", noProduct}}, {{0x409, 1200}}), true)));
    QVERIFY(testsupport::MakeFile(folder_ + "c.txt", "plain"));
  }

  void selectingFiles() {
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q.ini"), folder_, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    w.tabs()->setCurrentIndex(browser::CTabCtrl::kTabVersion);
    auto* caption = w.findChild<QLabel*>("lblSelFile");
    auto* list = w.findChild<QListWidget*>("lstInfo");
    auto* value = w.findChild<QLineEdit*>("txtInfoVal");
    auto* label10 = w.findChild<QLabel*>("lblValue10");
    QVERIFY(caption && list && value && label10);
    QTRY_VERIFY(w.list()->model().rowCount() == 3);

    Select(w, "a.dll");
    QTRY_COMPARE(caption->text(), QStringLiteral("a.dll [ver 1.2.3.4]"));
    QCOMPARE(label10->text(), QStringLiteral("1.2.3.4"));
    QCOMPARE(w.findChild<QLabel*>("lblValue17")->text(), QStringLiteral("Win32-API on Windows NT"));
    QCOMPARE(Items(list), (QStringList{"Language", "Character Set", "Company Name", "Product Name"}));
    QCOMPARE(list->currentItem()->text(), QStringLiteral("Language"));

    // The user picks "Product Name".
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(3)).center());
    QCOMPARE(value->text(), QStringLiteral("Alpha"));

    Select(w, "c.txt");
    QTRY_COMPARE(caption->text(), QStringLiteral("c.txt"));
    QCOMPARE(label10->text(), QStringLiteral("[No version info contained]"));
    QCOMPARE(list->count(), 0);
    QVERIFY(list->palette().color(QPalette::Base) != w.palette().color(QPalette::Base));

    // A file without the remembered key shows its first key, and the key is
    // still remembered for the next file that has it.
    Select(w, "b.dll");
    QTRY_COMPARE(caption->text(), QStringLiteral("b.dll [ver 7.0]"));
    QCOMPARE(list->currentItem()->text(), QStringLiteral("Language"));
    w.settings().report.optRepFver = true;
    Select(w, "a.dll");
    QTRY_COMPARE(caption->text(), QStringLiteral("a.dll [ver 1.02.03.04]"));
    QCOMPARE(list->currentItem()->text(), QStringLiteral("Product Name"));
    QCOMPARE(value->text(), QStringLiteral("Alpha"));

    // A click on the item selected for the user still counts as a pick.
    Select(w, "b.dll");
    QTRY_COMPARE(caption->text(), QStringLiteral("b.dll [ver 1.02.03.04]"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
    QCOMPARE(w.findChild<fileinfo::VersionTab*>("pageVersion")->rememberedName(), QStringLiteral("Language"));
  }
};

QTEST_MAIN(TestVersionTab)
#include "TestVersionTab.moc"
