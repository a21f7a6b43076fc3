#include "preview/MciDevice.h"

#include <QAudioOutput>
#include <QEventLoop>
#include <QFile>
#include <QFileInfo>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>
#include <QVideoSink>
#include <cmath>

#include "preview/MciErrors.h"
#include "preview/MediaDiscoverer.h"

namespace preview {

namespace {

constexpr qint64 kMaxMidiBytes = 16 * 1024 * 1024;
constexpr int kHeaderBytes = 64 * 1024;

bool ParseInt(const QString& text, qint64* value) {
  bool ok = false;
  *value = text.toLongLong(&ok);
  return ok && *value >= 0;
}

}  // namespace

MciDevice::MciDevice(QObject* parent) : QObject(parent) { UseGStreamerBackend(); }

void MciDevice::UseGStreamerBackend() {
  // The other backend crashes where there is no sound device.
  if (qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND")) qputenv("QT_MEDIA_BACKEND", "gstreamer");
}

MciDevice::~MciDevice() { close(); }

QString MciDevice::ErrorString(int code) const { return MciErrorText(code); }

int MciDevice::DeviceId(const QString& alias) const {
  return open_ && alias.compare(u"wav", Qt::CaseInsensitive) == 0 ? 1 : 0;
}

void MciDevice::SetVideoWindow(const QString& handle, QVideoSink* sink, std::function<void(const QRect&)> placed) {
  handle_ = handle;
  sink_ = sink;
  placed_ = std::move(placed);
}

int MciDevice::SendString(const QString& command, QString* reply) {
  if (reply) reply->clear();
  const MciCommand c = MciCommand::Parse(command);
  if (c.verb.isEmpty()) return kMciMissingCommandString;
  static const QStringList verbs = {"open",  "close", "play", "stop",   "pause", "resume",
                                    "seek",  "status", "set", "put",    "where"};
  if (!verbs.contains(c.verb)) return kMciUnrecognizedCommand;
  if (c.device.isEmpty()) return kMciMissingDeviceName;
  if (c.verb == u"open") return open(c);
  if (!open_ || c.device.compare(u"wav", Qt::CaseInsensitive) != 0) return kMciInvalidDeviceName;
  QString ignored;
  QString* out = reply ? reply : &ignored;
  if (c.verb == u"close") return close();
  if (c.verb == u"play") return play(c);
  if (c.verb == u"stop" || c.verb == u"pause") {
    player_->pause();
    return kMciOk;
  }
  if (c.verb == u"resume") return play(MciCommand());
  if (c.verb == u"seek") {
    qint64 to = 0;
    const QString target = c.valueAfter(QStringLiteral("to"));
    if (target == u"end") to = qint64(length());
    else if (target != u"start" && !ParseInt(target, &to)) return target.isEmpty() ? kMciMissingParameter : kMciBadInteger;
    if (to > length()) return kMciOutOfRange;
    player_->pause();
    player_->setPosition(to);
    ended_ = false;
    return kMciOk;
  }
  if (c.verb == u"status") return status(c, out);
  if (c.verb == u"set") return set(c);
  if (c.verb == u"put") return put(c);
  return where(c, out);
}

int MciDevice::open(const MciCommand& c) {
  bool hasAlias = false;
  const QString alias = c.valueAfter(QStringLiteral("alias"), &hasAlias);
  if (!hasAlias || alias.isEmpty()) return kMciMissingDeviceName;
  if (alias != u"wav") return kMciUnsupportedFunction;  // one alias, one device
  if (open_) return kMciDuplicateAlias;

  bool hasType = false;
  QString type = c.valueAfter(QStringLiteral("type"), &hasType);
  QString element = c.device;
  if (!hasType) {  // "open cdaudio alias wav": the device itself
    type = element.toLower();
    element.clear();
  }
  if (type == u"waveaudio") kind_ = Kind::Wave;
  else if (type == u"sequencer") kind_ = Kind::Sequencer;
  else if (type == u"mpegvideo" || type == u"mpegvideo2" || type == u"avivideo" || type == u"qtwvideo") kind_ = Kind::Stream;
  else if (type == u"cdaudio") kind_ = Kind::Cd;
  else return kMciCannotLoadDriver;

  facts_ = MediaFacts();
  discovered_ = false;
  video_ = false;
  cdTracks_.clear();
  cdTrack_ = 0;
  if (kind_ == Kind::Cd) {
    if (!element.isEmpty()) return kMciUnrecognizedKeyword;
    // No disc, no drive: the device is not ready.
    if (!QFileInfo::exists(QStringLiteral("/dev/cdrom")) && !QFileInfo::exists(QStringLiteral("/dev/sr0")))
      return kMciDeviceNotReady;
    facts_ = DiscoverMedia(QStringLiteral("cdda://1"), 5000, &cdTracks_);
    if (!facts_.valid || cdTracks_.isEmpty()) return kMciDeviceNotReady;
    file_.clear();
    if (const int rc = load(QStringLiteral("cdda://1")); rc != kMciOk) return rc;
    cdTrack_ = 1;
    return kMciOk;
  }

  if (element.isEmpty()) return kMciMissingParameter;
  const QFileInfo info(element);
  if (!info.isFile()) return kMciFileNotFound;
  QFile file(element);
  if (!file.open(QIODevice::ReadOnly)) return kMciFileNotFound;
  if (kind_ == Kind::Wave) {
    facts_ = ReadAudioHeader(file.read(kHeaderBytes), file.size());
    if (!facts_.valid || facts_.formatTag != u"pcm") return kMciInvalidFile;
  } else if (kind_ == Kind::Sequencer) {
    if (file.size() > kMaxMidiBytes) return kMciInvalidFile;
    facts_ = ReadMidiHeader(file.readAll());
    if (!facts_.valid) return kMciInvalidFile;
  } else {
    // Uncompressed formats are read here; the rest is asked for when needed.
    facts_ = ReadAudioHeader(file.read(kHeaderBytes), file.size());
    discovered_ = facts_.valid;
    if (file.size() == 0) return kMciInvalidFile;
  }
  file.close();

  bool hasParent = false;
  const QString parent = c.valueAfter(QStringLiteral("parent"), &hasParent);
  if (hasParent) {
    if (kind_ != Kind::Stream) return kMciUnrecognizedKeyword;
    if (!sink_ || parent != handle_.toLower()) return kMciNoWindow;
    video_ = true;
  }
  file_ = info.absoluteFilePath();
  return load(QUrl::fromLocalFile(file_).toString());
}

int MciDevice::load(const QString& uri) {
  if (!player_) {
    player_ = new QMediaPlayer(this);
    // Without an audio output the framework refuses sound files.
    audio_ = new QAudioOutput(this);
    player_->setAudioOutput(audio_);
    connect(player_, &QMediaPlayer::mediaStatusChanged, this, [this](QMediaPlayer::MediaStatus s) {
      if (s == QMediaPlayer::EndOfMedia) ended_ = true;
    });
    connect(player_, &QMediaPlayer::positionChanged, this, [this](qint64 at) {
      if (pendingSeek_ < 0 || at <= 0) return;
      const qint64 to = pendingSeek_;
      pendingSeek_ = -1;
      player_->setPosition(to);
    });
  }
  player_->setVideoSink(video_ ? sink_ : nullptr);
  ended_ = false;
  pendingSeek_ = -1;

  QEventLoop loop;
  QTimer timeout;
  timeout.setSingleShot(true);
  bool failed = false;
  auto settle = [&] {
    const auto s = player_->mediaStatus();
    if (s == QMediaPlayer::InvalidMedia || player_->error() != QMediaPlayer::NoError) failed = true;
    if (failed || s == QMediaPlayer::LoadedMedia || s == QMediaPlayer::BufferedMedia || s == QMediaPlayer::EndOfMedia)
      loop.quit();
  };
  const auto c1 = connect(player_, &QMediaPlayer::mediaStatusChanged, &loop, settle);
  const auto c2 = connect(player_, &QMediaPlayer::errorOccurred, &loop, [&] {
    failed = true;
    loop.quit();
  });
  connect(&timeout, &QTimer::timeout, &loop, [&] {
    failed = true;
    loop.quit();
  });
  player_->setSource(QUrl(uri));
  settle();
  if (!failed && player_->mediaStatus() != QMediaPlayer::LoadedMedia) {
    timeout.start(loadTimeoutMs_);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
  }
  disconnect(c1);
  disconnect(c2);
  if (failed) {
    player_->stop();
    player_->setSource(QUrl());
    player_->setVideoSink(nullptr);
    video_ = false;
    return kMciInvalidFile;
  }
  open_ = true;
  return kMciOk;
}

int MciDevice::close() {
  if (!open_) return kMciOk;
  open_ = false;
  player_->stop();
  player_->setSource(QUrl());
  player_->setVideoSink(nullptr);
  video_ = false;
  ended_ = false;
  pendingSeek_ = -1;
  file_.clear();
  return kMciOk;
}

double MciDevice::length() {
  if (kind_ == Kind::Wave && facts_.lengthMs >= 0) return facts_.lengthMs;
  if (kind_ == Kind::Cd) {
    double total = 0;
    for (double t : cdTracks_) total += t;
    return total;
  }
  // A compressed stream's length is first guessed from its bit rate while it
  // starts; the file's own reading stays put, so the progress does too.
  if (kind_ == Kind::Stream) {
    discover();
    if (facts_.lengthMs > 0) return facts_.lengthMs;
  }
  const qint64 d = player_ ? player_->duration() : 0;
  if (d > 0) return double(d);
  return facts_.lengthMs > 0 ? facts_.lengthMs : 0;
}

double MciDevice::position() {
  if (ended_) return length();
  double p = double(pendingSeek_ >= 0 ? pendingSeek_ : player_->position());
  if (kind_ == Kind::Cd)
    for (int t = 1; t < cdTrack_ && t <= cdTracks_.size(); ++t) p += cdTracks_[t - 1];
  const double end = length();
  return end > 0 ? std::min(p, end) : p;
}

int MciDevice::play(const MciCommand& c) {
  bool hasFrom = false;
  const QString from = c.valueAfter(QStringLiteral("from"), &hasFrom);
  if (hasFrom) {
    qint64 at = 0;
    if (from.isEmpty()) return kMciMissingParameter;
    if (!ParseInt(from, &at)) return kMciBadInteger;
    if (double(at) > length()) return kMciOutOfRange;
    if (kind_ == Kind::Cd) {
      // Whole-disc time to a track and the time within it.
      int track = 1;
      qint64 rest = at;
      while (track < cdTracks_.size() && rest >= cdTracks_[track - 1]) rest -= qint64(cdTracks_[track++ - 1]);
      if (track != cdTrack_) {
        if (const int rc = load(QStringLiteral("cdda://%1").arg(track)); rc != kMciOk) return rc;
        cdTrack_ = track;
      }
      at = rest;
    }
    ended_ = false;
    if (player_->playbackState() != QMediaPlayer::StoppedState && player_->position() > 0) {
      player_->setPosition(at);
    } else {
      // A pipeline that has not run yet drops a seek; it seeks once it runs.
      pendingSeek_ = at;
    }
    player_->play();
    return kMciOk;
  }
  if (ended_) return kMciOk;  // at the end there is nothing left to play
  player_->play();
  return kMciOk;
}

void MciDevice::discover() {
  if (discovered_) return;
  discovered_ = true;
  const MediaFacts found = DiscoverMedia(QUrl::fromLocalFile(file_).toString(), 5000);
  if (found.valid) facts_ = found;
}

int MciDevice::status(const MciCommand& c, QString* reply) {
  const QString item = c.words.join(u' ');
  auto number = [reply](double v) {
    *reply = QString::number(qint64(std::floor(v)));
    return kMciOk;
  };
  bool isTrack = false;
  const QString trackText = c.valueAfter(QStringLiteral("track"), &isTrack);
  qint64 track = 0;
  if (isTrack) {
    if (!ParseInt(trackText, &track)) return kMciBadInteger;
    const qint64 tracks = kind_ == Kind::Cd ? cdTracks_.size() : 1;
    if (track < 1 || track > tracks) return kMciOutOfRange;
  }
  auto trackStart = [this](qint64 n) {
    double at = 0;
    for (qint64 t = 1; t < n && t <= cdTracks_.size(); ++t) at += cdTracks_[t - 1];
    return at;
  };
  if (c.words.value(0) == u"length") {
    if (!isTrack) return number(length());
    return number(kind_ == Kind::Cd ? cdTracks_[track - 1] : length());
  }
  if (c.words.value(0) == u"position" && c.words.size() <= 3) {
    if (!isTrack) return number(position());
    return number(kind_ == Kind::Cd ? trackStart(track) : 0);
  }
  if (item == u"start position") return number(0);
  if (item == u"mode") {
    // At the end it has stopped, even before the framework says so.
    const double end = length();
    if (ended_ || (end > 0 && double(player_->position()) >= end)) *reply = QStringLiteral("stopped");
    else if (player_->playbackState() == QMediaPlayer::PlayingState) *reply = QStringLiteral("playing");
    else *reply = QStringLiteral("stopped");
    return kMciOk;
  }
  if (item == u"ready" || item == u"media present") {
    *reply = QStringLiteral("true");
    return kMciOk;
  }
  if (item == u"time format") {
    *reply = QStringLiteral("milliseconds");
    return kMciOk;
  }
  if (item == u"number of tracks") {
    if (kind_ == Kind::Cd) return number(cdTracks_.size());
    return number(kind_ == Kind::Sequencer ? facts_.tracks : 1);
  }
  if (item == u"current track") return number(kind_ == Kind::Cd ? cdTrack_ : 1);

  static const QStringList audioItems = {"format tag", "samplespersec", "bitspersample", "channels"};
  if (audioItems.contains(item)) {
    if (kind_ == Kind::Sequencer || kind_ == Kind::Cd) return kMciUnsupportedFunction;
    if (kind_ == Kind::Stream) discover();
    if (facts_.samplesPerSec <= 0) return kMciUnsupportedFunction;
    if (item == u"format tag") {
      *reply = facts_.formatTag;
      return kMciOk;
    }
    if (item == u"samplespersec") return number(facts_.samplesPerSec);
    if (item == u"bitspersample") return number(facts_.bitsPerSample);
    return number(facts_.channels);
  }
  if (item == u"division type") {
    if (kind_ != Kind::Sequencer) return kMciUnsupportedFunction;
    *reply = facts_.divisionType;
    return kMciOk;
  }
  if (item == u"bitsperpel" || item == u"nominal frame rate") {
    if (kind_ != Kind::Stream) return kMciUnsupportedFunction;
    discover();
    if (!facts_.hasVideo) return kMciUnsupportedFunction;
    // Frames reach the window decoded to 24-bit colour when the stream does not say.
    if (item == u"bitsperpel") return number(facts_.bitsPerPel > 0 ? facts_.bitsPerPel : 24);
    return number(facts_.frameRate * 1000);
  }
  return kMciUnrecognizedKeyword;
}

int MciDevice::set(const MciCommand& c) {
  bool found = false;
  const QString format = c.valueAfter(QStringLiteral("time format"), &found);
  if (!found) return kMciUnrecognizedKeyword;
  if (format.isEmpty()) return kMciMissingParameter;
  if (format == u"milliseconds" || format == u"ms") return kMciOk;
  return kMciUnsupportedFunction;
}

int MciDevice::put(const MciCommand& c) {
  if (c.words.size() < 2 || c.words[0] != u"window" || c.words[1] != u"at") return kMciUnrecognizedKeyword;
  if (!video_) return kMciUnsupportedFunction;
  if (c.words.size() < 6) return kMciMissingParameter;
  qint64 v[4];
  for (int i = 0; i < 4; ++i)
    if (!ParseInt(c.words[2 + i], &v[i])) return kMciBadInteger;
  if (placed_) placed_(QRect(int(v[0]), int(v[1]), int(v[2]), int(v[3])));
  return kMciOk;
}

int MciDevice::where(const MciCommand& c, QString* reply) {
  if (c.words.value(0) != u"source") return kMciUnrecognizedKeyword;
  if (!video_) return kMciUnsupportedFunction;
  discover();
  if (!facts_.hasVideo) return kMciUnsupportedFunction;
  *reply = QStringLiteral("0 0 %1 %2").arg(facts_.width).arg(facts_.height);
  return kMciOk;
}

}  // namespace preview
