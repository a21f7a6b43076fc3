#include "preview/modMCIsnd.h"

#include <QFile>
#include <QFileInfo>
#include <cmath>

#include "preview/MciInterface.h"

namespace modMCIsnd {

int MediaClassOf(const QString& ext) {
  static const QStringList audio = {"wav", "mp3", "snd", "au", "aif", "aifc", "aiff", "ra", "ram", "rmm"};
  static const QStringList midi = {"mid", "rmi"};
  static const QStringList video = {"rm", "avi", "mpg", "mpeg", "mpa", "mpe", "m1v", "mp2", "mpv", "mpv2", "mov", "qt"};
  if (audio.contains(ext)) return kAudio;
  if (midi.contains(ext)) return kMidi;
  if (video.contains(ext)) return kVideo;
  if (ext == u"cda") return kCdTrack;
  return kNoMedia;
}

QString TimeText(double ms) {
  const qint64 whole = qint64(std::trunc(ms));
  const qint64 s = whole / 1000;
  const qint64 rest = whole - s * 1000;
  const qint64 minutes = s / 60;
  const qint64 hours = minutes / 60;
  QString text = QStringLiteral("%1:%2  %3ms")
                     .arg(minutes % 60, 2, 10, QChar(u'0'))
                     .arg(s % 60, 2, 10, QChar(u'0'))
                     .arg(rest, 3, 10, QChar(u'0'));
  if (hours != 0) text.prepend(QString::number(hours) + QStringLiteral("h "));
  return text;
}

double ReplyNumber(const QString& reply) {
  const QString t = reply.trimmed();
  qsizetype i = 0;
  if (i < t.size() && (t[i] == u'-' || t[i] == u'+')) ++i;
  const qsizetype digits = i;
  while (i < t.size() && t[i].isDigit()) ++i;
  if (i < t.size() && t[i] == u'.') {
    ++i;
    while (i < t.size() && t[i].isDigit()) ++i;
  }
  if (i == digits) return 0;
  bool ok = false;
  const double v = t.left(i).toDouble(&ok);
  return ok ? v : 0;
}

RealMediaCheck CheckRealMedia(const QByteArray& head) {
  RealMediaCheck r;
  const QByteArray first = head.left(1024);
  if (first.contains("RealPublisher")) return r;
  const bool audio = first.contains(QByteArray("\x10The Audio Stream\x14")) ||
                     first.contains(QByteArray("\x1dRealVideoPremierePlugIn-AUDIO\x14"));
  if (!audio) return r;
  r.accepted = true;
  const qsizetype cont = first.indexOf("CONT");
  if (cont >= 0) {
    // The chunk: id, size, version, then the title's length and the title.
    const QByteArray after = head.mid(cont + 12, 256);
    qsizetype length = after.size();
    if (cont + 12 <= head.size()) {
      const auto* p = reinterpret_cast<const uchar*>(head.constData() + cont + 10);
      length = std::min<qsizetype>(length, qsizetype(p[0] << 8 | p[1]));
    }
    QByteArray title = after.left(length);
    for (qsizetype i = 0; i < title.size(); ++i)
      if (uchar(title[i]) < 32) {
        title.truncate(i);
        break;
      }
    r.title = QStringLiteral("Title: ") + QString::fromLatin1(title);
  }
  return r;
}

MediaSession::MediaSession(preview::MciInterface* mci) : mci_(mci) {}

void MediaSession::setStatus(int code) {
  if (status_) status_(code);
}

QString MediaSession::DeviceFor(const QString& ext) { return table_.DeviceFor(ext); }

bool MediaSession::IsOpen() const { return mci_->DeviceId(QStringLiteral("wav")) > 0; }

bool MediaSession::SendCommand(const QString& cmd) {
  QString ignored;
  return SendQuery(cmd, &ignored);
}

bool MediaSession::SendQuery(const QString& cmd, QString* reply) {
  reply->clear();
  const int code = mci_->SendString(cmd, reply);
  if (code == 0) return true;
  if (errorReporting_ && errorBox_)
    errorBox_(QStringLiteral("MCI-Error"),
              QStringLiteral("Error Code = ") + QString::number(code) + u'\r' + mci_->ErrorString(code));
  return false;
}

double MediaSession::queryNumber(const QString& cmd) {
  QString reply;
  return SendQuery(cmd, &reply) ? ReplyNumber(reply) : 0;
}

bool MediaSession::PreviewMedia(const QString& path, const QString& rectText, bool autoplay) {
  class_ = kNoMedia;
  failed_ = false;
  title_.clear();
  if (!tableBuilt_) {
    table_.Build(windowsFolder_);
    tableBuilt_ = true;
  }

  const QString name = QFileInfo(path).fileName();
  const qsizetype dot = name.lastIndexOf(u'.');
  // Names differ in case on disk; the table's extensions are lower case.
  const QString ext = dot < 0 ? QString() : name.mid(dot + 1).toLower();
  const int cls = MediaClassOf(ext);
  if (cls == kNoMedia) return false;

  if (noPrevAV_.contains(u'.' + ext + u'.', Qt::CaseInsensitive) || (cls == kVideo && noVid_)) {
    setStatus(kStatusExcluded);
    return true;
  }
  const QString device = DeviceFor(ext);
  if (device.isEmpty()) return true;
  setStatus(kStatusLoading);

  bool accepted = true;
  if (ext == u"rm") {
    QFile f(path);
    QByteArray head;
    if (f.open(QIODevice::ReadOnly)) head = f.read(kRealHeadBytes);
    const RealMediaCheck check = CheckRealMedia(head);
    accepted = check.accepted;
    title_ = check.title;
  }
  if (!accepted) {
    failed_ = true;
  } else {
    StopMedia(false);
    class_ = cls;
    device_ = device;
    file_ = path;  // the path as given: no short names here
    rect_ = rectText;
    if (OpenMedia()) {
      lastTrack_ = 0;
      if (autoplay && class_ == kCdTrack) PlayFrom(ReplyNumber(path.right(6)), true);
      else if (autoplay) SendCommand(QStringLiteral("play wav "));
    } else {
      class_ = kNoMedia;
      failed_ = true;
    }
  }
  setStatus(failed_ ? kStatusCannotDecode : kStatusHidden);
  return true;
}

bool MediaSession::OpenMedia() {
  bool ok = false;
  switch (class_) {
    case kAudio:
    case kMidi:
      ok = SendCommand(QStringLiteral("open ") + file_ + QStringLiteral(" type ") + device_ + QStringLiteral(" alias") +
                       QStringLiteral(" wav "));
      break;
    case kCdTrack:
      ok = SendCommand(QStringLiteral("open ") + device_ + QStringLiteral(" alias") + QStringLiteral(" wav "));
      break;
    case kVideo: {
      if (!host_.visible || !host_.visible()) return false;
      if (host_.busy) host_.busy(true);
      ok = SendCommand(QStringLiteral("open ") + file_ + QStringLiteral(" type ") + device_ +
                       QStringLiteral(" alias wav ") + QStringLiteral(" parent ") +
                       (host_.windowHandle ? host_.windowHandle() : QString()) + QStringLiteral(" style child wait"));
      if (ok) {
        if (rect_.isEmpty()) {
          QString reply;
          if (SendQuery(QStringLiteral("where wav source"), &reply)) {
            const QSize size = host_.size ? host_.size() : QSize();
            rect_ = QStringLiteral("0 0 ") + QString::number(size.width()) + u' ' + QString::number(size.height());
          }
        }
        if (!rect_.isEmpty()) {
          SendCommand(QStringLiteral("put wav window at ") + rect_);
        } else {
          // No picture: play the sound alone.
          class_ = kAudio;
          SendCommand(QStringLiteral("close wav ") + QStringLiteral(" wait"));
          ok = SendCommand(QStringLiteral("open ") + file_ + QStringLiteral(" type ") + device_ +
                           QStringLiteral(" alias") + QStringLiteral(" wav "));
        }
      }
      if (host_.busy) host_.busy(false);
      break;
    }
    default:
      return false;
  }
  if (ok) SendCommand(QStringLiteral("set wav time format ") + QStringLiteral("milliseconds"));
  return ok;
}

void MediaSession::PlayMedia() { SendCommand(QStringLiteral("play wav ")); }

void MediaSession::PlayFrom(double value, bool isTrack) {
  if (!IsOpen() && !OpenMedia()) return;
  double start = isTrack ? TrackStart(int(value)) : std::trunc(MediaLength() * value);
  QString reply;
  if (SendQuery(QStringLiteral("status wav start position"), &reply)) start = std::max(start, ReplyNumber(reply));
  SendCommand(QStringLiteral("play wav from ") + QString::number(qint64(start)));
}

void MediaSession::StopMedia(bool keepOpen) {
  if (!IsOpen()) return;
  SendCommand(QStringLiteral("stop wav "));
  if (keepOpen) return;
  SendCommand(QStringLiteral("close wav ") + QStringLiteral(" wait"));
  if (class_ == kVideo && host_.videoClosed) host_.videoClosed();
  class_ = kNoMedia;
}

double MediaSession::MediaLength() { return queryNumber(QStringLiteral("status wav length")); }
double MediaSession::MediaPosition() { return queryNumber(QStringLiteral("status wav position")); }
double MediaSession::MediaFraction() {
  const double length = MediaLength();
  return length == 0 ? 0 : MediaPosition() / length;
}
QString MediaSession::MediaMode() {
  QString reply;
  SendQuery(QStringLiteral("status wav mode"), &reply);
  return reply;
}
int MediaSession::TrackCount() { return int(queryNumber(QStringLiteral("status wav number of tracks"))); }
int MediaSession::CurrentTrack() { return int(queryNumber(QStringLiteral("status wav current track"))); }
double MediaSession::TrackStart(int n) {
  return queryNumber(QStringLiteral("status wav position track ") + QString::number(n));
}
double MediaSession::TrackLength(int n) {
  return queryNumber(QStringLiteral("status wav length track ") + QString::number(n));
}

QString MediaSession::FormatText() {
  QString text, reply;
  switch (class_) {
    case kAudio:
      if (SendQuery(QStringLiteral("status wav format tag"), &reply)) text += reply.toUpper() + QStringLiteral(", ");
      if (SendQuery(QStringLiteral("status wav samplespersec"), &reply)) text += reply + QStringLiteral(" Hz");
      if (SendQuery(QStringLiteral("status wav bitspersample"), &reply) && ReplyNumber(reply) != 0)
        text += QStringLiteral(", ") + reply + QStringLiteral(" Bit");
      if (SendQuery(QStringLiteral("status wav channels"), &reply))
        text += ReplyNumber(reply) == 1 ? QStringLiteral(", Mono") : QStringLiteral(", Stereo");
      break;
    case kMidi:
      if (SendQuery(QStringLiteral("status wav division type"), &reply)) text += reply;
      if (SendQuery(QStringLiteral("status wav number of tracks"), &reply))
        text += QStringLiteral(", ") + reply + QStringLiteral(" tracks");
      break;
    case kVideo:
      if (SendQuery(QStringLiteral("status wav bitsperpel"), &reply)) text += reply + QStringLiteral(" Bits, ");
      if (SendQuery(QStringLiteral("status wav nominal frame rate"), &reply))
        text += QString::number(qint64(ReplyNumber(reply) / 1000)) + QStringLiteral(" fr/sec");
      break;
    case kCdTrack:
      text = QStringLiteral("44100 Hz, 16 Bit, Stereo");
      break;
    default:
      break;
  }
  return text;
}

QString MediaSession::FormatLabel() {
  const QString text = FormatText();
  return text.isEmpty() ? title_ : QStringLiteral("Format: ") + text;
}

QString MediaSession::LengthText() {
  QString text = TimeText(MediaLength());
  if (class_ == kCdTrack) text += QStringLiteral(" (") + QString::number(TrackCount()) + QStringLiteral(" Tracks)");
  return text;
}

QStringList MediaSession::TrackNames() {
  QStringList names;
  const int count = class_ == kCdTrack ? TrackCount() : 0;
  for (int n = 1; n <= count; ++n)
    names << QStringLiteral("Track %1  %2").arg(n, 2, 10, QChar(u'0')).arg(TimeText(TrackLength(n)));
  return names;
}

Progress MediaSession::Tick() {
  Progress p;
  const double f = MediaFraction();
  p.fraction = f;
  p.fill = f != 0;
  if (f < 1 || f >= 2) {
    const double position = MediaPosition();
    p.label = TimeText(position);
    if (class_ == kCdTrack) {
      const int track = CurrentTrack();
      if (track != lastTrack_ && track > 0) {
        lastTrack_ = track;
        p.track = track;
      }
      if (lastTrack_ > 0) p.label = TimeText(position - TrackStart(lastTrack_));
    }
  } else {
    p.finished = true;
    p.label = LengthText();
  }
  return p;
}

BarAction MediaSession::BarMouse(bool leftButton, double x, double width) {
  if (!leftButton) {
    PlayFrom(width > 0 ? x / width : 0, false);
    return BarAction::kStartTimer;
  }
  const QString mode = MediaMode();
  if (mode == u"playing") {
    StopMedia(true);
    return BarAction::kStopTimer;
  }
  if (mode == u"stopped") {
    if (MediaFraction() < 1) {
      SendCommand(QStringLiteral("play wav "));
    } else {
      PlayFrom(0, false);
    }
    return BarAction::kStartTimer;
  }
  return BarAction::kNone;
}

void MediaSession::TrackChosen(int index) {
  if (index < 0) return;
  PlayFrom(index + 1, true);
}

}  // namespace modMCIsnd
