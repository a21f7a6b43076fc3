#pragma once
#include <QByteArray>
#include <QString>
#include <QStringView>

namespace platform {

// File names on Linux are bytes; ours are QStrings. Invalid UTF-8 bytes are
// carried as lone low surrogates U+DC80..U+DCFF so that every name survives
// the round trip to the file system unchanged.
QString FromNative(const char* bytes, qsizetype length);
inline QString FromNative(const QByteArray& bytes) { return FromNative(bytes.constData(), bytes.size()); }
QByteArray ToNative(QStringView text);
// The same into `out`, reusing its storage: for loops that convert a name per item.
void ToNative(QStringView text, QByteArray* out);

// The same text with every escaped byte shown as U+FFFD, for display only.
QString DisplayText(const QString& text);

// The path separator, and a folder path that ends in it.
inline constexpr QChar kSeparator = u'/';
QString WithSeparator(const QString& folder);

}  // namespace platform
