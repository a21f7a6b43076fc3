#pragma once
#include <QString>

#include "platform/DirEntry.h"

namespace find {

// The status-line modes a find reports (the window's ShowJobStatus).
enum JobStatusMode : int {
  kStatusAborted = -1,  // set the aborted mark
  kStatusStart = 0,     // job starts: find arrow, text, start time
  kStatusProgress = 1,  // one step: blink the icon, show text (the folder)
  kStatusFindEnd = 3,   // text is the finished summary line of the find
  kStatusJobEnd = 4,
  kStatusText = 5,
};

// Where a find delivers its work. The window implements it with the file
// list and its status line, the command line with a row printer; tests with
// a recorder. Every call comes from the thread that runs the find.
class FindSink {
 public:
  virtual ~FindSink() = default;

  // The list switches to Find mode and drops its rows.
  virtual void startFill() {}
  // One hit: the entry and the folder it was found in (the real path, ending
  // in "/"), plus the same folder as the list shows it (names tidied).
  virtual void addRow(const platform::DirEntry& entry, const QString& folder, const QString& displayFolder) = 0;
  virtual qsizetype rowCount() const = 0;
  // Sort by the current sort column with its direction kept. The walk has
  // already shown "Sorting..." when the rows are more than 3000, so the list
  // should not announce it again.
  virtual void sortRows() {}
  // The status line (ShowJobStatus). Mode 3 comes with the finished summary
  // line, "0.000 sec (n folders scanned, n name hits)" and "  ABORTED".
  virtual void showJobStatus(int mode, const QString& text) { (void)mode, (void)text; }
  // Called at each folder, every few hundred entries and between the blocks
  // of a contained-text read; the window runs its event loop here when some
  // 30 ms have passed, which is how Escape reaches the abort flag.
  virtual void yield() {}
};

}  // namespace find
