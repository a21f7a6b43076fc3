#pragma once
#include <QString>
#include <QStringView>

namespace core {

// Formats a number with one of the program's patterns: "#,0", "0", "00",
// "0000" (any run of zeros), "0.000" (any count of decimals), "#,0.00%" and the
// named format "Standard"; separators come from the format locale.
QString FormatNumber(double value, QStringView pattern);

// The user's number format: grouping, decimal separator, two decimals. Falls
// back to "Standard" where that format would need more than 19 characters or
// the number only has an exponent form.
QString LocaleNumber(double value);

// "1 file", "0 files", "12 files", "1,000 files".
QString CountPhrase(double count, QStringView noun);

}  // namespace core
