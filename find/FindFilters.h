#pragma once
#include <QString>

#include "find/FileContains.h"
#include "find/FindCriteria.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"

namespace find {

// The exclude test for a folder path (ending in "/") before it is entered:
// rejected when an exclude entry occurs in it, compared without regard to
// case; an accepted folder counts towards foldersScanned.
bool FolderAccepted(FindCriteria& criteria, const QString& folderPath);

// The filter test for an entry whose name matched a pattern; counts nameHits.
// Size (signed low 32 bits), attributes, date, then contained text on
// `fullPath` (only built by the caller when the text group is on). A walk
// names the entry's open folder too, so that the file opens relative to it.
bool PassesFilters(FindCriteria& criteria, const platform::DirEntry& entry, const QString& fullPath,
                   const YieldHook& yield = {}, EntryInFolder where = {});

// True when the contained text is the only active group: the test then reads
// nothing of the entry but its file, so a walk may search a plain file before
// it stats it, and stat only the hits.
inline bool OnlyTextFilter(const FindCriteria& c) { return c.textOn && !c.sizeOn && !c.attrOn && !c.dateOn; }

}  // namespace find
