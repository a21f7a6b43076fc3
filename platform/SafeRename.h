#pragma once
#include <QString>

namespace platform {

// Renames `from` to `to` without ever replacing an entry that exists under
// `to`. Returns 0 or an errno value (EEXIST when `to` is taken). Symbolic
// links are renamed themselves, never their targets. A rename that changes
// only the case of a name goes through a unique temporary name, so it works
// on case-insensitive file systems too.
int RenameNoReplace(const QString& from, const QString& to);

// The system's text for an errno value ("File exists", "Permission denied").
QString ErrorText(int error);

}  // namespace platform
