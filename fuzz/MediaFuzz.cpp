// Arbitrary bytes through the media parsers: the command-string parser, the
// WAV/AIFF/AU and MIDI header readers, the RealMedia check and the device
// table built from the bytes as "Win.ini" and "System.ini".
#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/IniFile.h"
#include "preview/MciCommand.h"
#include "preview/MciDeviceTable.h"
#include "preview/MediaFacts.h"
#include "preview/modMCIsnd.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));

  const preview::MciCommand c = preview::MciCommand::Parse(QString::fromUtf8(bytes));
  for (const char* key : {"alias", "type", "parent", "time format", "from", "track"}) c.valueAfter(QString::fromLatin1(key));
  if (c.verb != c.verb.toLower()) std::abort();

  const preview::MediaFacts audio = preview::ReadAudioHeader(bytes, bytes.size());
  if (audio.valid && (audio.channels <= 0 || audio.samplesPerSec <= 0 || audio.lengthMs < 0)) std::abort();
  const preview::MediaFacts midi = preview::ReadMidiHeader(bytes);
  if (midi.valid && (midi.tracks <= 0 || midi.divisionType.isEmpty())) std::abort();

  const modMCIsnd::RealMediaCheck real = modMCIsnd::CheckRealMedia(bytes);
  if (!real.accepted && !real.title.isEmpty()) std::abort();

  const qsizetype half = bytes.size() / 2;
  preview::MciDeviceTable table;
  table.Build(core::IniFile::FromBytes(bytes.left(half)), core::IniFile::FromBytes(bytes.mid(half)));
  if (table.extensions().size() != table.devices().size()) std::abort();
  modMCIsnd::TimeText(double(size) * 1e6);
  modMCIsnd::ReplyNumber(QString::fromUtf8(bytes.left(40)));
  return 0;
}
