#pragma once
#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace testsupport {

// Pins the format locale (en_US unless named) for tests that compare texts.
void PinLocale(const char* name = "en_US");

// Writes a file with the given bytes, creating its folder; false on failure.
bool MakeFile(const QString& path, const QByteArray& content = QByteArray());
// A file of `size` bytes of filler.
bool MakeSizedFile(const QString& path, qint64 size);
bool MakeFolder(const QString& path);
// Sets last-access and last-write time (UTC).
bool SetTimes(const QString& path, const QDateTime& access, const QDateTime& write);

}  // namespace testsupport
