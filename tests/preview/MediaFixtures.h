#pragma once
#include <QByteArray>
#include <QtEndian>

namespace mediafixtures {

inline void PutLe(QByteArray* b, quint32 v, int bytes) {
  for (int i = 0; i < bytes; ++i) b->append(char((v >> (8 * i)) & 0xFF));
}
inline void PutBe(QByteArray* b, quint32 v, int bytes) {
  for (int i = bytes - 1; i >= 0; --i) b->append(char((v >> (8 * i)) & 0xFF));
}

// A PCM RIFF WAVE of `ms` milliseconds of a quiet tone; `claimedData`
// overrides the data chunk's size field.
inline QByteArray Wave(int ms, int rate = 44100, int bits = 16, int channels = 2, qint64 claimedData = -1) {
  const quint32 frames = quint32(qint64(rate) * ms / 1000);
  const quint32 blockAlign = quint32(channels * bits / 8);
  const quint32 dataSize = frames * blockAlign;
  QByteArray b("RIFF");
  PutLe(&b, 36 + dataSize, 4);
  b += "WAVEfmt ";
  PutLe(&b, 16, 4);
  PutLe(&b, 1, 2);
  PutLe(&b, quint32(channels), 2);
  PutLe(&b, quint32(rate), 4);
  PutLe(&b, quint32(rate) * blockAlign, 4);
  PutLe(&b, blockAlign, 2);
  PutLe(&b, quint32(bits), 2);
  b += "data";
  PutLe(&b, claimedData >= 0 ? quint32(claimedData) : dataSize, 4);
  QByteArray data(qsizetype(dataSize), '\0');
  for (quint32 i = 0; i + 1 < dataSize; i += 2) data[i + 1] = char((i / 200) % 2 ? 8 : -8);
  return b + data;
}

// A standard MIDI file: `tracks` tracks counted in the header, `present`
// track chunks written (each a few notes, 480 ticks per quarter at 120 bpm).
inline QByteArray Midi(int tracks, int present, quint16 division = 480, int notes = 4) {
  QByteArray b("MThd");
  PutBe(&b, 6, 4);
  PutBe(&b, tracks > 1 ? 1 : 0, 2);
  PutBe(&b, quint32(tracks), 2);
  PutBe(&b, division, 2);
  for (int t = 0; t < present; ++t) {
    QByteArray ev;
    ev += QByteArray::fromHex("00ff510307a120");  // tempo 500000 us per quarter
    for (int n = 0; n < notes; ++n) {
      ev += QByteArray::fromHex("00903c64");
      ev += QByteArray::fromHex("8170");  // 240 ticks
      ev += QByteArray::fromHex("803c00");
    }
    ev += QByteArray::fromHex("00ff2f00");
    b += "MTrk";
    PutBe(&b, quint32(ev.size()), 4);
    b += ev;
  }
  return b;
}

}  // namespace mediafixtures
