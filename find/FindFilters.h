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
// `fullPath`. A walk names the entry's open folder instead, so that the file
// opens relative to it (and passes no path).
// The same without the contained-text test (which the caller runs apart).
bool PassesFiltersButText(FindCriteria& criteria, const platform::DirEntry& entry);

bool PassesFilters(FindCriteria& criteria, const platform::DirEntry& entry, const QString& fullPath,
                   const YieldHook& yield = {}, EntryInFolder where = {});

}  // namespace find
