#include "fileops/FileOpDialog.h"

#include <QCheckBox>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/JobFlags.h"
#include "platform/NativePath.h"

namespace fileops {

namespace {

QString Bytes(qint64 n) {
  return QLocale().formattedDataSize(n, 1, QLocale::DataSizeTraditionalFormat);
}

}  // namespace

FileOpDialog::FileOpDialog(const QString& title, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("frmFileOp"));
  setWindowTitle(title);
  setModal(true);
  auto* layout = new QVBoxLayout(this);
  lblFile_ = new QLabel(this);
  lblFile_->setObjectName(QStringLiteral("lblFileOpFile"));
  lblFile_->setMinimumWidth(420);
  lblCounts_ = new QLabel(this);
  lblCounts_->setObjectName(QStringLiteral("lblFileOpCounts"));
  lblSpeed_ = new QLabel(this);
  lblSpeed_->setObjectName(QStringLiteral("lblFileOpSpeed"));
  bar_ = new QProgressBar(this);
  bar_->setRange(0, 1000);
  auto* cancel = new QPushButton(QStringLiteral("Cancel"), this);
  cancel->setObjectName(QStringLiteral("cmdFileOpCancel"));
  connect(cancel, &QPushButton::clicked, this, &FileOpDialog::reject);
  for (QWidget* w : {static_cast<QWidget*>(lblFile_), static_cast<QWidget*>(lblCounts_),
                     static_cast<QWidget*>(lblSpeed_), static_cast<QWidget*>(bar_)})
    layout->addWidget(w);
  layout->addWidget(cancel, 0, Qt::AlignRight);
  clock_.start();
}

void FileOpDialog::reject() { core::JobFlags::RequestStop(); }

void FileOpDialog::progress(const OpProgress& p) {
  const qint64 ms = clock_.elapsed();
  if (ms < 500) return;
  if (!isVisible()) show();
  lblFile_->setText(platform::DisplayText(p.current));
  QString counts = QStringLiteral("%1").arg(p.filesDone);
  if (p.filesTotal >= 0) counts += QStringLiteral(" of %1").arg(p.filesTotal);
  counts += QStringLiteral(" files, ") + Bytes(p.bytesDone);
  if (p.bytesTotal >= 0) counts += QStringLiteral(" of ") + Bytes(p.bytesTotal);
  lblCounts_->setText(counts);
  const double speed = p.bytesDone * 1000.0 / double(ms);
  QString rate = Bytes(qint64(speed)) + QStringLiteral("/s");
  if (p.bytesTotal > 0 && speed > 0) {
    const qint64 left = qint64((p.bytesTotal - p.bytesDone) / speed);
    rate += QStringLiteral(", %1:%2 left").arg(left / 60).arg(left % 60, 2, 10, QLatin1Char('0'));
    bar_->setValue(int(p.bytesDone * 1000 / p.bytesTotal));
  } else if (p.filesTotal > 0) {
    bar_->setValue(int(p.filesDone * 1000 / p.filesTotal));
  }
  lblSpeed_->setText(rate);
}

ConflictAnswer FileOpDialog::askConflict(const QString& source, const QString& target) {
  if (haveStanding_) return {standing_, true};
  QMessageBox box(QMessageBox::Question, windowTitle(),
                  QStringLiteral("\"%1\" already exists.\n\nReplace it with\n%2?")
                      .arg(platform::DisplayText(target), platform::DisplayText(source)),
                  QMessageBox::NoButton, parentWidget());
  box.setObjectName(QStringLiteral("frmConflict"));
  QPushButton* overwrite = box.addButton(QStringLiteral("&Overwrite"), QMessageBox::AcceptRole);
  QPushButton* skip = box.addButton(QStringLiteral("&Skip"), QMessageBox::RejectRole);
  QPushButton* both = box.addButton(QStringLiteral("&Keep Both"), QMessageBox::AcceptRole);
  QPushButton* stop = box.addButton(QStringLiteral("Sto&p"), QMessageBox::DestructiveRole);
  box.setDefaultButton(skip);  // Enter never overwrites
  box.setEscapeButton(stop);
  auto* all = new QCheckBox(QStringLiteral("&Apply to all"), &box);
  box.setCheckBox(all);
  box.exec();
  ConflictAnswer answer;
  answer.applyToAll = all->isChecked();
  if (box.clickedButton() == overwrite) answer.choice = ConflictChoice::kOverwrite;
  else if (box.clickedButton() == both) answer.choice = ConflictChoice::kKeepBoth;
  else if (box.clickedButton() == stop) answer.choice = ConflictChoice::kStop;
  else answer.choice = ConflictChoice::kSkip;
  (void)overwrite;
  return answer;
}

void FileOpDialog::item(ItemOutcome outcome, const QString& source, const QString&, const QString& detail) {
  if (outcome == ItemOutcome::kFailed) failures_ << platform::DisplayText(source) + QStringLiteral(": ") + detail;
}

}  // namespace fileops
