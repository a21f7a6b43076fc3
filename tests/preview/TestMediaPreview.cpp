// The media preview rules over a recording device: class table, device
// table, texts, RealMedia bytes, header readers, command parsing, and the
// command strings sent for each kind of file.
#include <QHash>
#include <QTemporaryDir>
#include <QtTest>

#include "core/IniFile.h"
#include "preview/MciCommand.h"
#include "preview/MciDeviceTable.h"
#include "preview/MciErrors.h"
#include "preview/MciInterface.h"
#include "preview/MediaFacts.h"
#include "preview/modMCIsnd.h"
#include "tests/TestSupport.h"
#include "tests/preview/MediaFixtures.h"

using namespace modMCIsnd;

namespace {

// Records every command; answers queries from a table (a missing query
// fails with an error), and opens or fails to open as told.
class RecordingMci : public preview::MciInterface {
 public:
  int SendString(const QString& command, QString* reply) override {
    sent << command;
    if (command.startsWith(u"open ")) {
      if (!openOk) return preview::kMciInvalidFile;
      open = true;
      return 0;
    }
    if (command.startsWith(u"close ")) open = false;
    if (command.startsWith(u"status ") || command.startsWith(u"where ")) {
      if (!replies.contains(command)) return preview::kMciUnsupportedFunction;
      if (reply) *reply = replies.value(command);
    }
    return 0;
  }
  QString ErrorString(int code) const override { return preview::MciErrorText(code); }
  int DeviceId(const QString& alias) const override { return open && alias == u"wav" ? 1 : 0; }

  QStringList sent;
  QHash<QString, QString> replies;
  bool open = false;
  bool openOk = true;
};

}  // namespace

class TestMediaPreview : public QObject {
  Q_OBJECT
 private Q_SLOTS:
  void mediaClass_data() {
    QTest::addColumn<QString>("exts");
    QTest::addColumn<int>("cls");
    QTest::newRow("audio") << "wav mp3 ra rmm" << 1;
    QTest::newRow("midi") << "mid rmi" << 2;
    QTest::newRow("video") << "rm mp2 mpa qt" << 3;
    QTest::newRow("cd") << "cda" << 4;
    QTest::newRow("exact case, other, none") << "WAV txt " << 0;
  }
  void mediaClass() {
    QFETCH(QString, exts);
    QFETCH(int, cls);
    for (const QString& ext : exts.split(u' ')) QVERIFY2(MediaClassOf(ext) == cls, qPrintable(ext));
  }

  void timeText_data() {
    QTest::addColumn<double>("ms");
    QTest::addColumn<QString>("text");
    QTest::newRow("hours") << 3725120.0 << "1h 02:05  120ms";
    QTest::newRow("under a minute") << 59999.0 << "00:59  999ms";
    QTest::newRow("zero") << 0.0 << "00:00  000ms";
    QTest::newRow("fraction cut") << 1500.9 << "00:01  500ms";
    QTest::newRow("an hour exactly") << 3600000.0 << "1h 00:00  000ms";
  }
  void timeText() {
    QFETCH(double, ms);
    QTEST(TimeText(ms), "text");
  }

  void realMedia_data() {
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("title");
    const QByteArray audio = QByteArray("\x10The Audio Stream\x14", 18);
    const QByteArray premiere = QByteArray("\x1dRealVideoPremierePlugIn-AUDIO\x14", 31);
    QByteArray cont(".RMF");
    cont += QByteArray(20, '\0') + "CONT" + QByteArray::fromHex("0000002a0000") + QByteArray::fromHex("0005") +
            "Hello" + QByteArray::fromHex("0003") + "Bob";
    QTest::newRow("audio stream") << (QByteArray(".RMF") + audio) << true << "";
    QTest::newRow("premiere audio") << (QByteArray(".RMF") + premiere) << true << "";
    QTest::newRow("publisher refused") << (QByteArray("RealPublisher") + audio) << false << "";
    QTest::newRow("no stream name") << QByteArray(".RMF The Audio Stream") << false << "";
    QTest::newRow("length byte wrong") << QByteArray(".RMF\x11The Audio Stream\x14") << false << "";
    QTest::newRow("title") << (cont + audio) << true << "Title: Hello";
    QTest::newRow("beyond 1024 bytes") << (QByteArray(1024, ' ') + audio) << false << "";
  }
  void realMedia() {
    QFETCH(QByteArray, head);
    QFETCH(bool, accepted);
    QFETCH(QString, title);
    const RealMediaCheck r = CheckRealMedia(head);
    QCOMPARE(r.accepted, accepted);
    QCOMPARE(r.title, title);
  }

  void deviceTable_data() {
    QTest::addColumn<QByteArray>("win");
    QTest::addColumn<QByteArray>("sys");
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<QString>("lookups");  // ext=device;...
    QTest::newRow("(a) empty: unloaded, only cda") << QByteArray() << QByteArray() << false
                                                  << "cda=cdaudio;mp3=;wav=";
    QTest::newRow("(a) keys read, case-insensitive lookup")
        << QByteArray("[mci extensions]\nwav=waveaudio\nMID=Sequencer\n") << QByteArray() << true
        << "WAV=waveaudio;mid=Sequencer;avi=";
    QTest::newRow("(c) mpeg device becomes streaming")
        << QByteArray("[mci extensions]\nmpg=MPEGVid\ndat=MPEGVid\n")
        << QByteArray("[mci]\nMPEGVid=mcivmpeg.drv\nStream=MCIQTZ.DRV\n") << true << "mpg=Stream;dat=Stream";
    QTest::newRow("(c) not without streaming")
        << QByteArray("[mci extensions]\ndat=MPEGVid\n") << QByteArray("[mci]\nMPEGVid=mcivmpeg.drv\n") << true
        << "dat=MPEGVid;mp3=";
    QTest::newRow("(d) QuickTime becomes streaming")
        << QByteArray("[mci extensions]\nmov=QTWVideo\n") << QByteArray("[mci]\nMPEGVideo=mciqtz.drv\n") << true
        << "mov=MPEGVideo";
    QTest::newRow("(e) mp3 replaced, mpg kept, cda kept")
        << QByteArray("[mci extensions]\nmp3=waveaudio\nmpg=AVIVideo\ncda=MyCd\n")
        << QByteArray("[mci]\nMPEGVideo=mciqtz.drv\n") << true
        << "mp3=MPEGVideo;mpg=AVIVideo;cda=MyCd;ra=MPEGVideo;rm=MPEGVideo;mp2=MPEGVideo;mpeg=MPEGVideo;qt=MPEGVideo";
  }
  void deviceTable() {
    QFETCH(QByteArray, win);
    QFETCH(QByteArray, sys);
    QFETCH(bool, loaded);
    QFETCH(QString, lookups);
    preview::MciDeviceTable table;
    table.Build(core::IniFile::FromBytes(win), core::IniFile::FromBytes(sys));
    QCOMPARE(table.loaded(), loaded);
    for (const QString& pair : lookups.split(u';')) {
      const QStringList kv = pair.split(u'=');
      QCOMPARE(table.DeviceFor(kv[0]), kv[1]);
    }
  }

  void deviceTableFromFolder() {
    QTemporaryDir dir;
    QVERIFY(testsupport::MakeFile(dir.filePath("WIN.INI"), "[mci extensions]\r\nwav=waveaudio\r\n"));
    QVERIFY(testsupport::MakeFile(dir.filePath("system.ini"), "[mci]\r\nMPEGVideo=mciqtz.drv\r\n"));
    preview::MciDeviceTable table;
    table.Build(dir.path());
    QCOMPARE(table.DeviceFor("wav"), QStringLiteral("waveaudio"));
    QCOMPARE(table.DeviceFor("mp3"), QStringLiteral("MPEGVideo"));
    QCOMPARE(table.DeviceFor("avi"), QString());
    // Without a folder the stock files serve.
    table.Build(QString());
    QCOMPARE(table.DeviceFor("avi"), QStringLiteral("AVIVideo"));
    QCOMPARE(table.DeviceFor("mid"), QStringLiteral("sequencer"));
  }

  void parse_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("verb");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("words");
    QTest::newRow("double blanks") << "close wav  wait" << "close" << "wav" << "wait";
    QTest::newRow("trailing blank") << "play wav " << "play" << "wav" << "";
    QTest::newRow("open with blanks in path")
        << "open /tmp/my song.wav type waveaudio alias wav " << "open" << "/tmp/my song.wav" << "type waveaudio alias wav";
    QTest::newRow("open video") << "open /a/b.avi type AVIVideo alias wav  parent 7 style child wait" << "open"
                                << "/a/b.avi" << "type avivideo alias wav parent 7 style child wait";
    QTest::newRow("open device") << "open cdaudio alias wav " << "open" << "cdaudio" << "alias wav";
    QTest::newRow("quoted") << "open \"/a b/c.wav\" type waveaudio alias wav" << "open" << "/a b/c.wav"
                            << "type waveaudio alias wav";
    QTest::newRow("status") << "STATUS wav Number Of Tracks" << "status" << "wav" << "number of tracks";
    QTest::newRow("empty") << "   " << "" << "" << "";
    QTest::newRow("verb only") << "play" << "play" << "" << "";
    QTest::newRow("unclosed quote") << "play \"wav" << "play" << "wav" << "";
  }
  void parse() {
    QFETCH(QString, text);
    QFETCH(QString, verb);
    QFETCH(QString, device);
    QFETCH(QString, words);
    const preview::MciCommand c = preview::MciCommand::Parse(text);
    QCOMPARE(c.verb, verb);
    QCOMPARE(c.device, device);
    QCOMPARE(c.words.join(u' '), words);
  }

  void headers_data() {
    using namespace mediafixtures;
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("midi");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("facts");  // tag rate bits channels length | division tracks
    const QByteArray wave = Wave(1000);
    QTest::newRow("pcm wave") << wave << false << true << "pcm 44100 16 2 1000";
    QTest::newRow("mono 8 bit") << Wave(500, 22050, 8, 1) << false << true << "pcm 22050 8 1 500";
    QTest::newRow("data size lies: cut to the file") << Wave(500, 44100, 16, 2, 100000000) << false << true
                                                    << "pcm 44100 16 2 500";
    QTest::newRow("truncated in the header") << wave.left(30) << false << false << "";
    QTest::newRow("truncated in the data") << wave.left(44 + 17640) << false << true << "pcm 44100 16 2 100";
    QTest::newRow("zero length") << QByteArray() << false << false << "";
    QByteArray noRate = Wave(100, 8000, 8, 1);
    noRate.replace(28, 4, QByteArray(4, '\0'));
    QTest::newRow("byte rate 0 repaired") << noRate << false << true << "pcm 8000 8 1 100";
    noRate.replace(34, 2, QByteArray(2, '\0'));
    QTest::newRow("byte rate 0, no bits") << noRate << false << false << "";
    QByteArray aiff("FORM");
    PutBe(&aiff, 46, 4);
    aiff += "AIFFCOMM";
    PutBe(&aiff, 18, 4);
    PutBe(&aiff, 1, 2);
    PutBe(&aiff, 8000, 4);
    PutBe(&aiff, 16, 2);
    aiff += QByteArray::fromHex("400bfa00000000000000");  // 8000.0
    aiff += "SSND";
    PutBe(&aiff, 8, 4);
    aiff += QByteArray(8, '\0');
    QTest::newRow("aiff") << aiff << false << true << "pcm 8000 16 1 1000";
    QByteArray au(".snd");
    PutBe(&au, 24, 4);
    PutBe(&au, 16000, 4);
    PutBe(&au, 3, 4);
    PutBe(&au, 8000, 4);
    PutBe(&au, 1, 4);
    QTest::newRow("au, data not all there") << au << false << true << "pcm 8000 16 1 0";
    QTest::newRow("midi") << Midi(2, 2) << true << true << "PPQN 2";
    QTest::newRow("midi smpte 25") << Midi(1, 1, 0xE728) << true << true << "SMPTE 25 1";
    QTest::newRow("midi smpte 30 drop") << Midi(1, 1, 0xE350) << true << true << "SMPTE 30 drop 1";
    QTest::newRow("midi no tracks") << Midi(0, 0) << true << false << "";
    QTest::newRow("midi 65535 tracks claimed") << Midi(65535, 1) << true << false << "";
    QTest::newRow("midi cut") << Midi(1, 1).left(20) << true << false << "";
    QByteArray rmid("RIFF");
    const QByteArray smf = Midi(1, 1);
    PutLe(&rmid, quint32(12 + smf.size()), 4);
    rmid += "RMIDdata";
    PutLe(&rmid, quint32(smf.size()), 4);
    QTest::newRow("rmi") << (rmid + smf) << true << true << "PPQN 1";
  }
  void headers() {
    QFETCH(QByteArray, bytes);
    QFETCH(bool, midi);
    QFETCH(bool, valid);
    QFETCH(QString, facts);
    const preview::MediaFacts f = midi ? preview::ReadMidiHeader(bytes) : preview::ReadAudioHeader(bytes, bytes.size());
    QCOMPARE(f.valid, valid);
    if (!valid) return;
    const QString got = midi ? QStringLiteral("%1 %2").arg(f.divisionType).arg(f.tracks)
                             : QStringLiteral("%1 %2 %3 %4 %5")
                                   .arg(f.formatTag)
                                   .arg(f.samplesPerSec)
                                   .arg(f.bitsPerSample)
                                   .arg(f.channels)
                                   .arg(f.lengthMs);
    QCOMPARE(got, facts);
  }

  // The commands a preview sends, then the texts shown from the device's
  // answers ("query=reply"; an empty label is not checked).
  void commandsSent_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("rect");
    QTest::addColumn<QStringList>("replies");
    QTest::addColumn<QStringList>("expected");  // %1 stands for the file
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("length");
    const QStringList video{"where wav source=0 0 160 120", "status wav bitsperpel=24",
                            "status wav nominal frame rate=29970"};
    QTest::newRow("wave") << "a.wav" << ""
                          << QStringList{"status wav format tag=pcm", "status wav samplespersec=44100",
                                         "status wav bitspersample=16", "status wav channels=2",
                                         "status wav length=3725120"}
                          << QStringList{"open %1 type waveaudio alias wav ", "set wav time format milliseconds",
                                         "play wav "}
                          << "Format: PCM, 44100 Hz, 16 Bit, Stereo" << "1h 02:05  120ms";
    QTest::newRow("mp3 on the streaming device, mono, no bits, no tag")
        << "b.MP3" << ""
        << QStringList{"status wav samplespersec=22050", "status wav bitspersample=0", "status wav channels=1"}
        << QStringList{"open %1 type MPEGVideo alias wav ", "set wav time format milliseconds", "play wav "}
        << "Format: 22050 Hz, Mono" << "00:00  000ms";
    QTest::newRow("midi") << "c.mid" << ""
                          << QStringList{"status wav division type=PPQN", "status wav number of tracks=3"}
                          << QStringList{"open %1 type sequencer alias wav ", "set wav time format milliseconds",
                                         "play wav "}
                          << "Format: PPQN, 3 tracks" << "00:00  000ms";
    QTest::newRow("video filling the host")
        << "d.avi" << "" << video
        << QStringList{"open %1 type AVIVideo alias wav  parent 42 style child wait", "where wav source",
                       "put wav window at 0 0 320 200", "set wav time format milliseconds", "play wav "}
        << "Format: 24 Bits, 29 fr/sec" << "00:00  000ms";
    QTest::newRow("video placed") << "d.avi" << "5 6 70 80" << video
                                  << QStringList{"open %1 type AVIVideo alias wav  parent 42 style child wait",
                                                 "put wav window at 5 6 70 80", "set wav time format milliseconds",
                                                 "play wav "}
                                  << "" << "";
    QTest::newRow("video without picture plays as sound")
        << "d.avi" << "" << QStringList{}
        << QStringList{"open %1 type AVIVideo alias wav  parent 42 style child wait", "where wav source",
                       "close wav  wait", "open %1 type AVIVideo alias wav ", "set wav time format milliseconds",
                       "play wav "}
        << "" << "";
    QTest::newRow("cd track from the name")
        << "Track12.cda" << ""
        << QStringList{"status wav position track 12=600000", "status wav number of tracks=9", "status wav length=59999"}
        << QStringList{"open CDAudio alias wav ", "set wav time format milliseconds", "status wav position track 12",
                       "status wav start position", "play wav from 600000"}
        << "Format: 44100 Hz, 16 Bit, Stereo" << "00:59  999ms (9 Tracks)";
  }
  void commandsSent() {
    QFETCH(QString, name);
    QFETCH(QString, rect);
    QFETCH(QStringList, replies);
    QFETCH(QStringList, expected);
    QFETCH(QString, label);
    RecordingMci mci;
    for (const QString& r : replies) mci.replies.insert(r.section(u'=', 0, 0), r.section(u'=', 1));
    MediaSession s(&mci);
    MediaHost host;
    host.visible = [] { return true; };
    host.windowHandle = [] { return QStringLiteral("42"); };
    host.size = [] { return QSize(320, 200); };
    s.setHost(host);
    QList<int> statuses;
    s.setStatusHandler([&](int code) { statuses << code; });
    const QString file = "/m/" + name;
    QVERIFY(s.PreviewMedia(file, rect));
    for (QString& e : expected) e = e.arg(file);
    QCOMPARE(mci.sent, expected);
    QCOMPARE(statuses, (QList<int>{kStatusLoading, kStatusHidden}));
    if (label.isEmpty()) return;
    QCOMPARE(s.FormatLabel(), label);
    QTEST(s.LengthText(), "length");
  }

  void secondFileClosesFirst() {
    RecordingMci mci;
    MediaSession s(&mci);
    QVERIFY(s.PreviewMedia("/m/a.wav"));
    mci.sent.clear();
    QVERIFY(s.PreviewMedia("/m/b.wav"));
    QCOMPARE(mci.sent.mid(0, 3), (QStringList{"stop wav ", "close wav  wait", "open /m/b.wav type waveaudio alias wav "}));
  }

  void refusals_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("noPrevAV");
    QTest::addColumn<bool>("noVid");
    QTest::addColumn<bool>("openOk");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("opened");
    QTest::newRow("excluded list") << "a.mid" << ".wav.mid." << false << true << int(kStatusExcluded) << false;
    QTest::newRow("no videos") << "a.avi" << "" << true << true << int(kStatusExcluded) << false;
    QTest::newRow("no videos, sound plays") << "a.wav" << "" << true << true << int(kStatusHidden) << true;
    QTest::newRow("open fails") << "a.wav" << "" << false << false << int(kStatusCannotDecode) << false;
    QTest::newRow("no device for ram") << "a.ram" << "" << false << true << -1 << false;
    QTest::newRow("RealPublisher file") << "a.rm" << "" << false << true << int(kStatusCannotDecode) << false;
  }
  void refusals() {
    QFETCH(QString, name);
    QFETCH(QString, noPrevAV);
    QFETCH(bool, noVid);
    QFETCH(bool, openOk);
    QFETCH(int, status);
    QFETCH(bool, opened);
    QTemporaryDir dir;
    const bool real = name.endsWith(u".rm");  // read for its header
    const QString path = real ? dir.filePath(name) : "/m/" + name;
    if (real) QVERIFY(testsupport::MakeFile(path, QByteArray(".RMF RealPublisher \x10The Audio Stream\x14")));
    RecordingMci mci;
    mci.openOk = openOk;
    MediaSession s(&mci);
    s.setHost({[] { return true; }, [] { return QStringLiteral("1"); }, [] { return QSize(10, 10); }, {}, {}});
    s.setNoPrevAV(noPrevAV);
    s.setNoVid(noVid);
    int last = -1;
    s.setStatusHandler([&](int code) { last = code; });
    QVERIFY(s.PreviewMedia(path));
    QCOMPARE(last, status);
    QCOMPARE(mci.open, opened);
    if (real) QVERIFY(mci.sent.isEmpty());
    QCOMPARE(s.mediaClass() != 0, opened);
    QVERIFY(!s.PreviewMedia("/m/readme.txt"));
  }

  void progressAndMouse() {
    RecordingMci mci;
    mci.replies["status wav length"] = "2000";
    mci.replies["status wav position"] = "500";
    mci.replies["status wav mode"] = "playing";
    MediaSession s(&mci);
    QVERIFY(s.PreviewMedia("/m/a.wav"));
    Progress p = s.Tick();
    QVERIFY(p.fill && !p.finished);
    QCOMPARE(p.fraction, 0.25);
    QCOMPARE(p.label, QStringLiteral("00:00  500ms"));
    // Left button while playing: stop, kept open.
    mci.sent.clear();
    QCOMPARE(s.BarMouse(true, 10, 100), BarAction::kStopTimer);
    QCOMPARE(mci.sent.filter("stop").size(), 1);
    QVERIFY(mci.sent.filter("close").isEmpty());
    // Left button while stopped resumes; at the end it starts again from 0.
    mci.replies["status wav mode"] = "stopped";
    mci.sent.clear();
    QCOMPARE(s.BarMouse(true, 10, 100), BarAction::kStartTimer);
    QVERIFY(mci.sent.contains("play wav "));
    mci.replies["status wav position"] = "2000";
    mci.sent.clear();
    s.BarMouse(true, 10, 100);
    QVERIFY(mci.sent.contains("play wav from 0"));
    // Other button: play from the fraction; a later start position wins.
    mci.sent.clear();
    s.BarMouse(false, 75, 100);
    QVERIFY(mci.sent.contains("play wav from 1500"));
    mci.replies["status wav start position"] = "1800";
    s.BarMouse(false, 75, 100);
    QVERIFY(mci.sent.contains("play wav from 1800"));
    // The end shows the length and stops the timer.
    p = s.Tick();
    QVERIFY(p.finished);
    QCOMPARE(p.label, QStringLiteral("00:02  000ms"));
  }

  void errorBox() {
    RecordingMci mci;
    MediaSession s(&mci);
    QString title, text;
    s.setErrorBox([&](const QString& t, const QString& x) {
      title = t;
      text = x;
    });
    QVERIFY(!s.SendCommand("status wav bitsperpel"));
    QVERIFY(title.isEmpty());
    s.setErrorReporting(true);
    QVERIFY(!s.SendCommand("status wav bitsperpel"));
    QCOMPARE(title, QStringLiteral("MCI-Error"));
    QCOMPARE(text, "Error Code = 274\r" + preview::MciErrorText(274));
  }
};

QTEST_GUILESS_MAIN(TestMediaPreview)
#include "TestMediaPreview.moc"
