#pragma once
#include <QWidget>

#include "core/Settings.h"

class QCheckBox;
class QLineEdit;
class QRadioButton;

namespace report {

class ReportOutputBar;

// The "Current List" page of the "Report" tab: what the list export
// includes (column headers, the find specs, only the selected rows, the
// date), the field separator (optSep 0..4: tab, semicolon, comma, fixed
// width, the user's own in txtSep) and the output row. Every change goes
// straight into the settings record.
class ReportListPage : public QWidget {
  Q_OBJECT
 public:
  ReportListPage(core::AppSettings::Report* report, core::AppSettings::Options* options, QWidget* parent = nullptr);
  void Load();

  QCheckBox* chkIncludeHeaders;
  QCheckBox* chkInclSpecs;
  QCheckBox* chkCopyOnlySel;
  QCheckBox* chkInclDate;
  QRadioButton* optSep[5];
  QLineEdit* txtSep;
  ReportOutputBar* output;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  core::AppSettings::Report* report_;
  bool loading_ = false;
};

}  // namespace report
