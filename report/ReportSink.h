#pragma once
#include <QString>
#include <QStringView>

namespace report {

// How a report job ended.
enum class ReportResult : int {
  kDone = 0,
  kAborted,      // Escape: the output ends in "  ABORTED"
  kWriteFailed,  // the sink refused a write (disk full, closed pipe)
  kUnreadable,   // the folder to report could not be read; nothing written
};

// Where a report goes, piece by piece: a file, the clipboard's text, the
// printer's document, standard output. Reports stream into it, so a sink
// that writes as it goes keeps memory flat however large the report.
class ReportSink {
 public:
  virtual ~ReportSink() = default;
  // Appends text; false once the output has failed (the job stops).
  virtual bool write(QStringView text) = 0;
  // The folder a long report is in, for the status line.
  virtual void progress(const QString& folder) { (void)folder; }
  // Called between entries; the window runs its event loop here now and then,
  // which is how Escape reaches the abort flag.
  virtual void yield() {}
};

}  // namespace report
