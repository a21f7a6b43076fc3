#include "core/SizeFormat.h"

#include "core/NumberFormat.h"
#include "core/Rounding.h"

namespace core {

QStringList SizeFormatCaptions() { return QString::fromLatin1(kSizeFormatCaptions).split(u','); }

std::optional<qint64> RoundedUpDivision(double n, qint64 divisor) {
  const std::optional<int32_t> m = ToInt32(n);
  if (!m || divisor == 0) return std::nullopt;
  const qint64 q = *m / divisor;
  const qint64 r = *m % divisor;
  return q + (r > 0 ? 1 : r < 0 ? -1 : 0);
}

static QString RoundedText(double bytes, qint64 divisor) {
  if (divisor == 0) return QString::fromLatin1(kDivisionByZeroText);
  const std::optional<qint64> k = RoundedUpDivision(bytes, divisor);
  return k ? FormatNumber(double(*k), u"#,0") : QString::fromLatin1(kOverflowText);
}

QString FormatSize(double bytes, int option, qint64 clusterSize) {
  switch (option) {
    case kSizeRaw:
      return bytes >= -9.2e18 && bytes <= 9.2e18 ? QString::number(qint64(bytes)) : QString::number(bytes, 'g', 15);
    case kSizeBytes:
      return FormatNumber(bytes, u"#,0");
    case kSizeKBRounded:
      return RoundedText(bytes, 1024);
    case kSizeKB:
      return LocaleNumber(bytes / 1024);
    case kSizeMB:
      return LocaleNumber(bytes / 1048576);
    case kSizeGB:
      return LocaleNumber(bytes / 1073741824);
    case kSizeFlexible:
      return FlexibleSize(bytes, false, false);
    case kSizeFlexibleRounded:
      return FlexibleSize(bytes, true, false);
    case kSizeClusters:
      return RoundedText(bytes, clusterSize);
    case 9:
      return FormatNumber(bytes, u"#,0");
    default:
      return LocaleNumber(bytes);
  }
}

QString FlexibleSize(double bytes, bool rounded, bool withBytes) {
  if (bytes < 1024) return FormatNumber(bytes, u"#,0") + QStringLiteral(" bytes");
  QString text;
  if (bytes >= 1048576) {
    text = bytes < 1073741824 ? LocaleNumber(bytes / 1048576) + QStringLiteral("MB")
                              : LocaleNumber(bytes / 1073741824) + QStringLiteral("GB");
  } else if (rounded) {
    // Below 1 MB the 32-bit division cannot overflow.
    text = FormatNumber(double(*RoundedUpDivision(bytes, 1024)), u"#,0") + QStringLiteral("KB");
  } else {
    text = LocaleNumber(bytes / 1024) + QStringLiteral("KB");
  }
  if (withBytes) text += QStringLiteral(" (") + FormatNumber(bytes, u"#,0") + QStringLiteral(" bytes)");
  return text;
}

}  // namespace core
