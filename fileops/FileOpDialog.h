#pragma once
#include <QDialog>
#include <QElapsedTimer>

#include "fileops/FileOpSink.h"

class QLabel;
class QProgressBar;

namespace fileops {

// The window side of a file job: a progress dialog that appears only when
// the job runs longer than half a second (current file, files and bytes
// done, speed, time left, Cancel = Escape), and the conflict question.
class FileOpDialog : public QDialog, public FileOpSink {
  Q_OBJECT
 public:
  FileOpDialog(const QString& title, QWidget* parent);

  void progress(const OpProgress& p) override;
  ConflictAnswer askConflict(const QString& source, const QString& target) override;
  void item(ItemOutcome outcome, const QString& source, const QString& target, const QString& detail) override;

  // The failures, one line each, for the summary after the job.
  const QStringList& failures() const { return failures_; }
  // Answers the conflict question without asking (for tests and drops that chose already).
  void SetStandingAnswer(ConflictChoice choice) { standing_ = choice, haveStanding_ = true; }

 protected:
  void reject() override;  // Escape and Cancel stop the job; the dialog closes when it ends

 private:
  QLabel* lblFile_;
  QLabel* lblCounts_;
  QLabel* lblSpeed_;
  QProgressBar* bar_;
  QElapsedTimer clock_;
  QStringList failures_;
  bool haveStanding_ = false;
  ConflictChoice standing_ = ConflictChoice::kSkip;
};

}  // namespace fileops
