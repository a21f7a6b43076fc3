#include "report/ReportOutputBar.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace report {

ReportOutputBar::ReportOutputBar(core::AppSettings::Options* options, QWidget* parent)
    : QWidget(parent), options_(options) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  auto* flags = new QHBoxLayout;
  auto check = [this, flags](const char* name, const QString& caption, core::Flag16 core::AppSettings::Options::*flag) {
    auto* box = new QCheckBox(caption);
    box->setObjectName(QLatin1String(name));
    flags->addWidget(box);
    connect(box, &QCheckBox::toggled, this, [this, flag](bool on) { options_->*flag = on; });
    return box;
  };
  chkRepOFCur = check("chkRepOFCur", tr("File in the c&urrent folder"), &core::AppSettings::Options::repOFCur);
  chkRepOFDate = check("chkRepOFDate", tr("Date-stamped &name"), &core::AppSettings::Options::repOFDate);
  chkRepOFAppend = check("chkRepOFAppend", tr("&Append to the file"), &core::AppSettings::Options::repOFAppend);
  flags->addStretch();
  auto* buttons = new QHBoxLayout;
  auto button = [this, buttons](const char* name, const QString& caption, int target) {
    auto* b = new QPushButton(caption);
    b->setObjectName(QLatin1String(name));
    buttons->addWidget(b);
    connect(b, &QPushButton::clicked, this, [this, target] { Q_EMIT OutputRequested(target); });
    return b;
  };
  cmdRepClip = button("cmdRepClip", tr("To C&lipboard"), kClipboard);
  cmdRepFile = button("cmdRepFile", tr("To &File..."), kFile);
  cmdRepPrint = button("cmdRepPrint", tr("&Print..."), kPrinter);
  buttons->addStretch();
  column->addLayout(flags);
  column->addLayout(buttons);
  Load();
}

void ReportOutputBar::Load() {
  chkRepOFCur->setChecked(options_->repOFCur.on());
  chkRepOFDate->setChecked(options_->repOFDate.on());
  chkRepOFAppend->setChecked(options_->repOFAppend.on());
}

void ReportOutputBar::showEvent(QShowEvent* event) {
  Load();  // the other page may have changed them
  QWidget::showEvent(event);
}

}  // namespace report
