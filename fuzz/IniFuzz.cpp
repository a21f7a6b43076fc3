// Arbitrary bytes as a settings file: parsing, every lookup, the key list,
// the whole catalogue read and written in memory, and writes with names
// taken from the input. Checks that an untouched document gives back its
// bytes and that a written state is stable (writing what was read back
// changes nothing).
#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/CProfile.h"
#include "core/IniFile.h"
#include "core/Settings.h"

namespace {

core::AppSettings Defaults() {
  core::DefaultsContext context;
  context.homeFolder = QStringLiteral("/home/fuzz/");
  return core::DefaultSettings(context);
}

// Writes `settings` over `base` in memory and returns the bytes.
QByteArray WriteAll(core::AppSettings settings, core::IniFile base) {
  core::CProfile profile;
  profile.BeginBatch(std::move(base));
  core::IniWR(profile, settings, u"write");
  return profile.TakeBatch().toBytes();
}

core::AppSettings ReadAll(const QByteArray& bytes) {
  core::AppSettings settings = Defaults();
  core::CProfile profile;
  // Short inputs get a trailing comment so that the size rule lets them be read.
  QByteArray padded = bytes;
  if (padded.size() < core::kMinSettingsFileSize) padded += "\n;" + QByteArray(core::kMinSettingsFileSize, '.');
  profile.BeginBatch(core::IniFile::FromBytes(padded));
  core::IniWR(profile, settings, u"read");
  profile.TakeBatch();
  return settings;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  core::IniFile ini = core::IniFile::FromBytes(bytes);
  if (ini.toBytes() != bytes) std::abort();

  core::CProfile profile;
  profile.BeginBatch(ini);
  for (const QString& section : ini.sections()) {
    profile.setProfileSection(section);
    QStringList names;
    profile.Keys(names);
    for (const QString& key : ini.keys(section)) {
      QString value;
      if (ini.getString(section, key, &value) > core::IniFile::kValueBuffer - 1) std::abort();
      qint32 number = 0;
      bool flag = false;
      profile.Value(key, number);
      profile.Value(key, flag);
    }
  }
  profile.TakeBatch();

  // Names and a value cut from the input itself, valid or not.
  const QString text = QString::fromUtf8(bytes.left(96));
  const qsizetype third = text.size() / 3;
  if (ini.setValue(text.left(third), text.mid(third, third), text.mid(2 * third))) {
    QString back;
    ini.getString(text.left(third), text.mid(third, third), &back);
  }

  // Read, write, read again: the second write must change no byte.
  const core::AppSettings first = ReadAll(bytes);
  const QByteArray written = WriteAll(first, core::IniFile::FromBytes(bytes));
  const core::AppSettings second = ReadAll(written);
  if (WriteAll(second, core::IniFile::FromBytes(written)) != written) std::abort();
  return 0;
}
