#pragma once
#include <QByteArray>
#include <QString>

namespace find {

inline constexpr const char* kHexOddMessage = "Number of chars in hex string must be even (2 chars per byte).";
inline constexpr const char* kHexInvalidMessage = "Hex string contains invalid chars.";

// Reads "4D 5A\r\n90 00" as its bytes: blanks and line breaks are dropped,
// then every pair of hex digits (either case) is one byte. On failure
// `message` gets the text to show and `bytes` is left alone.
bool ParseHexString(const QString& hexText, QByteArray* bytes, QString* message);

}  // namespace find
