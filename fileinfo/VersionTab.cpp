#include "fileinfo/VersionTab.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace fileinfo {

VersionTab::VersionTab(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("pageVersion"));
  auto* grid = new QGridLayout(this);
  lblSelFile = new QLabel;
  lblSelFile->setObjectName(QStringLiteral("lblSelFile"));
  lblSelFile->setTextInteractionFlags(Qt::TextSelectableByMouse);
  grid->addWidget(lblSelFile, 0, 0, 1, 4);
  for (int i = 0; i < VersionDisplay::kLabelCount; ++i) {
    const int number = VersionDisplay::kFirstLabel + i;
    lblCaption[i] = new QLabel(VersionDisplay::Caption(number));
    lblCaption[i]->setObjectName(QStringLiteral("lblCaption%1").arg(number));
    lblValue[i] = new QLabel;
    lblValue[i]->setObjectName(QStringLiteral("lblValue%1").arg(number));
    lblValue[i]->setMinimumWidth(120);
    lblValue[i]->installEventFilter(this);
    grid->addWidget(lblCaption[i], 1 + i, 0);
    grid->addWidget(lblValue[i], 1 + i, 1);
  }
  lstInfo = new QListWidget;
  lstInfo->setObjectName(QStringLiteral("lstInfo"));
  lstInfo->setAutoFillBackground(true);
  txtInfoVal = new QLineEdit;
  txtInfoVal->setObjectName(QStringLiteral("txtInfoVal"));
  txtInfoVal->setReadOnly(true);
  txtInfoVal->installEventFilter(this);
  grid->addWidget(lstInfo, 1, 2, 6, 2);
  grid->addWidget(txtInfoVal, 7, 2, 1, 2);
  static const char* const kCaptions[2] = {QT_TR_NOOP("&Copy Info"), QT_TR_NOOP("Copy E&xtended Info")};
  for (int i = 0; i < 2; ++i) {
    cmdCopyVer[i] = new QPushButton(tr(kCaptions[i]));
    cmdCopyVer[i]->setObjectName(QStringLiteral("cmdCopyVer%1").arg(i));
    grid->addWidget(cmdCopyVer[i], 8, 2 + i);
    connect(cmdCopyVer[i], &QPushButton::clicked, this, [this, i] {
      if (!file_.isEmpty()) Q_EMIT CopyRequested(i);
    });
  }
  grid->setColumnStretch(1, 2);  // long flag texts need the room
  grid->setColumnStretch(2, 1);
  grid->setColumnStretch(3, 1);

  // A pick by mouse or key is remembered; the selection made while filling is not.
  connect(lstInfo, &QListWidget::currentRowChanged, this, [this] { lstInfo_Click(); });
  connect(lstInfo, &QListWidget::itemClicked, this, [this] { lstInfo_Click(); });  // also the item already current
  connect(lstInfo, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
    CopyText(item->text() + QStringLiteral(": ") + display_.values.value(item->data(Qt::UserRole).toInt()));
  });
  Clear();
}

void VersionTab::CopyText(const QString& text) {
  QClipboard* clipboard = QApplication::clipboard();
  clipboard->clear();
  clipboard->setText(text);
}

bool VersionTab::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::MouseButtonDblClick) {
    if (watched == txtInfoVal) {
      CopyText(txtInfoVal->text());
      return true;
    }
    if (auto* label = qobject_cast<QLabel*>(watched)) {
      CopyText(label->text());
      return true;
    }
  }
  return QWidget::eventFilter(watched, event);
}

void VersionTab::lstInfo_Click() {
  QListWidgetItem* item = lstInfo->currentItem();
  if (!item) return;
  txtInfoVal->setText(display_.values.value(item->data(Qt::UserRole).toInt()));
  if (!filling_) remembered_ = item->text();
}

void VersionTab::SetListGreyed(bool greyed) {
  QPalette p = lstInfo->palette();
  p.setColor(QPalette::Base, palette().color(greyed ? QPalette::Button : QPalette::Base));
  lstInfo->setPalette(p);
}

void VersionTab::Clear() {
  filling_ = true;
  lstInfo->clear();
  txtInfoVal->clear();
  filling_ = false;
  for (QLabel* label : lblValue) {
    label->clear();
    label->setToolTip(QString());
  }
  display_ = VersionDisplay();
  file_.clear();
  lblSelFile->clear();
  SetListGreyed(true);
}

void VersionTab::ShowFile(const QString& path, bool useFixed) {
  ShowDisplay(VersionDisplay::Read(path), path, useFixed);
}

void VersionTab::ShowDisplay(const VersionDisplay& display, const QString& path, bool useFixed) {
  filling_ = true;
  lstInfo->clear();
  txtInfoVal->clear();
  display_ = display;
  file_ = path;
  for (int i = 0; i < VersionDisplay::kLabelCount; ++i) {
    lblValue[i]->setText(display.labels[i]);
    lblValue[i]->setToolTip(display.labels[i]);  // the whole text where the label cuts it
  }
  const QString name = QFileInfo(path).fileName();
  if (!display.hasInfo) {
    SetListGreyed(true);
    lblSelFile->setText(name);
    filling_ = false;
    return;
  }
  QListWidgetItem* chosen = nullptr;
  for (const VersionDisplay::Item& entry : display.items) {
    auto* item = new QListWidgetItem(entry.text, lstInfo);
    item->setData(Qt::UserRole, entry.index);
    if (!chosen && !remembered_.isEmpty() && entry.text == remembered_) chosen = item;
  }
  if (!chosen && lstInfo->count() > 0) chosen = lstInfo->item(0);  // the remembered name stays
  if (chosen) lstInfo->setCurrentItem(chosen);
  filling_ = false;
  lblSelFile->setText(name + QStringLiteral(" [ver ") + display.version(useFixed) + u']');
  SetListGreyed(false);
}

}  // namespace fileinfo
