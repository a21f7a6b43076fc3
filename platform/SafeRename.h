#pragma once
#include <QString>

namespace platform {

// Renames `from` to `to` without ever replacing an entry that exists under
// `to`. Returns 0 or an errno value (EEXIST when `to` is taken). Symbolic
// links are renamed themselves, never their targets. A rename that changes
// only the case of a name goes through a unique temporary name, so it works
// on case-insensitive file systems too.
int RenameNoReplace(const QString& from, const QString& to);

// The same for names of open folders, with no path walk: `fromName` in the
// folder open as `fromDir` becomes `toName` in `toDir`. Not for a rename
// that changes only the case of a name (use RenameNoReplace).
int RenameNoReplaceAt(int fromDir, const QByteArray& fromName, int toDir, const QByteArray& toName);

// The system's text for an errno value ("File exists", "Permission denied").
QString ErrorText(int error);

}  // namespace platform
