#include "preview/MciDeviceTable.h"

#include <QDir>

#include "core/CProfile.h"

namespace preview {

namespace {

// Every key and value of one section, in file order.
void ReadSection(const core::IniFile& ini, const QString& section, QStringList* keys, QStringList* values) {
  core::CProfile profile;
  profile.BeginBatch(ini);
  profile.setProfileSection(section);
  QStringList names;
  profile.Keys(names);
  for (const QString& key : names) {
    QString value;
    profile.Value(key, value);
    keys->append(key);
    values->append(value.trimmed());
  }
  profile.TakeBatch();
}

// The file named `name` in `folder`, found without regard to case.
QString FindFile(const QString& folder, const QString& name) {
  const QDir dir(folder);
  for (const QString& entry : dir.entryList(QDir::Files | QDir::Hidden))
    if (entry.compare(name, Qt::CaseInsensitive) == 0) return dir.filePath(entry);
  return QString();
}

core::IniFile LoadIni(const QString& path) {
  core::IniFile ini;
  if (!path.isEmpty()) ini.load(path);
  return ini;
}

}  // namespace

core::IniFile MciDeviceTable::StockWinIni() {
  return core::IniFile::FromBytes(
      "[mci extensions]\r\n"
      "wav=waveaudio\r\nmid=sequencer\r\nrmi=sequencer\r\navi=AVIVideo\r\ncda=CDAudio\r\n"
      "asf=MPEGVideo\r\nasx=MPEGVideo\r\nivf=MPEGVideo\r\nlsf=MPEGVideo\r\nlsx=MPEGVideo\r\n"
      "m1v=MPEGVideo\r\nm3u=MPEGVideo\r\nmp2=MPEGVideo\r\nmp2v=MPEGVideo\r\nmp3=MPEGVideo\r\n"
      "mpa=MPEGVideo\r\nmpe=MPEGVideo\r\nmpeg=MPEGVideo\r\nmpg=MPEGVideo\r\nmpv2=MPEGVideo\r\n"
      "wax=MPEGVideo\r\nwm=MPEGVideo\r\nwma=MPEGVideo\r\nwmv=MPEGVideo\r\nwmx=MPEGVideo\r\nwvx=MPEGVideo\r\n"
      "aif=MPEGVideo\r\naifc=MPEGVideo\r\naiff=MPEGVideo\r\nau=MPEGVideo\r\nsnd=MPEGVideo\r\n"
      "mov=MPEGVideo\r\nqt=MPEGVideo\r\n");
}

core::IniFile MciDeviceTable::StockSystemIni() {
  return core::IniFile::FromBytes(
      "[mci]\r\n"
      "cdaudio=mcicda.drv\r\nsequencer=mciseq.drv\r\nwaveaudio=mciwave.drv\r\navivideo=mciavi.drv\r\n"
      "videodisc=mcipionr.drv\r\nvcr=mcivisca.drv\r\nMPEGVideo=mciqtz.drv\r\n");
}

void MciDeviceTable::Build(const QString& windowsFolder) {
  if (windowsFolder.isEmpty()) {
    Build(StockWinIni(), StockSystemIni());
    return;
  }
  Build(LoadIni(FindFile(windowsFolder, QStringLiteral("Win.ini"))),
        LoadIni(FindFile(windowsFolder, QStringLiteral("System.ini"))));
}

void MciDeviceTable::Build(const core::IniFile& winIni, const core::IniFile& systemIni) {
  exts_.clear();
  devices_.clear();
  streaming_.clear();
  mpeg_.clear();
  // (a) the extensions; an empty section leaves the table unloaded.
  ReadSection(winIni, QStringLiteral("mci extensions"), &exts_, &devices_);
  loaded_ = !exts_.isEmpty();
  // (b) the drivers that name the streaming and the MPEG device.
  QStringList keys, values;
  ReadSection(systemIni, QStringLiteral("mci"), &keys, &values);
  for (qsizetype i = 0; i < keys.size(); ++i) {
    if (streaming_.isEmpty() && values[i].compare(u"mciqtz.drv", Qt::CaseInsensitive) == 0) streaming_ = keys[i];
    if (mpeg_.isEmpty() && values[i].compare(u"mcivmpeg.drv", Qt::CaseInsensitive) == 0) mpeg_ = keys[i];
  }
  // (c), (d) the streaming device takes over from the MPEG and QuickTime ones.
  for (QString& device : devices_) {
    if (!streaming_.isEmpty() && !mpeg_.isEmpty() && device.compare(mpeg_, Qt::CaseInsensitive) == 0)
      device = streaming_;
    if (!streaming_.isEmpty() && device.compare(u"QTWVideo", Qt::CaseInsensitive) == 0) device = streaming_;
  }
  // (e)
  ensure(QStringLiteral("cda"), QStringLiteral("cdaudio"), false);
  ensure(QStringLiteral("ra"), streaming_, true);
  ensure(QStringLiteral("rm"), streaming_, true);
  ensure(QStringLiteral("mp2"), streaming_, true);
  ensure(QStringLiteral("mp3"), streaming_, true);
  ensure(QStringLiteral("mpeg"), streaming_, false);
  ensure(QStringLiteral("mpg"), streaming_, false);
  ensure(QStringLiteral("qt"), streaming_, false);
}

void MciDeviceTable::ensure(const QString& ext, const QString& device, bool replace) {
  if (device.isEmpty()) return;
  for (qsizetype i = 0; i < exts_.size(); ++i) {
    if (exts_[i].compare(ext, Qt::CaseInsensitive) != 0) continue;
    if (replace) devices_[i] = device;
    return;
  }
  exts_ << ext;
  devices_ << device;
}

QString MciDeviceTable::DeviceFor(const QString& ext) const {
  for (qsizetype i = 0; i < exts_.size(); ++i)
    if (exts_[i].compare(ext, Qt::CaseInsensitive) == 0) return devices_[i];
  return QString();
}

}  // namespace preview
