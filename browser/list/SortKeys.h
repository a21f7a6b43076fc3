#pragma once
#include <QString>
#include <QStringView>

namespace browser {

// The textual sort keys of a row. The model compares typed equivalents of
// these (same sign for every pair); the texts are what the keys mean, and
// what rows added by text carry.

// Slots that compare without regard to case: name, type, path.
inline bool IsCaseInsensitiveSlot(int slot) { return slot == 0 || slot == 3 || slot == 8; }

// Group mark "0" for a folder, "1" for a file, when grouping is on.
QString NameKey(QStringView name, bool grouping, bool folder);
// Group prefix ("9" folder, "8" file, when grouping) and the value as two
// blank-padded 8-character hex halves, high half first.
QString StampKey(quint64 value, bool grouping, bool folder);
// Attribute letters in table order, "-" where clear.
QString AttributeKey(quint32 attributes);

}  // namespace browser
