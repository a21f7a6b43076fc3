#include "browser/ListMenuRunner.h"

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>

#include "browser/BrowseFlow.h"
#include "browser/CTabCtrl.h"
#include "browser/InlineRename.h"
#include "browser/MainMenus.h"
#include "browser/StatusLine.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "core/ListModes.h"

namespace browser {

namespace {

QAction* NewAction(QObject* parent, const QString& text, const char* name) {
  auto* a = new QAction(text, parent);
  a->setObjectName(QString::fromLatin1(name));
  return a;
}

}  // namespace

ListMenuRunner::ListMenuRunner(frmMain* window) : QObject(window), window_(window) {
  setObjectName(QStringLiteral("listMenus"));
  // The keys are the list's own (Enter, F2); the menu only names them.
  menOpen = NewAction(this, QStringLiteral("&Open\tEnter"), "menOpen");
  menRename = NewAction(this, QStringLiteral("Rena&me\tF2"), "menRename");
  menProperties = NewAction(this, QStringLiteral("P&roperties"), "menProperties");
  MainMenus* m = window->menus();
  QAction* first = m->menFile->actions().value(0);
  m->menFile->insertActions(first, {menOpen, menRename, menProperties});
  m->menFile->insertSeparator(first);
  connect(m->menFile, &QMenu::aboutToShow, this, &ListMenuRunner::UpdateActions);

  CRellList* list = window->list();
  connect(menOpen, &QAction::triggered, list, &CRellList::openFocus);
  connect(menRename, &QAction::triggered, list, [list] { list->startRename(); });
  connect(menProperties, &QAction::triggered, this, &ListMenuRunner::ShowProperties);
  connect(list, &CRellList::QueryRename, this, &ListMenuRunner::Rename);
  connect(list, &CRellList::QueryPopup, this, [this](int hit, const QPoint& at, bool) { Popup(hit, at); });
}

QAction* ListMenuRunner::Action(const char* name) const {
  return window_->findChild<QAction*>(QString::fromLatin1(name));
}

void ListMenuRunner::UpdateActions() {
  const CRellList* list = window_->list();
  const bool rows = list->model().rowCount() > 0;
  const bool files = rows && window_->mode() != core::kModeDrives;
  menOpen->setEnabled(rows);
  menRename->setEnabled(files && list->model().selectedCount() <= 1);
  menProperties->setEnabled(files);
  // "Copy Info" is the report's, next to "Copy Extended Info" in the File menu.
  if (QAction* info = Action("menCopyInfo")) info->setEnabled(files);
}

void ListMenuRunner::BuildPopup(QMenu* menu, int hit) {
  UpdateActions();
  MainMenus* m = window_->menus();
  auto add = [menu, this](const char* name) {
    if (QAction* a = Action(name)) menu->addAction(a);
  };
  if (hit < 0) {
    // Empty space: what the File menu does for the folder itself.
    add("menPaste");
    menu->addSeparator();
    add("menNewFolder");
    add("menNewTextFile");
    return;
  }
  menu->addAction(menOpen);
  if (window_->mode() == core::kModeDrives) return;
  menu->addAction(menRename);
  menu->addSeparator();
  add("menCut");
  add("menCopy");
  menu->addMenu(m->menCopyTo);
  menu->addMenu(m->menMoveTo);
  menu->addSeparator();
  add("menDelete");
  menu->addSeparator();
  menu->addAction(menProperties);
  add("menCopyInfo");
}

void ListMenuRunner::Popup(int hit, const QPoint& globalPos) {
  QMenu menu(window_);
  menu.setObjectName(QStringLiteral("popList"));
  BuildPopup(&menu, hit);
  menu.exec(globalPos);
}

void ListMenuRunner::Rename(const QString& path, const QString& newName, bool* accept) {
  const QString error = InlineRename(path, newName);
  *accept = error.isEmpty();
  if (*accept) {
    // Panels that show the old path must not keep it.
    window_->flow()->ForgetFile();
    return;
  }
  window_->statusLine()->ShowStatus(error);
  // Not from inside the editor's focus change that may have brought us here.
  QPointer<frmMain> window = window_;
  QTimer::singleShot(0, window_, [window, error] {
    if (window) QMessageBox::warning(window, QStringLiteral("Rename"), error);
  });
}

void ListMenuRunner::ShowProperties() {
  CRellList* list = window_->list();
  const QString path = list->focusPath();
  if (path.isEmpty()) return;
  window_->tabs()->setCurrentIndex(CTabCtrl::kTabGeneral);
  if (!window_->menus()->menShowPanel->isChecked()) window_->menus()->menShowPanel->trigger();
  Q_EMIT window_->InfoRefresh(path, CTabCtrl::kTabGeneral);
}

}  // namespace browser
