#pragma once
#include <QString>
#include <optional>

namespace find {

// The unit choice of the Size group, in the order of its option buttons.
enum SizeUnit : int { kUnitBytes = 0, kUnitKB = 1, kUnitMB = 2 };
double SizeUnitMultiplier(int unit);  // 1, 1024, 1048576

// The number a text starts with, as a general numeric parse reads it: blanks,
// a sign, digits, a decimal point, an exponent; "12abc" is 12, "abc" is 0.
double LeadingNumber(const QString& text);

// One size box as a signed 32-bit byte bound: the leading number times the
// unit, rounded half to even. An empty box gives `emptyValue`; a value
// outside the 32-bit range gives nothing (the caller shows the size message).
std::optional<qint32> SizeBound(const QString& text, int unit, qint32 emptyValue);

}  // namespace find
