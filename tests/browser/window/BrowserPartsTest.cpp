// The window's small engines: the key-held scan, the folder history, the job
// status lines and the tree's subfolder reads.
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

#include "browser/FolderHistory.h"
#include "browser/InlineRename.h"
#include "browser/JobStatus.h"
#include "browser/KeyState.h"
#include "browser/SubfolderReader.h"
#include "tests/TestSupport.h"

using browser::FolderHistory;
using browser::JobStatus;
using browser::KeyState;
using browser::SubfolderReader;

class BrowserPartsTest : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void keyHeld_data() {
    QTest::addColumn<QList<int>>("down");  // virtual-key codes
    QTest::addColumn<bool>("held");
    QTest::newRow("nothing") << QList<int>{} << false;
    QTest::newRow("down arrow") << QList<int>{40} << true;
    QTest::newRow("left windows key") << QList<int>{91} << false;
    QTest::newRow("right windows key") << QList<int>{92} << false;
    QTest::newRow("windows key and arrow: the arrow comes first") << QList<int>{91, 40} << true;
    QTest::newRow("windows key and a letter") << QList<int>{91, 90} << true;
    QTest::newRow("windows key stops the scan before the keypad") << QList<int>{91, 96} << false;
    QTest::newRow("windows key stops the scan before F5") << QList<int>{92, 116} << false;
    QTest::newRow("F5 alone") << QList<int>{116} << true;
    QTest::newRow("backspace, the first code scanned") << QList<int>{8} << true;
    QTest::newRow("scroll lock, the last code scanned") << QList<int>{145} << true;
    QTest::newRow("below the scan") << QList<int>{1, 2, 4} << false;
    QTest::newRow("above the scan") << QList<int>{186, 219} << false;
    QTest::newRow("shift") << QList<int>{16} << true;
  }
  void keyHeld() {
    QFETCH(QList<int>, down);
    QFETCH(bool, held);
    KeyState keys;
    for (int vk : down) keys.press(vk);
    QCOMPARE(keys.held(), held);
    for (int vk : down) keys.release(vk);
    QVERIFY(!keys.held());
    QVERIFY(!keys.any());
  }

  void virtualKeys_data() {
    QTest::addColumn<int>("qtKey");
    QTest::addColumn<bool>("keypad");
    QTest::addColumn<int>("vk");
    QTest::newRow("down") << int(Qt::Key_Down) << false << 40;
    QTest::newRow("keypad down is still down") << int(Qt::Key_Down) << true << 40;
    QTest::newRow("meta") << int(Qt::Key_Meta) << false << 91;
    QTest::newRow("super left") << int(Qt::Key_Super_L) << false << 91;
    QTest::newRow("super right") << int(Qt::Key_Super_R) << false << 92;
    QTest::newRow("A") << int(Qt::Key_A) << false << 65;
    QTest::newRow("7") << int(Qt::Key_7) << false << 55;
    QTest::newRow("keypad 7") << int(Qt::Key_7) << true << 103;
    QTest::newRow("F1") << int(Qt::Key_F1) << false << 112;
    QTest::newRow("F24") << int(Qt::Key_F24) << false << 135;
    QTest::newRow("escape") << int(Qt::Key_Escape) << false << 27;
    QTest::newRow("alt") << int(Qt::Key_Alt) << false << 18;
    QTest::newRow("semicolon") << int(Qt::Key_Semicolon) << false << 186;
    QTest::newRow("unmapped") << int(Qt::Key_VolumeUp) << false << 0;
  }
  void virtualKeys() {
    QFETCH(int, qtKey);
    QFETCH(bool, keypad);
    QFETCH(int, vk);
    QCOMPARE(KeyState::VirtualKeyFor(qtKey, keypad), vk);
  }

  void history() {
    FolderHistory h;
    QVERIFY(!h.canGoBack());
    QCOMPARE(h.GoBack(), QString());
    h.Visit(QStringLiteral("/a/"));
    h.Visit(QStringLiteral("/a/"));  // the present folder again: no entry
    h.Visit(QStringLiteral("/b/"));
    h.Visit(QStringLiteral("/c/"));
    QCOMPARE(h.entries(), (QStringList{"/a/", "/b/", "/c/"}));
    QCOMPARE(h.GoBack(), QStringLiteral("/b/"));
    QCOMPARE(h.GoBack(), QStringLiteral("/a/"));
    QVERIFY(!h.canGoBack());
    QCOMPARE(h.GoForward(), QStringLiteral("/b/"));
    // The fill that follows a Back visits the folder shown: nothing changes.
    h.Visit(QStringLiteral("/b/"));
    QCOMPARE(h.entries().size(), 3);
    QVERIFY(h.canGoForward());
    // A new folder from the middle drops what lay ahead.
    h.Visit(QStringLiteral("/d/"));
    QCOMPARE(h.entries(), (QStringList{"/a/", "/b/", "/d/"}));
    QVERIFY(!h.canGoForward());
    QCOMPARE(h.GoTo(0), QStringLiteral("/a/"));
    QCOMPARE(h.GoTo(7), QString());
    QCOMPARE(h.position(), 0);
  }

  void historyIsCapped() {
    FolderHistory h;
    for (int i = 0; i < FolderHistory::kMaxEntries + 5; ++i) h.Visit(QStringLiteral("/f%1/").arg(i));
    QCOMPARE(h.entries().size(), FolderHistory::kMaxEntries);
    QCOMPARE(h.entries().first(), QStringLiteral("/f5/"));
    QCOMPARE(h.position(), FolderHistory::kMaxEntries - 1);
  }

  void jobStatus_data() {
    QTest::addColumn<qint64>("elapsedMs");
    QTest::addColumn<double>("folders");
    QTest::addColumn<double>("hits");
    QTest::addColumn<bool>("aborted");
    QTest::addColumn<QString>("find");
    QTest::addColumn<QString>("brief");
    QTest::newRow("plain") << qint64(2345) << 12.0 << 3.0 << false << "2.345 sec (12 folders scanned, 3 name hits)"
                           << "2.345 sec";
    QTest::newRow("grouped counts") << qint64(61000) << 123456.0 << 1000.0 << false
                                    << "61.000 sec (123,456 folders scanned, 1,000 name hits)" << "61.000 sec";
    QTest::newRow("nothing yet") << qint64(0) << 0.0 << 0.0 << false << "0.000 sec (0 folders scanned, 0 name hits)"
                                 << "0.000 sec";
    QTest::newRow("aborted") << qint64(5) << 1.0 << 1.0 << true << "0.005 sec (1 folders scanned, 1 name hits)  ABORTED"
                             << "0.005 sec  ABORTED";
  }
  void jobStatus() {
    QFETCH(qint64, elapsedMs);
    QFETCH(double, folders);
    QFETCH(double, hits);
    QFETCH(bool, aborted);
    QFETCH(QString, find);
    QFETCH(QString, brief);
    JobStatus s;
    s.MarkAborted();
    s.Start(1'000'000);  // a new job clears the mark
    QVERIFY(!s.aborted());
    if (aborted) s.MarkAborted();
    QCOMPARE(s.FindSummary(1'000'000 + elapsedMs, folders, hits), find);
    QCOMPARE(s.ShortSummary(1'000'000 + elapsedMs), brief);
  }

  void subfolders() {
    QTemporaryDir dir;
    const QString root = dir.path() + u'/';
    for (const char* f : {"beta", "Alpha", "alpha2", "gamma", ".hidden", "Z"}) QVERIFY(testsupport::MakeFolder(root + QLatin1String(f)));
    QVERIFY(testsupport::MakeFile(root + QStringLiteral("file.txt"), "x"));
    QVERIFY(QFile::link(root + QStringLiteral("gamma"), root + QStringLiteral("link-to-gamma")));
    QCOMPARE(SubfolderReader::List(root), (QStringList{".hidden", "Alpha", "alpha2", "beta", "gamma", "Z"}));
    QVERIFY(SubfolderReader::HasAny(root));
    QVERIFY(!SubfolderReader::HasAny(root + QStringLiteral("beta/")));
    QVERIFY(SubfolderReader::List(root + QStringLiteral("missing/")).isEmpty());
    QVERIFY(!SubfolderReader::HasAny(root + QStringLiteral("file.txt/")));
  }

  // F2 in the list: a new name in the same folder, never onto another entry.
  void inlineRename_data() {
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<QString>("error");  // empty: renamed
    QTest::addColumn<QString>("after");  // the folder's entries
    const QString same = "a.txt,b.txt,sub";
    QTest::newRow("file") << "a.txt" << "c.txt" << "" << "b.txt,c.txt,sub";
    QTest::newRow("folder, given with its separator") << "sub/" << "renamed" << "" << "a.txt,b.txt,renamed";
    QTest::newRow("case only") << "a.txt" << "A.TXT" << "" << "A.TXT,b.txt,sub";
    QTest::newRow("onto a file") << "a.txt" << "b.txt" << "Cannot rename a.txt: \"b.txt\" already exists." << same;
    QTest::newRow("onto a folder") << "a.txt" << "sub" << "Cannot rename a.txt: \"sub\" already exists." << same;
    QTest::newRow("folder onto a file") << "sub/" << "b.txt" << "Cannot rename sub: \"b.txt\" already exists." << same;
    QTest::newRow("a path") << "a.txt" << "sub/a.txt" << "Cannot rename a.txt: A name cannot hold \"/\"." << same;
    QTest::newRow("dot dot") << "a.txt" << ".." << "Cannot rename a.txt: \"..\" cannot be a name." << same;
    QTest::newRow("empty") << "a.txt" << "" << "Cannot rename a.txt: The new name is empty." << same;
    QTest::newRow("vanished") << "gone.txt" << "c.txt" << "Cannot rename gone.txt: It is no longer there." << same;
  }
  void inlineRename() {
    QFETCH(QString, from);
    QFETCH(QString, to);
    QTemporaryDir dir;
    const QString root = dir.path() + u'/';
    QVERIFY(testsupport::MakeFile(root + QStringLiteral("a.txt"), "aaa"));
    QVERIFY(testsupport::MakeFile(root + QStringLiteral("b.txt"), "bbb"));
    QVERIFY(testsupport::MakeFolder(root + QStringLiteral("sub")));
    QTEST(browser::InlineRename(root + from, to), "error");
    QTEST(QDir(root).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase).join(u','),
          "after");
    QFile b(root + QStringLiteral("b.txt"));
    if (b.open(QIODevice::ReadOnly)) QCOMPARE(b.readAll(), QByteArray("bbb"));
  }

  void subfolderOrder_data() {
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<bool>("before");
    QTest::newRow("case is ignored") << "apple" << "Banana" << true;
    QTest::newRow("case decides a tie") << "B" << "b" << true;
    QTest::newRow("prefix first") << "a" << "a-b" << true;
    QTest::newRow("not reflexive") << "same" << "same" << false;
  }
  void subfolderOrder() {
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(bool, before);
    QCOMPARE(SubfolderReader::Before(a, b), before);
    if (a != b) QCOMPARE(SubfolderReader::Before(b, a), !before);
  }
};

QTEST_GUILESS_MAIN(BrowserPartsTest)
#include "BrowserPartsTest.moc"
