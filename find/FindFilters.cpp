#include "find/FindFilters.h"

namespace find {

void SetTextCompare(FindCriteria* criteria, bool caseSensitive) {
  criteria->caseSensitive = caseSensitive;
  criteria->search.SetTextCompare(caseSensitive);
}

bool FolderAccepted(FindCriteria& criteria, const QString& folderPath) {
  if (criteria.excludeOn) {
    for (const QString& entry : criteria.excludes)
      if (folderPath.contains(entry, Qt::CaseInsensitive)) return false;
  }
  ++criteria.foldersScanned;
  return true;
}

namespace {

bool InRange(const FindCriteria& c, qint64 t) { return c.dateFrom <= t && t <= c.dateTo; }

bool DatePasses(const FindCriteria& c, const platform::DirEntry& e) {
  switch (c.dateKind) {
    case kDateCreated: return InRange(c, e.creationTime) != c.dateNot;
    case kDateAccessed: return InRange(c, e.lastAccessTime) != c.dateNot;
    case kDateCreatedOrModified:
      // Created or modified in the range; with Not, neither.
      if (c.dateNot) return !InRange(c, e.creationTime) && !InRange(c, e.lastWriteTime);
      return InRange(c, InRange(c, e.creationTime) ? e.creationTime : e.lastWriteTime);
    default: return InRange(c, e.lastWriteTime) != c.dateNot;
  }
}

}  // namespace

bool PassesFiltersButText(FindCriteria& criteria, const platform::DirEntry& entry) {
  ++criteria.nameHits;
  if (criteria.sizeOn) {
    const qint32 low = qint32(quint32(entry.size & 0xFFFFFFFFu));  // files of 2 GB and more wrap
    if (low < criteria.sizeMin || low > criteria.sizeMax) return false;
  }
  if (criteria.attrOn) {
    if ((entry.attributes & criteria.attrMust) != criteria.attrMust) return false;
    if (entry.attributes & criteria.attrMustNot) return false;
  }
  if (criteria.dateOn && !DatePasses(criteria, entry)) return false;
  return true;
}

bool PassesFilters(FindCriteria& criteria, const platform::DirEntry& entry, const QString& fullPath,
                   const YieldHook& yield, EntryInFolder where) {
  if (!PassesFiltersButText(criteria, entry)) return false;
  if (criteria.textOn && !FileContains(criteria.search, fullPath, yield, where)) return false;
  return true;
}

}  // namespace find
