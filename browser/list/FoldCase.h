#pragma once
#include <QString>
#include <QStringView>

namespace browser {

// Comparison "without regard to case": both texts simply case-folded code
// point by code point, then compared as UTF-16 code units. Folding keeps the
// length in UTF-16 units, so a folded copy lines up with the original.
QString FoldCase(QStringView text);
void FoldInto(QStringView text, char16_t* out);  // out holds text.size() units

// Three-way compare of two texts: code-unit order, or folded first.
int CompareText(QStringView a, QStringView b, bool caseInsensitive);

}  // namespace browser
