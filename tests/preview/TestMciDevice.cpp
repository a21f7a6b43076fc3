// The media device on the real media framework, with files made here. No
// sound card is needed: the framework falls back to a null output.
#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QVideoFrame>
#include <QVideoSink>
#include <QtTest>

#include "preview/MciDevice.h"
#include "preview/MciErrors.h"
#include "preview/modMCIsnd.h"
#include "tests/TestSupport.h"
#include "tests/preview/MediaFixtures.h"

using preview::MciDevice;

class TestMciDevice : public QObject {
  Q_OBJECT
 private:
  QTemporaryDir dir_;
  QString path(const char* name) const { return dir_.filePath(QString::fromLatin1(name)); }

  // Makes a file with a GStreamer pipeline; empty when the elements are missing.
  QString encode(const char* name, const QString& pipeline) {
    const QString launcher = QStandardPaths::findExecutable(QStringLiteral("gst-launch-1.0"));
    if (launcher.isEmpty()) return QString();
    QProcess p;
    p.start(launcher, QProcess::splitCommand(QStringLiteral("-q ") + pipeline + QStringLiteral(" ! filesink location=") + path(name)));
    if (!p.waitForFinished(30000) || p.exitCode() != 0) return QString();
    return path(name);
  }

 private Q_SLOTS:
  void initTestCase() {
    MciDevice::UseGStreamerBackend();
    QVERIFY(dir_.isValid());
    using namespace mediafixtures;
    QVERIFY(testsupport::MakeFile(path("one.wav"), Wave(1000)));
    QVERIFY(testsupport::MakeFile(path("lies.wav"), Wave(300, 44100, 16, 2, 50000000)));
    QVERIFY(testsupport::MakeFile(path("cut.wav"), Wave(1000).left(30)));
    QVERIFY(testsupport::MakeFile(path("empty.wav"), QByteArray()));
    QVERIFY(testsupport::MakeFile(path("empty.mp3"), QByteArray()));
    QVERIFY(testsupport::MakeFile(path("song.mid"), Midi(1, 1)));
    QVERIFY(testsupport::MakeFile(path("none.mid"), Midi(0, 0)));
    QVERIFY(testsupport::MakeFile(path("many.mid"), Midi(65535, 1)));
    QVERIFY(testsupport::MakeFile(path("noise.mpg"), QByteArray(4000, 'x')));
  }

  void refusals_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("code");
    const QString one = path("one.wav");
    QTest::newRow("empty") << "" << int(preview::kMciMissingCommandString);
    QTest::newRow("unknown verb") << "frobnicate wav " << int(preview::kMciUnrecognizedCommand);
    QTest::newRow("no alias") << "play" << int(preview::kMciMissingDeviceName);
    QTest::newRow("not open") << "play wav " << int(preview::kMciInvalidDeviceName);
    QTest::newRow("open without alias") << "open " + one + " type waveaudio" << int(preview::kMciMissingDeviceName);
    QTest::newRow("unknown device type") << "open " + one + " type toaster alias wav " << int(preview::kMciCannotLoadDriver);
    QTest::newRow("missing file") << "open " + path("gone.wav") + " type waveaudio alias wav "
                                  << int(preview::kMciFileNotFound);
    QTest::newRow("zero-length wave") << "open " + path("empty.wav") + " type waveaudio alias wav "
                                      << int(preview::kMciInvalidFile);
    QTest::newRow("zero-length mp3") << "open " + path("empty.mp3") + " type MPEGVideo alias wav "
                                     << int(preview::kMciInvalidFile);
    QTest::newRow("truncated wave") << "open " + path("cut.wav") + " type waveaudio alias wav "
                                    << int(preview::kMciInvalidFile);
    QTest::newRow("midi without tracks") << "open " + path("none.mid") + " type sequencer alias wav "
                                         << int(preview::kMciInvalidFile);
    QTest::newRow("midi with 65535 tracks") << "open " + path("many.mid") + " type sequencer alias wav "
                                            << int(preview::kMciInvalidFile);
    QTest::newRow("not a video") << "open " + path("noise.mpg") + " type MPEGVideo alias wav "
                                 << int(preview::kMciInvalidFile);
    QTest::newRow("video without a window") << "open " + one + " type MPEGVideo alias wav  parent 9 style child wait"
                                            << int(preview::kMciNoWindow);
    QTest::newRow("no disc") << "open cdaudio alias wav " << int(preview::kMciDeviceNotReady);
  }
  void refusals() {
    QFETCH(QString, command);
    QFETCH(int, code);
    if (code == preview::kMciDeviceNotReady && (QFile::exists("/dev/cdrom") || QFile::exists("/dev/sr0")))
      QSKIP("this machine has an optical drive; a disc may be in it");
    MciDevice device;
    QString reply;
    QCOMPARE(device.SendString(command, &reply), code);
    QCOMPARE(device.DeviceId("wav"), 0);
    QVERIFY(!device.ErrorString(code).isEmpty());
  }

  void waveDeviceAnswers() {
    MciDevice device;
    QString reply;
    QCOMPARE(device.SendString("open " + path("lies.wav") + " type waveaudio alias wav ", &reply), 0);
    QCOMPARE(device.SendString("open " + path("one.wav") + " type waveaudio alias wav ", &reply),
             int(preview::kMciDuplicateAlias));
    const QList<QPair<QString, QString>> answers = {
        {"status wav length", "300"},  // the data size claimed is cut to the file
        {"status wav format tag", "pcm"},
        {"status wav samplespersec", "44100"},
        {"status wav bitspersample", "16"},
        {"status wav channels", "2"},
        {"status wav mode", "stopped"},
        {"status wav number of tracks", "1"},
    };
    for (const auto& [query, expected] : answers) {
      QCOMPARE(device.SendString(query, &reply), 0);
      QCOMPARE(reply, expected);
    }
    QCOMPARE(device.SendString("status wav division type", &reply), int(preview::kMciUnsupportedFunction));
    QCOMPARE(device.SendString("status wav nonsense", &reply), int(preview::kMciUnrecognizedKeyword));
    QCOMPARE(device.SendString("set wav time format bytes", &reply), int(preview::kMciUnsupportedFunction));
    QCOMPARE(device.SendString("play wav from 99999", &reply), int(preview::kMciOutOfRange));
    QCOMPARE(device.SendString("play wav from x", &reply), int(preview::kMciBadInteger));
    QCOMPARE(device.SendString("close wav  wait", &reply), 0);
    QCOMPARE(device.DeviceId("wav"), 0);
  }

  void playsWaveToTheEnd() {
    MciDevice device;
    modMCIsnd::MediaSession session(&device);
    int status = -1;
    session.setStatusHandler([&](int code) { status = code; });
    QElapsedTimer t;
    t.start();
    QVERIFY(session.PreviewMedia(path("one.wav")));
    QCOMPARE(status, int(modMCIsnd::kStatusHidden));
    QCOMPARE(session.FormatLabel(), QStringLiteral("Format: PCM, 44100 Hz, 16 Bit, Stereo"));
    QTRY_COMPARE_WITH_TIMEOUT(session.MediaMode(), QStringLiteral("playing"), 3000);
    modMCIsnd::Progress p;
    QTRY_VERIFY_WITH_TIMEOUT((p = session.Tick()).finished, 5000);
    QCOMPARE(p.label, QStringLiteral("00:01  000ms"));
    QCOMPARE(session.MediaMode(), QStringLiteral("stopped"));
    QVERIFY(t.elapsed() >= 900);
    session.StopMedia(false);
    QCOMPARE(device.DeviceId("wav"), 0);
  }

  void playsFromAPoint() {
    QVERIFY(testsupport::MakeFile(path("three.wav"), mediafixtures::Wave(3000)));
    MciDevice device;
    modMCIsnd::MediaSession session(&device);
    QVERIFY(session.PreviewMedia(path("three.wav"), QString(), false));
    QElapsedTimer t;
    t.start();
    session.PlayFrom(2.0 / 3.0, false);
    QVERIFY(session.MediaPosition() >= 2000);
    QTRY_VERIFY_WITH_TIMEOUT(session.Tick().finished, 5000);
    QVERIFY2(t.elapsed() < 2500, "played from the start");
    session.StopMedia(false);
  }

  void midiPlays() {
    MciDevice device;
    modMCIsnd::MediaSession session(&device);
    int status = -1;
    session.setStatusHandler([&](int code) { status = code; });
    QVERIFY(session.PreviewMedia(path("song.mid")));
    if (status == modMCIsnd::kStatusCannotDecode) QSKIP("no MIDI synthesizer element (gstreamer1.0-plugins-bad fluidsynth)");
    QCOMPARE(session.FormatLabel(), QStringLiteral("Format: PPQN, 1 tracks"));
    QTRY_VERIFY_WITH_TIMEOUT(session.MediaPosition() > 0, 3000);
    QVERIFY(session.MediaLength() >= 900);
    session.StopMedia(false);
  }

  void fileDeletedWhilePlaying() {
    const QString copy = path("doomed.wav");
    QVERIFY(testsupport::MakeFile(copy, mediafixtures::Wave(3000)));
    MciDevice device;
    modMCIsnd::MediaSession session(&device);
    QVERIFY(session.PreviewMedia(copy));
    QTRY_COMPARE_WITH_TIMEOUT(session.MediaMode(), QStringLiteral("playing"), 3000);
    QVERIFY(QFile::remove(copy));
    QTest::qWait(200);
    session.Tick();
    session.StopMedia(false);
    QCOMPARE(device.DeviceId("wav"), 0);
  }

  void compressedAndVideo() {
    const QString mp3 = encode("tone.mp3", "audiotestsrc num-buffers=44 ! audio/x-raw,rate=44100,channels=2 ! lamemp3enc");
    const QString avi = encode("clip.avi",
                               "videotestsrc num-buffers=15 ! video/x-raw,width=160,height=120,framerate=15/1 ! "
                               "jpegenc ! avimux");
    if (mp3.isEmpty() || avi.isEmpty()) QSKIP("gst-launch-1.0 with lamemp3enc, jpegenc and avimux is not installed");
    MciDevice device;
    modMCIsnd::MediaSession session(&device);
    QVERIFY(session.PreviewMedia(mp3, QString(), false));
    QVERIFY(session.FormatLabel().contains(QStringLiteral("44100 Hz, Stereo")));
    QVERIFY2(qAbs(session.MediaLength() - 1000) < 150, qPrintable(QString::number(session.MediaLength())));

    QVideoSink sink;
    QRect placed;
    device.SetVideoWindow("7", &sink, [&](const QRect& r) { placed = r; });
    modMCIsnd::MediaHost host;
    host.visible = [] { return true; };
    host.windowHandle = [] { return QStringLiteral("7"); };
    host.size = [] { return QSize(300, 200); };
    session.setHost(host);
    int frames = 0;
    connect(&sink, &QVideoSink::videoFrameChanged, this, [&](const QVideoFrame& f) { frames += f.isValid(); });
    QVERIFY(session.PreviewMedia(avi));
    QCOMPARE(session.mediaClass(), int(modMCIsnd::kVideo));
    QCOMPARE(placed, QRect(0, 0, 300, 200));
    QCOMPARE(session.FormatLabel(), QStringLiteral("Format: 24 Bits, 15 fr/sec"));
    QTRY_VERIFY_WITH_TIMEOUT(frames > 0, 3000);
    session.StopMedia(false);

    // A codec nobody decodes: refused, nothing left open.
    QFile clip(avi);
    QVERIFY(clip.open(QIODevice::ReadOnly));
    QVERIFY(testsupport::MakeFile(path("nocodec.avi"), clip.readAll().replace("MJPG", "ZZZZ")));
    int status = -1;
    session.setStatusHandler([&](int code) { status = code; });
    QVERIFY(session.PreviewMedia(path("nocodec.avi")));
    QCOMPARE(status, int(modMCIsnd::kStatusCannotDecode));
    QCOMPARE(device.DeviceId("wav"), 0);
  }
};

QTEST_GUILESS_MAIN(TestMciDevice)
#include "TestMciDevice.moc"
