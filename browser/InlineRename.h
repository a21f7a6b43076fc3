#pragma once
#include <QString>

namespace browser {

// The list's inline rename (F2): renames one entry inside its own folder,
// never onto an entry that exists. Returns an empty text when it was
// renamed, else the message for the user; nothing is touched then.
QString InlineRename(const QString& path, const QString& newName);

}  // namespace browser
