#pragma once
#include <QString>

#include "find/FindCriteria.h"
#include "find/FindSink.h"

namespace find {

// One find over built criteria, reporting through a sink.
//
//   find::FindCriteria criteria;
//   find::CriteriaMessage message;
//   const core::FindTabValues values = tab->values();
//   if (!find::BuildCriteria(values, {values.lookIn}, {treeRootName, drives}, &criteria, &message)) {
//     show message.text with message.icon; return;   // nothing else changes
//   }
//   find::FindJob::Run(criteria, sink, sortingOn);
//
// Run clears the process-wide abort flag and the counters, sets the busy flag,
// tells the sink to start a Find-mode fill and reports status 0, walks the
// locations (status 1 per folder), sorts when asked and the list holds rows
// ("Sorting..." first above 3000 rows), reports the summary with status 3
// and clears the busy flag. Escape (the abort flag) stops the walk before the
// next entry; the rows found stay.
class FindJob {
 public:
  // True when the walk ran to its end, false when it was aborted.
  static bool Run(FindCriteria& criteria, FindSink& sink, bool sortAfterwards);

  // "1.234 sec (1,234 folders scanned, 56 name hits)" and "  ABORTED".
  static QString SummaryText(double seconds, qint64 foldersScanned, qint64 nameHits, bool aborted);

  // A short all-capitals name (under 13 characters) in proper case, as the
  // list shows folder names; any other name as it is.
  static QString TidyFolderName(const QString& name);

  // Rows above which a sort announces itself.
  static constexpr qsizetype kSilentSortRows = 3000;
};

}  // namespace find
