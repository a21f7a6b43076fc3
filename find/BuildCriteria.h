#pragma once
#include <QString>
#include <QStringList>

#include "core/FindTabValues.h"
#include "find/FindCriteria.h"

namespace find {

// A refusal of BuildCriteria: the message box text and its icon.
struct CriteriaMessage {
  enum Icon : int { kInformation = 0, kCritical = 1 };
  QString text;
  Icon icon = kCritical;
};

// What "Look in" may name besides a folder: the folder tree's root entry,
// which stands for the folders given here (the drives).
struct LookInRoot {
  QString name;
  QStringList folders;
};

inline constexpr const char* kSizeMessage =
    "Invalid size filter: files must be smaller than 2GB (= 2,024MB = 2,097,152KB = 2,147,483,648 bytes)";
inline constexpr const char* kDateMessage = "Invalid date(s)";
QString LookInMessage(const QString& path);  // "Couldn't find "..."" + two line breaks + "Recheck ..."

// Turns the tab's values into criteria. `lookIn` are the locations in walk
// order (the tab passes its one Look in text; the command line one per --in).
// Only active groups are read and checked. On bad input `message` says why
// and `criteria` is left as it was.
bool BuildCriteria(const core::FindTabValues& values, const QStringList& lookIn, const LookInRoot& root,
                   FindCriteria* criteria, CriteriaMessage* message);

}  // namespace find
