#pragma once
#include <QByteArray>
#include <QString>

// The fixed (numeric) part of a version resource and its decoding tables.
namespace modVerFixedInfo {

struct FixedFileInfo {  // the 52-byte record, thirteen 32-bit fields
  quint32 signature = 0, structVersion = 0;
  quint32 fileVersionMS = 0, fileVersionLS = 0;
  quint32 productVersionMS = 0, productVersionLS = 0;
  quint32 fileFlagsMask = 0, fileFlags = 0, fileOS = 0, fileType = 0, fileSubtype = 0;
  quint32 fileDateMS = 0, fileDateLS = 0;
};

// The record from the bytes the query "\" gave; false when fewer than 52.
bool ParseFixedInfo(const QByteArray& bytes, FixedFileInfo* info);

QString FileTypeText(quint32 type, quint32 subtype);
QString FileOSText(quint32 os);
QString FileFlagsText(quint32 flags);
// 4.0.0.950 reads "4.00.00.950": signed 16-bit parts, all but the first padded to 2.
QString FormatVersion(quint32 high, quint32 low);

}  // namespace modVerFixedInfo
