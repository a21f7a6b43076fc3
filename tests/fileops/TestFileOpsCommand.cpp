// `quorvane copy|move` as a script sees them: one row per item in the job's
// order, however many (rows of large jobs are written on a thread of their
// own), the summary after the last row, and a refused selection untouched.
// A plain move, done by the front end without the engines, must end exactly
// as the engines would have ended it.
#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/TestSupport.h"

namespace {

struct Run {
  int code;
  QStringList rows;
  QString err;
};

Run Quorvane(const QStringList& args, const QString& folder = QString(),
             const QString& program = QStringLiteral(QUORVANE_BINARY)) {
  QProcess p;
  p.setWorkingDirectory(folder);
  p.start(program, args);
  p.waitForFinished(60000);
  QStringList rows = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n');
  if (!rows.isEmpty() && rows.back().isEmpty()) rows.removeLast();
  return {p.exitCode(), rows, QString::fromUtf8(p.readAllStandardError())};
}

QString Name(int i) { return QStringLiteral("f%1.txt").arg(i, 4, 10, QChar(u'0')); }

// Every file and folder under `root` with its bytes, and the run's output,
// with `root` spelt ROOT: twin trees compare equal.
QStringList Snapshot(const QString& root, const Run& run) {
  QStringList all{QString::number(run.code), run.err};
  all += run.rows;
  QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                  QDirIterator::Subdirectories);
  while (it.hasNext()) {
    const QFileInfo info(it.next());
    QFile f(info.filePath());
    const QByteArray bytes = info.isDir() || !f.open(QIODevice::ReadOnly) ? QByteArray() : f.readAll();
    all << info.filePath() + (info.isDir() ? QString() : u':' + QString::fromUtf8(bytes));
  }
  std::sort(all.begin() + 2 + run.rows.size(), all.end());
  return all.replaceInStrings(root, QStringLiteral("ROOT"));
}

}  // namespace

class TestFileOpsCommand : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  // Enough items for several batches of rows; "missing" puts a source that
  // does not exist at the end of the selection.
  void selection_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<bool>("missing");
    QTest::newRow("copy") << "copy" << false;
    QTest::newRow("move") << "move" << false;
    QTest::newRow("move, last source missing") << "move" << true;
  }
  void selection() {
    QFETCH(QString, command);
    QFETCH(bool, missing);
    constexpr int kItems = 700;
    QTemporaryDir dir;
    const QString from = dir.filePath("from"), to = dir.filePath("to");
    QVERIFY(QDir().mkpath(from) && QDir().mkpath(to));
    QStringList args{command};
    for (int i = 0; i < kItems; ++i) {
      QVERIFY(testsupport::MakeFile(from + u'/' + Name(i), Name(i).toUtf8()));
      args << from + u'/' + Name(i);
    }
    // Paths are cleaned however they are spelt; the rows show them clean.
    args[1] = from + "/./" + Name(0);
    args[2] = from + "//" + Name(1);
    args[3] = from + "/../from/" + Name(2);
    if (missing) args << from + "/gone.txt";
    args << to;
    const Run run = Quorvane(args);
    if (missing) {
      QCOMPARE(run.code, 2);
      QVERIFY(run.rows.isEmpty());
      QVERIFY2(run.err.contains("The source does not exist: " + from + "/gone.txt"), qPrintable(run.err));
      QCOMPARE(QDir(from).count(), uint(kItems + 2));  // nothing moved
      QCOMPARE(QDir(to).count(), uint(2));
      return;
    }
    QCOMPARE(run.code, 0);
    QCOMPARE(run.rows.size(), kItems);
    const QString word = command == u"copy" ? QStringLiteral("copied") : QStringLiteral("moved");
    for (int i = 0; i < kItems; ++i) {
      QCOMPARE(run.rows[i], QStringList({word, from + u'/' + Name(i), to + u'/' + Name(i), QString()}).join(u'\t'));
      QFile f(to + u'/' + Name(i));
      QVERIFY(f.open(QIODevice::ReadOnly));
      QCOMPARE(f.readAll(), Name(i).toUtf8());
    }
    QCOMPARE(QFile::exists(from + u'/' + Name(0)), command == u"copy");
    QVERIFY2(run.err.contains(QString::number(kItems)), qPrintable(run.err));
  }

  // Each request is made three times on twin trees: plainly, with an option
  // (which always goes to the engines) and by the front end alone, without
  // the engines' library beside it. "quick": the front end does it all;
  // "declined": it leaves everything untouched; "handed over": it moves the
  // first sources and the engines settle the rest.
  void plainMove_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("route");
    const QString e = QStringLiteral("from/\u00e9 b.txt");
    QTest::newRow("files and a folder, relative") << QStringList{"from/a.txt", e, "from/sub", "to/"} << "quick";
    QStringList many;
    for (int i = 0; i < 600; ++i) many << "from/many/" + Name(i);
    QTest::newRow("600 names of one folder and a folder") << (many + QStringList{"from/sub", "to"}) << "quick";
    QTest::newRow("a taken name midway") << QStringList{"from/a.txt", "from/taken.txt", "from/sub", "to"}
                                         << "handed over";
    QTest::newRow("a source given twice") << QStringList{"from/a.txt", "from/a.txt", "to"} << "handed over";
    QTest::newRow("already there") << QStringList{"to/taken.txt", "to"} << "handed over";
    QTest::newRow("a missing source") << QStringList{"from/a.txt", "from/none", "to"} << "declined";
    QTest::newRow("600 names, one missing") << (many + QStringList{"from/many/none", "to"}) << "declined";
    QTest::newRow("a folder into itself") << QStringList{"from/sub", "from/sub"} << "declined";
    QTest::newRow("a name rows escape") << QStringList{"from/tab\tname", "to"} << "declined";
    QTest::newRow("a path to clean") << QStringList{"from/../from/a.txt", "to"} << "declined";
  }
  void plainMove() {
    QFETCH(QStringList, args);
    QFETCH(QString, route);
    QTemporaryDir dir;
    // The front end alone, as if its library were missing.
    const QString lone = dir.filePath("lone/quorvane");
    QVERIFY(QDir().mkpath(dir.filePath("lone")) && QFile::copy(QStringLiteral(QUORVANE_BINARY), lone));
    QStringList results;
    for (const char* twin : {"plain", "option", "alone"}) {
      const QString root = dir.filePath(twin);
      for (const char* name : {"from/a.txt", "from/\u00e9 b.txt", "from/sub/in.txt", "from/taken.txt", "to/taken.txt",
                               "from/tab\tname"})
        QVERIFY(testsupport::MakeFile(root + u'/' + QString::fromUtf8(name), name));
      for (int i = 0; i < 600; ++i) QVERIFY(testsupport::MakeFile(root + "/from/many/" + Name(i), Name(i).toUtf8()));
      const QStringList before = Snapshot(root, {});
      const bool alone = twin == std::string_view("alone");
      const QStringList given = twin == std::string_view("option") ? QStringList{"--on-conflict", "skip"} + args : args;
      const Run run = Quorvane(QStringList{"move"} + given, root, alone ? lone : QStringLiteral(QUORVANE_BINARY));
      const QStringList after = Snapshot(root, run);
      if (alone && route != u"quick") {
        QCOMPARE(run.code, 127);
        if (route == u"declined") QCOMPARE(after.mid(2 + run.rows.size()), before.mid(2));
      } else {
        results << after.join(u'\n');
      }
    }
    QCOMPARE(results[0], results[1]);
    if (route == u"quick") QCOMPARE(results[0], results[2]);
  }
};

QTEST_GUILESS_MAIN(TestFileOpsCommand)
#include "TestFileOpsCommand.moc"
