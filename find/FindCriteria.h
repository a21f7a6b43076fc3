#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>

#include "find/TextSearch.h"

namespace find {

// The date kinds of the Date group, in the order of its option buttons.
enum DateKind : int { kDateCreated = 0, kDateModified = 1, kDateAccessed = 2, kDateCreatedOrModified = 3 };

// The criteria of one find: built fresh by BuildCriteria at every start,
// read by the walk; only the two counters change while it runs.
struct FindCriteria {
  QStringList locations;  // folders in walk order, each ending in "/"
  QStringList patterns;   // never empty; "*.*" stands alone
  bool includeSubfolders = false;

  bool sizeOn = false;
  qint32 sizeMin = 0;
  qint32 sizeMax = 2147483647;

  bool attrOn = false;
  quint32 attrMust = 0;
  quint32 attrMustNot = 0;

  bool dateOn = false;
  int dateKind = kDateModified;
  qint64 dateFrom = 0;  // file times (UTC), inclusive
  qint64 dateTo = 0;    // already widened by 999 ms
  bool dateNot = false;

  bool textOn = false;
  QByteArray text;  // UTF-8 of the typed text, or the hex string's bytes
  bool caseSensitive = false;
  bool isHex = false;
  TextSearch search;  // the text compiled in its compare mode

  // Threads reading file contents: 0 one per core, 1 the walk alone.
  int threads = 0;

  bool excludeOn = false;
  QStringList excludes;

  qint64 nameHits = 0;
  qint64 foldersScanned = 0;
};

// The compare mode of the contained-text test, set once per find.
void SetTextCompare(FindCriteria* criteria, bool caseSensitive);

}  // namespace find
