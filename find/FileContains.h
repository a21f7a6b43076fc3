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

// What the caller knows of the file: the folder being read, its path and
// the entry's index in it (the file is then opened relative to the folder,
// and `path` may be left empty), that it is a regular file, and its size
// (-1: unknown). Or the file itself, already opened with O_NOATIME (`fd`,
// with `regular` set); it is read (to its end when the size is unknown) and
// left open.
struct EntryInFolder {
  const platform::FolderReader* folder = nullptr;
  const QString* folderPath = nullptr;
  qsizetype index = -1;
  bool regular = false;
  qint64 size = -1;
  int fd = -1;
};

// Whether the file at `path` holds the search text (in its compare mode).
// Files up to kContainsBlock bytes are read whole; bigger ones in blocks of
// that size which overlap by the longest match minus one byte, up to the
// length taken before the read; memory stays bounded. A text longer than a block is never found;
// empty and unreadable files, folders and devices hold nothing; an empty text
// is found in every file that holds something. The process-wide abort flag is
// polled before every block after the first: an abort ends the search at
// once with no match.
//
// Time stamps: the file is opened with O_NOATIME where the system allows it
// (we own the file, or are privileged), so reading leaves its last-access
// time alone; otherwise a changed access time is set back afterwards. The
// last-write time and the permission bits are never touched.
bool FileContains(const TextSearch& search, const QString& path, const YieldHook& yield = {},
                  EntryInFolder where = {});

}  // namespace find
