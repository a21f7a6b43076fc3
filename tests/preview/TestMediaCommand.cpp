// `quorvane media` as a script sees it: the row, the messages, the exit status.
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "tests/TestSupport.h"
#include "tests/preview/MediaFixtures.h"

class TestMediaCommand : public QObject {
  Q_OBJECT
 private:
  QTemporaryDir dir_;

  struct Run {
    int code;
    QString out;
    QString err;
  };
  Run run(const QStringList& args) {
    QProcess p;
    p.start(QStringLiteral(QUORVANE_BINARY), QStringList{"media"} + args);
    p.waitForFinished(30000);
    // The audio libraries complain about the missing sound card; those lines are not ours.
    QStringList err;
    for (const QString& line : QString::fromUtf8(p.readAllStandardError()).split(u'\n', Qt::SkipEmptyParts))
      if (!line.contains("ALSA") && !line.startsWith("AL lib") && !line.contains("Pulse") &&
          !line.contains("Failed to connect") && !line.contains("XDG_RUNTIME_DIR"))
        err << line;
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), err.join(u'\n')};
  }

 private Q_SLOTS:
  void initTestCase() {
    QVERIFY(testsupport::MakeFile(dir_.filePath("one.wav"), mediafixtures::Wave(1000)));
    QVERIFY(testsupport::MakeFile(dir_.filePath("cut.wav"), mediafixtures::Wave(1000).left(40)));
    QVERIFY(testsupport::MakeFile(dir_.filePath("two.mid"), mediafixtures::Midi(2, 2)));
    QVERIFY(testsupport::MakeFile(dir_.filePath("a.txt"), "x"));
  }

  void rows_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("out");
    QTest::addColumn<QString>("err");  // the last line
    const QString wav = dir_.filePath("one.wav");
    QTest::newRow("wave") << QStringList{wav} << 0 << "Format: PCM, 44100 Hz, 16 Bit, Stereo\t00:01  000ms\n" << "";
    QTest::newRow("midi") << QStringList{dir_.filePath("two.mid")} << 0 << "Format: PPQN, 2 tracks\t00:01  000ms\n"
                          << "";
    QTest::newRow("played to the end") << QStringList{"--play", wav} << 0
                                       << "Format: PCM, 44100 Hz, 16 Bit, Stereo\t00:01  000ms\n" << "00:01  000ms";
    QTest::newRow("played from the middle") << QStringList{"--play", "--from", "0.5", wav} << 0
                                            << "Format: PCM, 44100 Hz, 16 Bit, Stereo\t00:01  000ms\n"
                                            << "00:01  000ms";
    QTest::newRow("truncated") << QStringList{dir_.filePath("cut.wav")} << 1 << "" << "Cannot decode.";
    QTest::newRow("not media") << QStringList{dir_.filePath("a.txt")} << 2 << ""
                               << "quorvane media: not a media file: " + dir_.filePath("a.txt");
    QTest::newRow("bad fraction") << QStringList{"--from", "2", wav} << 2 << ""
                                  << "quorvane media: --from needs a fraction from 0 to 1";
    QTest::newRow("missing") << QStringList{dir_.filePath("gone.wav")} << 2 << ""
                             << "quorvane media: no such file: " + dir_.filePath("gone.wav");
  }
  void rows() {
    QFETCH(QStringList, args);
    QFETCH(int, code);
    QFETCH(QString, out);
    QFETCH(QString, err);
    const Run r = run(args);
    QCOMPARE(r.err.section(u'\n', -1), err);
    QCOMPARE(r.out, out);
    QCOMPARE(r.code, code);
  }
};

QTEST_GUILESS_MAIN(TestMediaCommand)
#include "TestMediaCommand.moc"
