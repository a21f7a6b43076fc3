// A drop on the list and a paste from the clipboard go through the copy
// engine into the list's folder, and the list shows the result.
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

#include "browser/FileOpsRunner.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "tests/TestSupport.h"

using browser::frmMain;

namespace {

QByteArray Read(const QString& path) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

bool Listed(frmMain& w, const QString& path) {
  const auto& model = w.list()->model();
  for (int p = 0; p < model.rowCount(); ++p)
    if (model.path(model.rowAt(p)) == path) return true;
  return false;
}

}  // namespace

class TestFileOpsWindow : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(testsupport::MakeFile(dir_.path() + "/from/a.txt", "aaa"));
    QVERIFY(testsupport::MakeFile(dir_.path() + "/from/b.txt", "bbb"));
    QVERIFY(testsupport::MakeFolder(dir_.path() + "/to/inner"));
  }

  void drop_data() {
    QTest::addColumn<int>("action");
    QTest::addColumn<bool>("onFolderRow");
    QTest::newRow("copy onto the list") << int(Qt::CopyAction) << false;
    QTest::newRow("move (Shift) onto a folder row") << int(Qt::MoveAction) << true;
  }
  void drop() {
    QFETCH(int, action);
    QFETCH(bool, onFolderRow);
    const QString to = dir_.path() + "/to";
    frmMain w(frmMain::StartOptions{dir_.path() + "/q.ini", to, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    QTRY_VERIFY(Listed(w, to + "/inner"));
    int hit = -1;
    for (int p = 0; p < w.list()->model().rowCount() && onFolderRow; ++p)
      if (w.list()->model().path(w.list()->model().rowAt(p)) == to + "/inner") hit = p;
    w.list()->selectPaths({to + "/inner"});
    Q_EMIT w.list()->Drop({dir_.path() + "/from/a.txt"}, Qt::DropAction(action), hit);
    const QString target = onFolderRow ? to + "/inner/a.txt" : to + "/a.txt";
    // The refilled list keeps the selection, or shows what came into its folder.
    QCOMPARE(w.list()->selectedPaths(), QStringList{onFolderRow ? to + "/inner" : target});
    QCOMPARE(Read(target), QByteArray("aaa"));
    QCOMPARE(QFile::exists(dir_.path() + "/from/a.txt"), action == Qt::CopyAction);
    if (!onFolderRow) QVERIFY(Listed(w, target));
  }

  void paste() {
    const QString to = dir_.path() + "/to";
    frmMain w(frmMain::StartOptions{dir_.path() + "/q2.ini", to, false});
    w.Load();
    w.show();
    w.ShowStartFolder();
    QTRY_VERIFY(Listed(w, to + "/inner"));
    bool cut = true;
    QMimeData* data = browser::FileOpsRunner::FileListData({dir_.path() + "/from/b.txt"}, false);
    QCOMPARE(browser::FileOpsRunner::PathsFromData(data, &cut), QStringList{dir_.path() + "/from/b.txt"});
    QVERIFY(!cut);
    QVERIFY(data->data("x-special/gnome-copied-files").startsWith("copy\nfile://"));
    QApplication::clipboard()->setMimeData(data);
    QApplication::setActiveWindow(&w);
    QVERIFY(QTest::qWaitForWindowActive(&w));
    w.list()->setFocus();
    QTest::keyClick(w.list(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(Read(to + "/b.txt"), QByteArray("bbb"));
    QCOMPARE(Read(dir_.path() + "/from/b.txt"), QByteArray("bbb"));
    QVERIFY(Listed(w, to + "/b.txt"));
  }
};

QTEST_MAIN(TestFileOpsWindow)
#include "TestFileOpsWindow.moc"
