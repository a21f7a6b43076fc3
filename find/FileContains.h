#pragma once
#include <QString>
#include <functional>

#include "find/TextSearch.h"
#include "platform/FolderReader.h"

namespace find {

// The block the contained-text search reads at a time; files up to this size
// are read whole.
inline constexpr qsizetype kContainsBlock = 32768;

// Called between blocks so that a window can take its input (and Escape).
using YieldHook = std::function<void()>;

// An entry of a folder being read, when the caller has it: the file is then
// opened relative to that folder instead of by its whole path.
struct EntryInFolder {
  const platform::FolderReader* folder = nullptr;
  qsizetype index = -1;
};

// Whether the file at `path` holds the search text (in its compare mode).
// Bigger files are read in blocks of kContainsBlock that overlap by the
// longest match minus one byte, then the tail; memory stays bounded. A text
// longer than a block is never found; empty and unreadable files, folders and
// devices hold nothing. The process-wide abort flag is polled before every
// block: an abort ends the search at once with no match.
//
// Time stamps: the file is opened with O_NOATIME where the system allows it
// (we own the file, or are privileged), so reading leaves its last-access
// time alone; otherwise a changed access time is set back afterwards. The
// last-write time and the permission bits are never touched.
bool FileContains(const TextSearch& search, const QString& path, const YieldHook& yield = {},
                  EntryInFolder where = {});

}  // namespace find
