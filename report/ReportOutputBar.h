#pragma once
#include <QWidget>

#include "core/Settings.h"

class QCheckBox;
class QPushButton;

namespace report {

// The output row of a report page: "To C&lipboard", "To &File...",
// "&Print..." and the output file flags (into the current folder, a
// date-stamped name, appending). Both report pages carry one; they share the
// settings and each reloads them when it is shown.
class ReportOutputBar : public QWidget {
  Q_OBJECT
 public:
  enum Target : int { kClipboard = 0, kFile, kPrinter };

  explicit ReportOutputBar(core::AppSettings::Options* options, QWidget* parent = nullptr);
  void Load();

  QCheckBox* chkRepOFCur;
  QCheckBox* chkRepOFDate;
  QCheckBox* chkRepOFAppend;
  QPushButton* cmdRepClip;
  QPushButton* cmdRepFile;
  QPushButton* cmdRepPrint;

 Q_SIGNALS:
  void OutputRequested(int target);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  core::AppSettings::Options* options_;
};

}  // namespace report
