// Rename Special from the File menu: the selection in display order, the
// confirmation, the list refilled with the renamed rows still selected, undo.
#include <QApplication>
#include <QFile>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "browser/MainMenus.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "fileops/RenameConfirmDialog.h"
#include "fileops/RenameLog.h"
#include "tests/TestSupport.h"

using browser::frmMain;

namespace {

// The selected rows' names, in display order.
QStringList Selected(frmMain& w) {
  QStringList out;
  for (const QString& p : w.list()->selectedPaths()) out << p.mid(p.lastIndexOf(u'/') + 1);
  return out;
}

int PositionOf(frmMain& w, const QString& name) {
  const auto& model = w.list()->model();
  for (int p = 0; p < model.rowCount(); ++p)
    if (model.name(model.rowAt(p)) == name) return p;
  return -1;
}

// Answers the next confirmation; keeps what it listed.
void AnswerConfirmation(bool accept, QString* listed) {
  QTimer::singleShot(0, [accept, listed] {
    auto* dialog = qobject_cast<fileops::RenameConfirmDialog*>(QApplication::activeModalWidget());
    if (!dialog) return;
    *listed = dialog->listText();
    accept ? dialog->accept() : dialog->reject();
  });
}

}  // namespace

class TestRenameWindow : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void upperThenUndo() {
    QTemporaryDir dir;
    for (const char* n : {"b one.txt", "a two.txt", "c.txt"}) QVERIFY(testsupport::MakeFile(dir.path() + "/" + n, "x"));
    frmMain w(frmMain::StartOptions{dir.path() + "/q.ini", dir.path(), false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    QTRY_VERIFY(PositionOf(w, "c.txt") >= 0);
    w.list()->setFocusPosition(PositionOf(w, "b one.txt"));
    w.list()->model().toggleSelectedAt(PositionOf(w, "a two.txt"));
    QCOMPARE(Selected(w), (QStringList{"a two.txt", "b one.txt"}));

    QAction* upper = w.findChild<QAction*>("menRenSpecial2");
    QAction* undo = w.findChild<QAction*>("menRenUndo");
    QVERIFY(upper && undo);
    QVERIFY(upper->isEnabled() && !undo->isEnabled());

    QString listed;
    AnswerConfirmation(false, &listed);
    upper->trigger();
    QCOMPARE(listed, QString("a two.txt => A TWO.TXT\nb one.txt => B ONE.TXT"));
    QVERIFY(QFile::exists(dir.path() + "/a two.txt"));  // cancelled: nothing renamed

    AnswerConfirmation(true, &listed);
    upper->trigger();
    QCOMPARE(Selected(w), (QStringList{"A TWO.TXT", "B ONE.TXT"}));
    QVERIFY(PositionOf(w, "c.txt") >= 0 && PositionOf(w, "a two.txt") < 0);
    QVERIFY(undo->isEnabled());

    undo->trigger();
    QCOMPARE(Selected(w), (QStringList{"a two.txt", "b one.txt"}));
    QVERIFY(!undo->isEnabled());
    // Both batches are in the log beside the settings file; the last one is the undo.
    std::vector<fileops::RenameItem> last;
    QString error;
    QVERIFY2(fileops::RenameLog::LastBatch(fileops::RenameLog::PathBeside(w.settingsFile()), &last, &error),
             qPrintable(error));
    QCOMPARE(int(last.size()), 2);
    QCOMPARE(last[0].newName, QString("b one.txt"));
  }
};

QTEST_MAIN(TestRenameWindow)
#include "TestRenameWindow.moc"
