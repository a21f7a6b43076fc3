// A find started from the "Find Files" tab lists the same rows as the same
// find from the command line (sorted by name, as the window sorts its
// results), and bad criteria leave the list as it was.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QRegularExpression>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "browser/CRellTree.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "browser/list/ListPrinter.h"
#include "browser/StatusLine.h"
#include "core/JobFlags.h"
#include "core/ListModes.h"
#include "tests/TestSupport.h"

using browser::frmMain;

namespace {

// The first four columns (Name, Ext, Path, Size) of every row: the columns
// that reading the tree cannot change.
QStringList Rows(const QString& printed) {
  QStringList rows;
  for (const QString& line : printed.split(u'\n', Qt::SkipEmptyParts)) rows << line.section(u'\t', 0, 3);
  return rows;
}

QString WindowRows(frmMain& w) {
  QString text;
  QTextStream out(&text);
  browser::ListPrinter::Print(w.list()->model(), out, false);
  out.flush();
  return text;
}

// Closes the message box a refused find shows and remembers its text.
void AnswerNextMessageBox(QString* text) {
  QTimer::singleShot(50, [text] {
    if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
      *text = box->text();
      box->accept();
    }
  });
}

}  // namespace

class FindInWindowTest : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;
  QString tree_;

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    tree_ = dir_.path() + QStringLiteral("/tree/");
    for (const char* f : {"a.txt", "b.doc", "sub/c.txt", "sub/deeper/d.TXT", "other/e.txt", "other/f.log"})
      QVERIFY(testsupport::MakeFile(tree_ + QLatin1String(f), "x"));
  }

  void tabAndCommandLineAgree_data() {
    QTest::addColumn<QString>("named");
    QTest::addColumn<bool>("subfolders");
    QTest::addColumn<QString>("sizeMin");
    QTest::newRow("txt with subfolders") << "*.txt" << true << "";
    QTest::newRow("everything") << "" << true << "";
    QTest::newRow("one folder, word") << "a" << false << "";
    QTest::newRow("two patterns, size") << "*.doc;*.log" << true << "1";
  }

  void tabAndCommandLineAgree() {
    QFETCH(QString, named);
    QFETCH(bool, subfolders);
    QFETCH(QString, sizeMin);
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q.ini"), tree_, false});
    w.Load();
    w.show();
    w.ShowStartFolder();

    w.findChild<QComboBox*>(QStringLiteral("cboNamed"))->setEditText(named);
    w.findChild<QComboBox*>(QStringLiteral("cboLookIn"))->setEditText(tree_);
    w.findChild<QCheckBox*>(QStringLiteral("chkNamed1"))->setChecked(subfolders);
    w.findChild<QCheckBox*>(QStringLiteral("chkWatch1"))->setChecked(!sizeMin.isEmpty());
    w.findChild<QLineEdit*>(QStringLiteral("txtSize0"))->setText(sizeMin);
    w.findChild<QRadioButton*>(QStringLiteral("optSizeUnit0"))->setChecked(true);
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdFind")), Qt::LeftButton);
    QCOMPARE(w.mode(), int(core::kModeFind));

    QStringList args{QStringLiteral("find"), QStringLiteral("--named"), named, QStringLiteral("--in"), tree_,
                     QStringLiteral("--no-header"), QStringLiteral("--sort"), QStringLiteral("Name:asc")};
    if (subfolders) args << QStringLiteral("--subfolders");
    if (!sizeMin.isEmpty()) args << QStringLiteral("--size-min") << sizeMin << QStringLiteral("--size-unit")
                                 << QStringLiteral("bytes");
    QProcess cli;
    cli.start(QStringLiteral(QUORVANE_BINARY), args);
    QVERIFY(cli.waitForFinished(30000));
    QCOMPARE(cli.exitCode(), 0);
    const QStringList expected = Rows(QString::fromUtf8(cli.readAllStandardOutput()));
    QVERIFY(!expected.isEmpty());
    QCOMPARE(Rows(WindowRows(w)), expected);
  }

  // The summary stands after every find; the list's own status then says
  // what was found.
  void everyFindEndsWithItsSummary_data() {
    QTest::addColumn<QString>("named");
    QTest::addColumn<int>("hits");
    QTest::newRow("no hits") << "*.zzz" << 0;
    QTest::newRow("one hit") << "*.doc" << 1;
    QTest::newRow("hits") << "*.txt" << 4;
  }
  void everyFindEndsWithItsSummary() {
    QFETCH(QString, named);
    QFETCH(int, hits);
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q3.ini"), tree_, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    w.findChild<QComboBox*>(QStringLiteral("cboNamed"))->setEditText(named);
    w.findChild<QComboBox*>(QStringLiteral("cboLookIn"))->setEditText(tree_);
    w.findChild<QCheckBox*>(QStringLiteral("chkNamed1"))->setChecked(true);
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdFind")), Qt::LeftButton);
    QCOMPARE(w.list()->model().rowCount(), hits);
    const QString status = w.statusLine()->statusText();
    const QRegularExpression summary(
        QStringLiteral("^\\d+\\.\\d{3} sec \\(\\d+ folders scanned, %1 name hits\\)$").arg(hits));
    QVERIFY2(summary.match(status).hasMatch(), qPrintable(status));
    QCOMPARE(w.list()->model().statusText(),
             hits == 1 ? QStringLiteral("1 file found") : QStringLiteral("%1 files found").arg(hits));
  }

  // "RelPath" shows Path below the location searched; "Look in" offers the
  // tree's root, the folder shown, the volumes and the locations searched.
  void relativePathsAndLookIn() {
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q4.ini"), tree_ + QStringLiteral("other"), false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    auto* lookIn = w.findChild<QComboBox*>(QStringLiteral("cboLookIn"));
    QStringList items;
    for (int i = 0; i < lookIn->count(); ++i) items << lookIn->itemText(i);
    QVERIFY2(items.size() >= 3, qPrintable(items.join(u'|')));
    QCOMPARE(items.value(0), QStringLiteral("Computer"));
    QCOMPARE(items.value(1), tree_ + QStringLiteral("other/"));
    QVERIFY(items.contains(QStringLiteral("/")));

    auto* relPath = w.findChild<QAction*>(QStringLiteral("menRelPath"));
    QVERIFY(relPath);
    relPath->trigger();
    w.findChild<QComboBox*>(QStringLiteral("cboNamed"))->setEditText(QStringLiteral("*.txt"));
    lookIn->setEditText(tree_);
    w.findChild<QCheckBox*>(QStringLiteral("chkNamed1"))->setChecked(true);
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdFind")), Qt::LeftButton);
    const browser::ListModel& m = w.list()->model();
    QStringList paths;
    for (int i = 0; i < m.rowCount(); ++i) paths << m.dataText(m.rowAt(i), core::kSlotPath);
    paths.sort();
    QCOMPARE(paths, (QStringList{"", "other/", "sub/", "sub/deeper/"}));
    relPath->trigger();
    QCOMPARE(m.dataText(m.rowAt(0), core::kSlotPath).left(tree_.size()), tree_);
    QVERIFY(!w.settings().settings.relPath.on());

    items.clear();
    for (int i = 0; i < lookIn->count(); ++i) items << lookIn->itemText(i);
    QVERIFY2(items.contains(tree_), qPrintable(items.join(u'|')));
    QCOMPARE(lookIn->currentText(), tree_);
  }

  // "Look in" takes the browsed folder until the user types there; the next
  // find hands it back to the browsing.
  void lookInFollowsBrowsing() {
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q5.ini"), tree_, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    auto* lookIn = w.findChild<QComboBox*>(QStringLiteral("cboLookIn"));
    const QString sub = tree_ + QStringLiteral("sub/"), other = tree_ + QStringLiteral("other/");
    QVERIFY(w.tree()->SelectPath(sub));
    QCOMPARE(lookIn->currentText(), sub);
    lookIn->lineEdit()->clear();
    QTest::keyClicks(lookIn->lineEdit(), tree_);
    QVERIFY(w.tree()->SelectPath(other));
    QCOMPARE(lookIn->currentText(), tree_);
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdFind")), Qt::LeftButton);
    QTRY_VERIFY(!core::JobFlags::Busy());
    QVERIFY(w.tree()->SelectPath(sub));
    QCOMPARE(lookIn->currentText(), sub);
    QVERIFY(w.tree()->SelectPath(QString()));
    QCOMPARE(lookIn->currentText(), QStringLiteral("Computer"));
  }

  void refusedCriteriaChangeNothing() {
    frmMain w(frmMain::StartOptions{dir_.path() + QStringLiteral("/q2.ini"), tree_, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    const QString before = WindowRows(w);
    const int mode = w.mode();

    w.findChild<QComboBox*>(QStringLiteral("cboLookIn"))->setEditText(tree_);
    w.findChild<QCheckBox*>(QStringLiteral("chkWatch1"))->setChecked(true);
    w.findChild<QLineEdit*>(QStringLiteral("txtSize1"))->setText(QStringLiteral("2048"));
    w.findChild<QRadioButton*>(QStringLiteral("optSizeUnit2"))->setChecked(true);
    QString shown;
    AnswerNextMessageBox(&shown);
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdFind")), Qt::LeftButton);
    QVERIFY(shown.startsWith(QStringLiteral("Invalid size filter")));
    QCOMPARE(w.mode(), mode);
    QCOMPARE(WindowRows(w), before);

    w.findChild<QCheckBox*>(QStringLiteral("chkWatch1"))->setChecked(false);
    w.findChild<QComboBox*>(QStringLiteral("cboLookIn"))->setEditText(tree_ + QStringLiteral("missing"));
    AnswerNextMessageBox(&shown);
    QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("cmdFind")), Qt::LeftButton);
    QVERIFY(shown.startsWith(QStringLiteral("Couldn't find \"")));
    QVERIFY(shown.endsWith(QStringLiteral("Recheck the Look In combo...")));
    QCOMPARE(WindowRows(w), before);
  }
};

QTEST_MAIN(FindInWindowTest)
#include "FindInWindowTest.moc"
