#pragma once
#include <QString>
#include <QStringView>

namespace core {

// One entry, one line: command-line rows are tab-separated and end in a
// newline, so a field escapes what would break them. "\" becomes "\\", tab,
// newline and carriage return become "\t", "\n", "\r", other control
// characters and the raw bytes of names that are not valid UTF-8 become
// "\xHH", so a script gets the exact bytes back.
void AppendRowField(QString* out, QStringView text);
QString RowField(QStringView text);
// Whether AppendRowField would change the text.
bool NeedsRowEscape(QStringView text);
// Whether a row of fields joined by `separators` tabs is already as
// AppendRowField would write it field by field: one look at the whole row.
// False may also mean that a closer look is needed.
bool RowFieldsPlain(QStringView row, qsizetype separators);

// The inverse: the exact text back from a field; false for an escape that
// RowField never writes (the field is then not ours or was damaged).
bool ParseRowField(QStringView field, QString* out);

}  // namespace core
