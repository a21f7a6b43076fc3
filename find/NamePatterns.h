#pragma once
#include <QString>
#include <QStringList>

namespace find {

// The Named text split at ";": a trailing ";" ends the list without an empty
// segment, a leading ";" or ";;" yields one. Blanks stay part of a segment.
// An empty text has no segments.
QStringList SplitNamePatterns(const QString& named);

// The patterns a find enumerates with: a bare word becomes "*word*" unless
// `exact`; a piece of "**.**" or a run of dots becomes "*.*", which then stands
// alone for the whole list. Never empty: no segments give "*.*".
QStringList NormalisePatterns(const QString& named, bool exact);

}  // namespace find
