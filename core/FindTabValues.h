#pragma once
#include <QString>
#include <QStringList>

namespace core {

class CProfile;

// The contents of the "Find Files" tab as kept in settings section "Find".
// The find start turns them into FindCriteria; here they are only stored.
// Keys in file order, and how each is kept:
//   ExactMatch, InclSubs, RangeNot, CaseSens, Hex   check boxes, "1"/"0"
//   Date          index of the selected date kind (0 created, 1 modified,
//                 2 accessed, 3 created or modified)
//   DateFrom, DateTo, SizeMin, SizeMax, ContText, Named, LookIn, ExcludeFolders
//                 texts of the input controls, in double quotes so that
//                 blanks survive (a pattern may begin or end with one)
//   SizeUnit      index of the size unit (0 Bytes, 1 KB, 2 MB)
//   AttrFindCheck, AttrFindNotCheck
//                 the attribute bits (read-only 1, hidden 2, system 4,
//                 directory 16, archive 32, normal 128, temporary 256,
//                 compressed 2048) of the checked must / must-not boxes, ORed
//   Mind          the filter toggles as bits, see WatchBit
//   Count, ExcludePath0, ExcludePath1, ...
//                 the entries of the exclude list: "Count", then one key per
//                 entry (entries are arbitrary text, so no joined form)
//   ExcludeFolders  the text typed in the exclude box, not yet added
struct FindTabValues {
  // The filter toggles in "Mind", one bit each, in the order of their captions.
  enum WatchBit : qint32 {
    kWatchName = 1,
    kWatchSize = 2,
    kWatchDate = 4,
    kWatchExclude = 8,
    kWatchAttributes = 16,
    kWatchText = 32,
  };

  bool exactMatch = false;
  bool includeSubfolders = true;
  bool rangeNot = false;
  qint16 dateKind = 1;
  QString dateFrom;
  QString dateTo;
  QString sizeMin;
  QString sizeMax;
  qint16 sizeUnit = 1;
  qint32 attrMust = 0;
  qint32 attrMustNot = 0;
  QString containedText;
  bool caseSensitive = false;
  bool isHex = false;
  qint32 watch = kWatchName;
  QString named;
  QString lookIn;
  QString excludeInput;
  QStringList excludes;

  bool watching(WatchBit bit) const { return (watch & bit) != 0; }
  friend bool operator==(const FindTabValues&, const FindTabValues&) = default;
};

// Reads or writes section "Find" as the profile's direction says.
void FindTabValuesWR(CProfile& profile, FindTabValues& values);

}  // namespace core
