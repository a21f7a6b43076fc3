// The media page as the user sees it: labels, the progress timer, the mouse
// on the bar, and video frames painted into the picture host.
#include <QComboBox>
#include <QLabel>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include "preview/MciDevice.h"
#include "preview/MediaController.h"
#include "preview/MediaPane.h"
#include "tests/TestSupport.h"
#include "tests/preview/MediaFixtures.h"

using namespace preview;

class TestMediaPane : public QObject {
  Q_OBJECT
 private:
  QTemporaryDir dir_;

 private Q_SLOTS:
  void initTestCase() {
    MciDevice::UseGStreamerBackend();
    QVERIFY(testsupport::MakeFile(dir_.filePath("one.wav"), mediafixtures::Wave(1000)));
    QVERIFY(testsupport::MakeFile(dir_.filePath("note.txt"), "text"));
  }

  // The framework's streaming threads wind down after the last close.
  void cleanupTestCase() { QTest::qWait(300); }

  void playsAndAnswersTheMouse() {
    MediaController c;
    MediaPane* pane = c.pane();
    pane->resize(400, 300);
    pane->show();
    QVERIFY(c.Preview(dir_.filePath("one.wav")));
    QCOMPARE(pane->lblFormat->text(), QStringLiteral("Format: PCM, 44100 Hz, 16 Bit, Stereo"));
    QCOMPARE(c.tmrSound()->interval(), 50);
    QVERIFY(c.tmrSound()->isActive());
    QVERIFY(!pane->cboTrack->isVisible());
    QTRY_VERIFY_WITH_TIMEOUT(!c.tmrSound()->isActive(), 5000);
    QCOMPARE(pane->lblWav->text(), QStringLiteral("00:01  000ms"));
    QCOMPARE(pane->picProg->fraction(), 1.0);

    // At the end a left click starts again from 0, a second one stops.
    QWidget* bar = pane->findChild<QWidget*>(QStringLiteral("imgProg"));
    QVERIFY(bar);
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(10, 5));
    QVERIFY(c.tmrSound()->isActive());
    QTRY_COMPARE_WITH_TIMEOUT(c.session().MediaMode(), QStringLiteral("playing"), 3000);
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(10, 5));
    QVERIFY(!c.tmrSound()->isActive());
    QCOMPARE(c.session().MediaMode(), QStringLiteral("stopped"));
    QVERIFY(c.session().IsOpen());

    // Another kind of file closes the player.
    QVERIFY(!c.Preview(dir_.filePath("note.txt")));
    QVERIFY(!c.session().IsOpen());
    QVERIFY(pane->lblFormat->text().isEmpty());
  }

  void showsVideo() {
    const QString launcher = QStandardPaths::findExecutable(QStringLiteral("gst-launch-1.0"));
    const QString avi = dir_.filePath("clip.avi");
    QProcess p;
    if (!launcher.isEmpty()) {
      p.start(launcher, QProcess::splitCommand(QStringLiteral(
                            "-q videotestsrc num-buffers=45 ! video/x-raw,width=160,height=120,framerate=15/1 ! "
                            "jpegenc ! avimux ! filesink location=") + avi));
      p.waitForFinished(30000);
    }
    if (launcher.isEmpty() || p.exitCode() != 0) QSKIP("gst-launch-1.0 with jpegenc and avimux is not installed");
    MediaController c;
    c.pane()->resize(400, 300);
    c.pane()->show();
    QVERIFY(c.Preview(avi));
    QCOMPARE(c.pane()->lblFormat->text(), QStringLiteral("Format: 24 Bits, 15 fr/sec"));
    QTRY_VERIFY_WITH_TIMEOUT(!c.pane()->picVideo->lastFrame().isNull(), 3000);
    // The frame fills the host: its middle is not the black background.
    const QImage shot = c.pane()->picVideo->grab().toImage();
    QVERIFY(shot.pixelColor(shot.width() / 4, shot.height() / 4) != QColor(Qt::black));
    const QString out = qEnvironmentVariable("QUORVANE_MEDIA_SHOT");
    if (!out.isEmpty()) c.pane()->grab().save(out);
  }
};

QTEST_MAIN(TestMediaPane)
#include "TestMediaPane.moc"
