#include "report/ReportFolderPage.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

#include "report/FolderReport.h"
#include "report/ReportOutputBar.h"

namespace report {

ReportFolderPage::ReportFolderPage(core::AppSettings::Report* report, core::AppSettings::Options* options,
                                   QWidget* parent)
    : QWidget(parent), report_(report) {
  setObjectName(QStringLiteral("pageRepFolder"));
  auto* grid = new QGridLayout(this);
  auto* kinds = new QGroupBox(tr("Report"));
  auto* kindColumn = new QVBoxLayout(kinds);
  optRepTree = new QRadioButton(tr("T&ree structure only"));
  optRepTree->setObjectName(QStringLiteral("optRepTree"));
  optRepDump = new QRadioButton(tr("Classic directory &dump"));
  optRepDump->setObjectName(QStringLiteral("optRepDump"));
  kindColumn->addWidget(optRepTree);
  kindColumn->addWidget(optRepDump);
  auto* kindGroup = new QButtonGroup(this);
  kindGroup->addButton(optRepTree);
  kindGroup->addButton(optRepDump);
  optRepTree->setChecked(true);
  grid->addWidget(kinds, 0, 0, 2, 1);

  chkCopyRecurse = new QCheckBox(tr("Include &subfolders"));
  chkCopyRecurse->setObjectName(QStringLiteral("chkCopyRecurse"));
  connect(chkCopyRecurse, &QCheckBox::toggled, this, [this](bool on) {
    if (!loading_) report_->copyRecurse = on;
  });
  grid->addWidget(chkCopyRecurse, 2, 0);

  auto* versions = new QGroupBox(tr("File versions"));
  auto* versionColumn = new QVBoxLayout(versions);
  chkRepVer = new QCheckBox(tr("&With file versions"));
  chkRepVer->setObjectName(QStringLiteral("chkRepVer"));
  optRepFver = new QRadioButton(tr("Fi&xed version"));
  optRepFver->setObjectName(QStringLiteral("optRepFver"));
  optRepSver = new QRadioButton(tr("Version s&tring"));
  optRepSver->setObjectName(QStringLiteral("optRepSver"));
  versionColumn->addWidget(chkRepVer);
  versionColumn->addWidget(optRepFver);
  versionColumn->addWidget(optRepSver);
  auto* versionGroup = new QButtonGroup(this);
  versionGroup->addButton(optRepFver);
  versionGroup->addButton(optRepSver);
  connect(optRepFver, &QRadioButton::toggled, this, [this](bool on) {
    if (!loading_) report_->optRepFver = on;
  });
  // Versions belong to the dump only.
  auto enable = [this] { chkRepVer->setEnabled(optRepDump->isChecked()); };
  connect(optRepDump, &QRadioButton::toggled, this, enable);
  enable();
  grid->addWidget(versions, 0, 1, 3, 1);

  output = new ReportOutputBar(options);
  grid->addWidget(output, 3, 0, 1, 2);
  grid->setColumnStretch(2, 1);
  grid->setRowStretch(4, 1);
  Load();
}

int ReportFolderPage::kind() const {
  return optRepDump->isChecked() ? FolderReportOptions::kDump : FolderReportOptions::kTree;
}

bool ReportFolderPage::versions() const { return optRepDump->isChecked() && chkRepVer->isChecked(); }

void ReportFolderPage::Load() {
  loading_ = true;
  chkCopyRecurse->setChecked(report_->copyRecurse);
  (report_->optRepFver ? optRepFver : optRepSver)->setChecked(true);
  loading_ = false;
}

void ReportFolderPage::showEvent(QShowEvent* event) {
  Load();
  QWidget::showEvent(event);
}

}  // namespace report
