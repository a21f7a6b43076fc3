#pragma once
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QVector>
#include <QVideoSink>
#include <functional>

#include "preview/MciCommand.h"
#include "preview/MciInterface.h"
#include "preview/MediaFacts.h"

class QAudioOutput;
class QMediaPlayer;

namespace preview {

// The command-string media device over Qt Multimedia: one alias ("wav"),
// device types "waveaudio" (RIFF WAVE), "sequencer" (MIDI, rendered by a
// software synthesizer), "MPEGVideo"/"AVIVideo"/"QTWVideo" (anything the
// media framework plays, with video into the registered window) and
// "cdaudio" (an audio CD, when the system has one). Times are milliseconds.
// Opening waits until the media is loaded or refused.
class MciDevice : public QObject, public MciInterface {
 public:
  explicit MciDevice(QObject* parent = nullptr);
  ~MciDevice() override;

  int SendString(const QString& command, QString* reply) override;
  QString ErrorString(int code) const override;
  int DeviceId(const QString& alias) const override;

  // The one window video can be shown in: its handle text (as "parent"
  // names it), the sink its frames go to, and who places the picture when
  // "put ... window at" is sent.
  void SetVideoWindow(const QString& handle, QVideoSink* sink, std::function<void(const QRect&)> placed);
  // Picks the media backend; before the first media object of the process.
  static void UseGStreamerBackend();
  // Longest wait for a file to load.
  void setLoadTimeout(int ms) { loadTimeoutMs_ = ms; }

 private:
  enum class Kind { Wave, Sequencer, Stream, Cd };

  int open(const MciCommand& c);
  int close();
  int play(const MciCommand& c);
  int status(const MciCommand& c, QString* reply);
  int set(const MciCommand& c);
  int put(const MciCommand& c);
  int where(const MciCommand& c, QString* reply);
  int load(const QString& uri);
  double length();
  double position();
  void discover();

  QMediaPlayer* player_ = nullptr;
  QAudioOutput* audio_ = nullptr;
  QString handle_;
  QPointer<QVideoSink> sink_;
  std::function<void(const QRect&)> placed_;
  int loadTimeoutMs_ = 10000;

  bool open_ = false;
  Kind kind_ = Kind::Stream;
  QString file_;
  bool video_ = false;  // opened into the video window
  MediaFacts facts_;
  bool discovered_ = false;
  bool ended_ = false;
  qint64 pendingSeek_ = -1;  // a start point waiting for the pipeline to run
  QVector<double> cdTracks_;
  int cdTrack_ = 0;  // the track loaded, from 1
};

}  // namespace preview
