#pragma once
#include <QByteArray>
#include <QString>

namespace preview {

// What a media file says about itself, as the status queries answer it.
// Numbers are 0 and texts empty when unknown.
struct MediaFacts {
  bool valid = false;
  double lengthMs = 0;      // -1 when the header cannot tell
  // sampled audio
  QString formatTag;        // "pcm", "mpeg layer 3", ... (lower case)
  int samplesPerSec = 0;
  int bitsPerSample = 0;
  int channels = 0;
  // MIDI
  QString divisionType;     // "PPQN", "SMPTE 24", "SMPTE 25", "SMPTE 30 drop", "SMPTE 30"
  int tracks = 0;
  // video
  bool hasVideo = false;
  int bitsPerPel = 0;
  int width = 0;
  int height = 0;
  double frameRate = 0;     // frames per second
};

// Header readers. `head` holds the file's first bytes (64 KB do for every
// header here), `fileSize` the whole size, so that a data size that claims
// more than the file holds is cut to what is there.
// RIFF WAVE, AIFF/AIFC and Sun/NeXT .snd; invalid when none of them or cut
// short before the format and the start of the data.
MediaFacts ReadAudioHeader(const QByteArray& head, qint64 fileSize);
// A standard MIDI file (or one wrapped in RIFF RMID): division and track
// count. Invalid when the header is broken, names no track, or the file holds
// fewer track chunks than the header counts. Needs the whole file.
MediaFacts ReadMidiHeader(const QByteArray& file);

}  // namespace preview
