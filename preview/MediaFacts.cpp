#include "preview/MediaFacts.h"

#include <cmath>
#include <cstring>

namespace preview {

namespace {

// Out-of-range reads give 0; the bound also lets the compiler see that no
// read leaves the array.
quint32 Le32(const QByteArray& b, qsizetype at) {
  if (at < 0 || at + 4 > b.size()) return 0;
  const auto* p = reinterpret_cast<const uchar*>(b.constData() + at);
  return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
}
quint16 Le16(const QByteArray& b, qsizetype at) {
  if (at < 0 || at + 2 > b.size()) return 0;
  const auto* p = reinterpret_cast<const uchar*>(b.constData() + at);
  return quint16(p[0] | p[1] << 8);
}
quint32 Be32(const QByteArray& b, qsizetype at) {
  if (at < 0 || at + 4 > b.size()) return 0;
  const auto* p = reinterpret_cast<const uchar*>(b.constData() + at);
  return quint32(p[0]) << 24 | quint32(p[1]) << 16 | quint32(p[2]) << 8 | quint32(p[3]);
}
quint16 Be16(const QByteArray& b, qsizetype at) {
  if (at < 0 || at + 2 > b.size()) return 0;
  const auto* p = reinterpret_cast<const uchar*>(b.constData() + at);
  return quint16(p[0] << 8 | p[1]);
}
bool Tag(const QByteArray& b, qsizetype at, const char* tag) {
  return at >= 0 && at + 4 <= b.size() && std::memcmp(b.constData() + at, tag, 4) == 0;
}

QString WaveTagName(quint16 tag) {
  switch (tag) {
    case 0x0001: return QStringLiteral("pcm");
    case 0x0002: return QStringLiteral("adpcm");
    case 0x0003: return QStringLiteral("ieee float");
    case 0x0006: return QStringLiteral("a-law");
    case 0x0007: return QStringLiteral("mu-law");
    case 0x0011: return QStringLiteral("ima adpcm");
    case 0x0031: return QStringLiteral("gsm 6.10");
    case 0x0050: return QStringLiteral("mpeg");
    case 0x0055: return QStringLiteral("mpeg layer 3");
    default: return QString::number(tag);
  }
}

MediaFacts ReadWave(const QByteArray& b, qint64 fileSize) {
  MediaFacts f;
  bool haveFmt = false;
  quint32 byteRate = 0;
  qsizetype at = 12;
  while (at + 8 <= b.size()) {
    const quint32 size = Le32(b, at + 4);
    const qsizetype body = at + 8;
    if (Tag(b, at, "fmt ")) {
      if (size < 16 || body + 16 > b.size()) return f;
      quint16 tag = Le16(b, body);
      f.channels = Le16(b, body + 2);
      f.samplesPerSec = int(Le32(b, body + 4));
      byteRate = Le32(b, body + 8);
      f.bitsPerSample = Le16(b, body + 14);
      // Extensible: the real tag leads the sub-format GUID.
      if (tag == 0xFFFE && size >= 40 && body + 26 <= b.size()) tag = Le16(b, body + 24);
      f.formatTag = WaveTagName(tag);
      haveFmt = true;
    } else if (Tag(b, at, "data")) {
      if (!haveFmt || f.channels == 0 || f.samplesPerSec <= 0) return f;
      // A byte rate of 0 is repaired from the frame size when that is known.
      if (byteRate == 0) byteRate = quint32(qint64(f.samplesPerSec) * f.channels * f.bitsPerSample / 8);
      if (byteRate == 0) return f;
      const qint64 available = std::max<qint64>(0, fileSize - body);
      const qint64 bytes = std::min<qint64>(size, available);
      f.lengthMs = std::floor(double(bytes) * 1000.0 / byteRate);
      f.valid = true;
      return f;
    }
    // Chunks are padded to even sizes.
    const qint64 next = qint64(body) + size + (size & 1);
    if (next <= at || next > (qint64(1) << 40)) return f;
    at = qsizetype(std::min<qint64>(next, b.size()));
  }
  return f;
}

// The 80-bit IEEE extended sample rate of an AIFF "COMM" chunk.
double Extended80(const QByteArray& b, qsizetype at) {
  const auto* p = reinterpret_cast<const uchar*>(b.constData() + at);
  const int exponent = ((p[0] & 0x7F) << 8 | p[1]) - 16383;
  quint64 mantissa = 0;
  for (int i = 0; i < 8; ++i) mantissa = mantissa << 8 | p[2 + i];
  if (mantissa == 0 || exponent < -64 || exponent > 64) return 0;
  const double v = std::ldexp(double(mantissa), exponent - 63);
  return (p[0] & 0x80) ? -v : v;
}

MediaFacts ReadAiff(const QByteArray& b) {
  MediaFacts f;
  const bool aifc = Tag(b, 8, "AIFC");
  qsizetype at = 12;
  quint32 frames = 0;
  bool haveComm = false;
  while (at + 8 <= b.size()) {
    const quint32 size = Be32(b, at + 4);
    const qsizetype body = at + 8;
    if (Tag(b, at, "COMM")) {
      if (size < 18 || body + 18 > b.size()) return f;
      f.channels = Be16(b, body);
      frames = Be32(b, body + 2);
      f.bitsPerSample = Be16(b, body + 6);
      const double rate = Extended80(b, body + 8);
      if (rate < 1 || rate > 10e6) return f;
      f.samplesPerSec = int(rate);
      f.formatTag = QStringLiteral("pcm");
      if (aifc && size >= 22 && body + 22 <= b.size()) {
        const QByteArray kind = b.mid(body + 18, 4);
        if (kind != "NONE" && kind != "twos" && kind != "sowt") f.formatTag = QString::fromLatin1(kind).trimmed().toLower();
      }
      haveComm = true;
    } else if (Tag(b, at, "SSND")) {
      if (!haveComm || f.channels == 0) return f;
      f.lengthMs = std::floor(double(frames) * 1000.0 / f.samplesPerSec);
      f.valid = true;
      return f;
    }
    const qint64 next = qint64(body) + size + (size & 1);
    if (next <= at || next > (qint64(1) << 40)) return f;
    at = qsizetype(std::min<qint64>(next, b.size()));
  }
  return f;
}

MediaFacts ReadAu(const QByteArray& b, qint64 fileSize) {
  MediaFacts f;
  if (b.size() < 24) return f;
  const quint32 offset = Be32(b, 4);
  const quint32 dataSize = Be32(b, 8);
  const quint32 encoding = Be32(b, 12);
  const quint32 rate = Be32(b, 16);
  const quint32 channels = Be32(b, 20);
  if (offset < 24 || rate == 0 || rate > 10'000'000 || channels == 0 || channels > 64) return f;
  int bits = 0;
  switch (encoding) {
    case 1: f.formatTag = QStringLiteral("mu-law"); bits = 8; break;
    case 2: f.formatTag = QStringLiteral("pcm"); bits = 8; break;
    case 3: f.formatTag = QStringLiteral("pcm"); bits = 16; break;
    case 4: f.formatTag = QStringLiteral("pcm"); bits = 24; break;
    case 5: f.formatTag = QStringLiteral("pcm"); bits = 32; break;
    case 6: f.formatTag = QStringLiteral("ieee float"); bits = 32; break;
    case 7: f.formatTag = QStringLiteral("ieee float"); bits = 64; break;
    case 27: f.formatTag = QStringLiteral("a-law"); bits = 8; break;
    default: return f;
  }
  f.bitsPerSample = bits;
  f.samplesPerSec = int(rate);
  f.channels = int(channels);
  const qint64 available = std::max<qint64>(0, fileSize - qint64(offset));
  const qint64 bytes = dataSize == 0xFFFFFFFFu ? available : std::min<qint64>(dataSize, available);
  f.lengthMs = std::floor(double(bytes) * 1000.0 / (double(rate) * channels * (bits / 8)));
  f.valid = true;
  return f;
}

}  // namespace

MediaFacts ReadAudioHeader(const QByteArray& head, qint64 fileSize) {
  if (Tag(head, 0, "RIFF") && Tag(head, 8, "WAVE")) return ReadWave(head, fileSize);
  if (Tag(head, 0, "FORM") && (Tag(head, 8, "AIFF") || Tag(head, 8, "AIFC"))) return ReadAiff(head);
  if (Tag(head, 0, ".snd")) return ReadAu(head, fileSize);
  return MediaFacts();
}

MediaFacts ReadMidiHeader(const QByteArray& file) {
  MediaFacts f;
  QByteArray b = file;
  // RIFF MIDI: the standard file sits in the "data" chunk.
  if (Tag(b, 0, "RIFF") && Tag(b, 8, "RMID")) {
    qsizetype at = 12;
    bool found = false;
    while (at + 8 <= b.size()) {
      const quint32 size = Le32(b, at + 4);
      if (Tag(b, at, "data")) {
        b = b.mid(at + 8, qsizetype(std::min<qint64>(size, b.size() - at - 8)));
        found = true;
        break;
      }
      const qint64 next = qint64(at) + 8 + size + (size & 1);
      if (next > b.size()) break;
      at = qsizetype(next);
    }
    if (!found) return f;
  }
  if (!Tag(b, 0, "MThd") || b.size() < 14) return f;
  const quint32 headerSize = Be32(b, 4);
  if (headerSize < 6) return f;
  const int tracks = Be16(b, 10);
  const quint16 division = Be16(b, 12);
  if (tracks == 0) return f;
  if (division & 0x8000) {
    const int fps = -qint8(division >> 8);
    switch (fps) {
      case 24: f.divisionType = QStringLiteral("SMPTE 24"); break;
      case 25: f.divisionType = QStringLiteral("SMPTE 25"); break;
      case 29: f.divisionType = QStringLiteral("SMPTE 30 drop"); break;
      case 30: f.divisionType = QStringLiteral("SMPTE 30"); break;
      default: return f;
    }
  } else {
    if (division == 0) return f;
    f.divisionType = QStringLiteral("PPQN");
  }
  // Every counted track must be there; other chunk kinds are skipped.
  int found = 0;
  qint64 at = 8 + qint64(headerSize);
  while (found < tracks && at + 8 <= b.size()) {
    const quint32 size = Be32(b, qsizetype(at + 4));
    if (Tag(b, qsizetype(at), "MTrk")) ++found;
    at += 8 + qint64(size);
  }
  if (found < tracks) return f;
  f.tracks = tracks;
  f.lengthMs = -1;
  f.valid = true;
  return f;
}

}  // namespace preview
