#pragma once
#include <QWidget>

#include "core/Settings.h"

class QCheckBox;
class QRadioButton;

namespace report {

class ReportOutputBar;

// The "Current Folder" page of the "Report" tab: the kind of folder report
// ("T&ree structure only" or "Classic directory &dump"), the subfolders
// ("CopyRecurse"), file versions in the dump and which version (optRepFver:
// the fixed one; optRepSver: the "FileVersion" string), and the output row.
class ReportFolderPage : public QWidget {
  Q_OBJECT
 public:
  ReportFolderPage(core::AppSettings::Report* report, core::AppSettings::Options* options, QWidget* parent = nullptr);
  void Load();

  // The report kind and the versions switch live for the session only.
  int kind() const;
  bool versions() const;

  QRadioButton* optRepTree;
  QRadioButton* optRepDump;
  QCheckBox* chkCopyRecurse;
  QCheckBox* chkRepVer;
  QRadioButton* optRepFver;
  QRadioButton* optRepSver;
  ReportOutputBar* output;

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  core::AppSettings::Report* report_;
  bool loading_ = false;
};

}  // namespace report
