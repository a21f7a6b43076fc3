#pragma once
#include <QString>

#include "report/ReportSink.h"

namespace report {

struct FolderReportOptions {
  enum Kind : int { kTree = 0, kDump = 1 };
  int kind = kTree;
  bool recurse = false;       // "CopyRecurse": the subfolders too
  bool versions = false;      // dump lines end in the file's "ver ..." text
  bool fixedVersion = false;  // "optRepFver": the fixed version, not the string one
};

// The report of one folder: "T&ree structure only" (the folders drawn as an
// indented tree with line characters) or "Classic directory &dump" (per
// folder a header, one line per entry, the folder's counts; a grand total
// at the end). Entries come folders first, each group by name without
// regard to case. Names are escaped so that each stays on its line.
//
// Run clears the abort flag, sets the busy flag while it runs and streams
// into the sink. Escape stops it before the next entry and the output ends
// with the line "  ABORTED". A folder that cannot be read (or vanished)
// gets a line saying so; the report goes on.
class FolderReport {
 public:
  static ReportResult Run(const QString& folder, const FolderReportOptions& options, ReportSink& sink);

  static QString AbortedLine() { return QStringLiteral("  ABORTED"); }
};

}  // namespace report
