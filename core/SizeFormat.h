#pragma once
#include <QString>
#include <QStringList>
#include <optional>

namespace core {

enum SizeOption : int {
  kSizeRaw = 0,
  kSizeBytes,
  kSizeKBRounded,
  kSizeKB,
  kSizeMB,
  kSizeGB,
  kSizeFlexible,
  kSizeFlexibleRounded,
  kSizeClusters,
};

// The View menu captions, index = option.
inline constexpr const char* kSizeFormatCaptions =
    "Raw Bytes Count,Bytes,KB rounded,KB,MB,GB,Flexible,Flexible rounded,Clusters";
QStringList SizeFormatCaptions();

// Cell texts of a failed conversion: the size does not fit the 32-bit
// arithmetic of the rounded formats, or the cluster size is unknown.
inline constexpr const char* kOverflowText = "Overflow";
inline constexpr const char* kDivisionByZeroText = "Division by zero";

// n converted to a signed 32-bit integer (ties to even), divided by d and
// rounded up (away from zero): q + sign(r). Empty on overflow or d == 0.
std::optional<qint64> RoundedUpDivision(double n, qint64 divisor);

QString FormatSize(double bytes, int option, qint64 clusterSize);
QString FlexibleSize(double bytes, bool rounded, bool withBytes);

}  // namespace core
