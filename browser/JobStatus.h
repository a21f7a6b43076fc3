#pragma once
#include <QString>
#include <QtGlobal>

namespace browser {

// The bookkeeping behind the status line's ShowJobStatus: the aborted mark
// and the start time of the running job, and the summary lines built from
// them. Times are milliseconds of the monotonic clock.
class JobStatus {
 public:
  void Start(qint64 nowMs);  // clears the aborted mark, takes the start time
  void MarkAborted() { aborted_ = true; }
  bool aborted() const { return aborted_; }
  double ElapsedSeconds(qint64 nowMs) const;

  // "1.234 sec (1,024 folders scanned, 7 name hits)" + "  ABORTED" when marked.
  QString FindSummary(qint64 nowMs, double foldersScanned, double nameHits) const;
  // "1.234 sec" + "  ABORTED" when marked.
  QString ShortSummary(qint64 nowMs) const;

 private:
  QString AbortedSuffix() const;

  double startMs_ = 0;
  bool aborted_ = false;
};

}  // namespace browser
