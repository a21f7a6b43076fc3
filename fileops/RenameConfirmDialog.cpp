#include "fileops/RenameConfirmDialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/NativePath.h"

namespace fileops {

namespace {

// One entry a line: control characters in a name show as their pictures
// (a tab as U+2409), so that no name spreads over two lines.
QString Shown(const QString& name) {
  QString out = platform::DisplayText(name);
  for (QChar& c : out) {
    if (c.unicode() < 0x20) c = QChar(char16_t(0x2400 + c.unicode()));
    else if (c.unicode() == 0x7F) c = QChar(char16_t(0x2421));
  }
  return out;
}

}  // namespace

RenameConfirmDialog::RenameConfirmDialog(const QString& caption, const std::vector<RenameItem>& items, QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("frmRenameConfirm"));
  QString title = caption;
  setWindowTitle(QStringLiteral("Rename Special: ") + title.remove(u'&'));
  QStringList lines, refused;
  // Names only when the whole batch is in one folder, else full paths.
  bool oneFolder = true;
  for (const RenameItem& item : items) oneFolder = oneFolder && item.folder == items.front().folder;
  for (const RenameItem& item : items) {
    const QString from = Shown(oneFolder ? item.oldName : item.oldPath());
    if (item.refusal.isEmpty()) lines << from + QStringLiteral(" => ") + Shown(item.newName);
    else refused << from + QStringLiteral(": ") + item.refusal;
  }
  QString head = lines.size() == 1 ? QStringLiteral("1 name will change") : QStringLiteral("%1 names will change").arg(lines.size());
  if (oneFolder && !items.empty()) head += QStringLiteral(" in ") + Shown(items.front().folder);
  head += u':';
  if (!refused.isEmpty()) {
    lines << QString() << QStringLiteral("Not renamed:") << refused;
  }
  lblRenameCount_ = new QLabel(head, this);
  lblRenameCount_->setObjectName(QStringLiteral("lblRenameCount"));
  lblRenameCount_->setWordWrap(true);
  txtRenameList_ = new QPlainTextEdit(this);
  txtRenameList_->setObjectName(QStringLiteral("txtRenameList"));
  txtRenameList_->setReadOnly(true);
  txtRenameList_->setLineWrapMode(QPlainTextEdit::NoWrap);
  txtRenameList_->setPlainText(lines.join(u'\n'));
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(QStringLiteral("&Rename"), QDialogButtonBox::AcceptRole);
  ok->setObjectName(QStringLiteral("cmdRenameOk"));
  ok->setEnabled(lines.size() > refused.size());
  ok->setDefault(true);
  buttons->addButton(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdRenameCancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblRenameCount_);
  layout->addWidget(txtRenameList_);
  layout->addWidget(buttons);
  resize(560, 380);
}

QString RenameConfirmDialog::listText() const { return txtRenameList_->toPlainText(); }

bool RenameConfirmDialog::Confirm(const QString& caption, const std::vector<RenameItem>& items, QWidget* parent) {
  RenameConfirmDialog dialog(caption, items, parent);
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace fileops
