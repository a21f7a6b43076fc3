#pragma once
#include <QString>
#include <QStringList>

#include "core/IniFile.h"

namespace preview {

// Extension to media device type: "Win.ini" section "mci extensions", with
// the streaming device from "System.ini" section "mci" put in for the
// formats it plays best. Without a Windows folder (or without the files in
// it) a stock pair of files serves.
class MciDeviceTable {
 public:
  // Builds from the Windows folder's "Win.ini" and "System.ini" (names found
  // without regard to case); an empty folder means the stock files.
  void Build(const QString& windowsFolder);
  // Builds from the two documents themselves.
  void Build(const core::IniFile& winIni, const core::IniFile& systemIni);

  bool loaded() const { return loaded_; }
  // Case-insensitive; empty when the extension is missing.
  QString DeviceFor(const QString& ext) const;
  const QStringList& extensions() const { return exts_; }
  const QStringList& devices() const { return devices_; }
  const QString& streamingDevice() const { return streaming_; }
  const QString& mpegDevice() const { return mpeg_; }

  static core::IniFile StockWinIni();
  static core::IniFile StockSystemIni();

 private:
  void ensure(const QString& ext, const QString& device, bool replace);

  QStringList exts_;
  QStringList devices_;
  bool loaded_ = false;
  QString streaming_;
  QString mpeg_;
};

}  // namespace preview
