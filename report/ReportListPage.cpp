#include "report/ReportListPage.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QRadioButton>

#include "report/ReportOutputBar.h"

namespace report {

ReportListPage::ReportListPage(core::AppSettings::Report* report, core::AppSettings::Options* options, QWidget* parent)
    : QWidget(parent), report_(report) {
  setObjectName(QStringLiteral("pageRepList"));
  auto* grid = new QGridLayout(this);
  auto check = [this, grid](const char* name, const QString& caption, bool core::AppSettings::Report::*field, int row) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(QLatin1String(name));
    grid->addWidget(box, row, 0);
    connect(box, &QCheckBox::toggled, this, [this, field](bool on) {
      if (!loading_) report_->*field = on;
    });
    return box;
  };
  chkIncludeHeaders = check("chkIncludeHeaders", tr("Include column &headers"), &core::AppSettings::Report::includeHeaders, 0);
  chkInclSpecs = check("chkInclSpecs", tr("Include find sp&ecs"), &core::AppSettings::Report::inclSpecs, 1);
  chkCopyOnlySel = check("chkCopyOnlySel", tr("&Selected rows only"), &core::AppSettings::Report::copyOnlySel, 2);
  chkInclDate = check("chkInclDate", tr("Include the &date"), &core::AppSettings::Report::inclDate, 3);

  auto* group = new QGroupBox(tr("Field separator"));
  auto* seps = new QGridLayout(group);
  static const char* const kCaptions[5] = {QT_TR_NOOP("&Tab"), QT_TR_NOOP("Se&micolon ;"), QT_TR_NOOP("C&omma ,"),
                                           QT_TR_NOOP("F&ixed width"), QT_TR_NOOP("Othe&r:")};
  for (int i = 0; i < 5; ++i) {
    optSep[i] = new QRadioButton(tr(kCaptions[i]));
    optSep[i]->setObjectName(QStringLiteral("optSep%1").arg(i));
    seps->addWidget(optSep[i], i % 3, i / 3 * 2);
    connect(optSep[i], &QRadioButton::toggled, this, [this, i](bool on) {
      if (on && !loading_) report_->optSep = qint16(i);
    });
  }
  txtSep = new QLineEdit;
  txtSep->setObjectName(QStringLiteral("txtSep"));
  txtSep->setMaxLength(8);
  txtSep->setMaximumWidth(80);
  seps->addWidget(txtSep, 1, 3);
  connect(txtSep, &QLineEdit::textEdited, this, [this](const QString& text) {
    report_->sep = text;
    optSep[4]->setChecked(true);
  });
  grid->addWidget(group, 0, 1, 4, 1);
  output = new ReportOutputBar(options);
  grid->addWidget(output, 4, 0, 1, 2);
  grid->setColumnStretch(2, 1);
  grid->setRowStretch(5, 1);
  Load();
}

void ReportListPage::Load() {
  loading_ = true;
  chkIncludeHeaders->setChecked(report_->includeHeaders);
  chkInclSpecs->setChecked(report_->inclSpecs);
  chkCopyOnlySel->setChecked(report_->copyOnlySel);
  chkInclDate->setChecked(report_->inclDate);
  optSep[qBound(0, int(report_->optSep), 4)]->setChecked(true);
  txtSep->setText(report_->sep);
  loading_ = false;
}

void ReportListPage::showEvent(QShowEvent* event) {
  Load();
  QWidget::showEvent(event);
}

}  // namespace report
