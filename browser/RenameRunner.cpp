#include "browser/RenameRunner.h"

#include <QAction>
#include <algorithm>
#include <QDateTime>
#include <QHash>
#include <QMenu>
#include <QMessageBox>

#include "browser/MainMenus.h"
#include "browser/StatusLine.h"
#include "browser/UiYield.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "core/JobFlags.h"
#include "fileops/RenameConfirmDialog.h"
#include "fileops/RenameLog.h"
#include "platform/NativePath.h"

namespace browser {

namespace {

using fileops::RenameItem;
using fileops::RenameSpecial;

QString Refusals(const std::vector<RenameItem>& items) {
  QStringList lines;
  qsizetype more = 0;
  for (const RenameItem& item : items) {
    if (item.refusal.isEmpty()) continue;
    if (lines.size() < 15) lines << platform::DisplayText(item.oldName) + QStringLiteral(": ") + item.refusal;
    else ++more;
  }
  if (more) lines << QStringLiteral("... and %1 more").arg(more);
  return lines.join(u'\n');
}

}  // namespace

RenameRunner::RenameRunner(frmMain* window) : QObject(window), window_(window) {
  MainMenus* m = window->menus();
  const QList<QAction*> actions = m->menRenSpecial->actions();
  for (int i = 0; i < actions.size(); ++i) {
    actions[i]->setEnabled(true);
    connect(actions[i], &QAction::triggered, this, [this, i] { Run(i); });
  }
  menRenUndo_ = new QAction(QStringLiteral("&Undo Rename Special"), window);
  menRenUndo_->setObjectName(QStringLiteral("menRenUndo"));
  menRenUndo_->setEnabled(false);
  m->menFile->insertAction(m->menCopyTo->menuAction(), menRenUndo_);
  connect(menRenUndo_, &QAction::triggered, this, &RenameRunner::Undo);
}

void RenameRunner::Run(int index) {
  if (core::JobFlags::Busy()) return;
  const QStringList selection = window_->list()->selectedPaths();
  if (selection.isEmpty()) return;
  const QString caption = window_->menus()->menRenSpecial->actions().value(index)->text();
  std::vector<RenameItem> items = RenameSpecial::Plan(fileops::RenameHow(index), selection);
  if (items.empty()) {
    window_->statusLine()->ShowStatus(QStringLiteral("Nothing to do"));
    return;
  }
  if (!fileops::RenameConfirmDialog::Confirm(caption, items, window_)) return;
  Execute(&items, selection, QStringLiteral("Rename Special"));
  last_ = std::move(items);
  menRenUndo_->setEnabled(std::any_of(last_.begin(), last_.end(), [](const RenameItem& i) { return i.done; }));
}

void RenameRunner::Undo() {
  if (core::JobFlags::Busy() || last_.empty()) return;
  std::vector<RenameItem> back = RenameSpecial::Reverse(last_);
  QStringList selection;
  for (auto it = back.rbegin(); it != back.rend(); ++it) selection << it->oldPath();
  Execute(&back, selection, QStringLiteral("Undo Rename Special"));
  last_.clear();
  menRenUndo_->setEnabled(false);
}

void RenameRunner::Execute(std::vector<RenameItem>* items, QStringList selection, const QString& title) {
  fileops::RenameResult result;
  {
    core::JobFlags::ClearAbort();
    core::JobFlags::SetBusy(true);
    fileops::RenameLog log(fileops::RenameLog::PathBeside(window_->settingsFile()), QDateTime::currentDateTime());
    UiYield yield;
    result = RenameSpecial::Run(items, &log, [&yield] { yield(); }, &core::JobFlags::AbortFlag());
    core::JobFlags::SetBusy(false);
  }
  QHash<QString, QString> moved;
  for (const RenameItem& item : *items)
    if (item.done) moved.insert(item.oldPath(), item.newPath());
  for (QString& path : selection) path = moved.value(path, path);

  // One fill shows every new name in its sorted place.
  window_->menus()->menRefresh->trigger();
  window_->list()->selectPaths(selection);

  QString status = QStringLiteral("%1 renamed, %2 refused.").arg(result.renamed).arg(result.refused);
  if (result.stopped) status += QStringLiteral(" Stopped.");
  if (!result.logError.isEmpty()) status += QStringLiteral(" The undo log could not be written: ") + result.logError;
  window_->statusLine()->ShowStatus(status);
  if (result.refused) QMessageBox::warning(window_, title, QStringLiteral("These were not renamed:\n\n") + Refusals(*items));
}

}  // namespace browser
