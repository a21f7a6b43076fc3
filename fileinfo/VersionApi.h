#pragma once
#include <QByteArray>
#include <QString>

namespace fileinfo {

// The four operations the version reader needs from the platform, made
// here from our own PE/NE reader. The size and the data calls both locate
// the resource; only headers and the resource tree are read for that.
quint32 GetFileVersionInfoSize(const QString& path);
bool GetFileVersionInfo(const QString& path, quint32 size, QByteArray* block);
// A path in the block; the value is a copy (see VersionBlock::Query).
bool VerQueryValue(const QByteArray& block, const QString& subBlock, QByteArray* value);
// Display name of a Windows language id in the user's locale; empty when unknown.
QString VerLanguageName(quint32 langId);

}  // namespace fileinfo
