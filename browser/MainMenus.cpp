#include "browser/MainMenus.h"

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

#include "core/SizeFormat.h"
#include "platform/NativePath.h"

namespace browser {

namespace {
// Menu entries show folder paths: "&" would make a mnemonic of the next letter.
QString MenuText(const QString& path) {
  QString t = platform::DisplayText(path);
  t.replace(u'&', QStringLiteral("&&"));
  return t;
}
}  // namespace

QMenu* MainMenus::AddMenu(QMenu* parent, const QString& title, const char* name) {
  QMenu* m = parent ? parent->addMenu(title) : bar_->addMenu(title);
  m->setObjectName(QString::fromLatin1(name));
  m->menuAction()->setObjectName(QString::fromLatin1(name) + QStringLiteral("Item"));
  return m;
}

QAction* MainMenus::AddAction(QMenu* menu, const QString& text, const char* name) {
  QAction* a = menu->addAction(text);
  a->setObjectName(QString::fromLatin1(name));
  return a;
}

QList<QAction*> MainMenus::AddChoices(QMenu* menu, const QString& captions, const QString& namePrefix,
                                      QActionGroup* group) {
  QList<QAction*> out;
  const QStringList list = captions.split(u',');
  for (qsizetype i = 0; i < list.size(); ++i) {
    QAction* a = menu->addAction(list[i]);
    a->setObjectName(namePrefix + QString::number(i));
    a->setCheckable(true);
    if (group) group->addAction(a);
    out.append(a);
  }
  return out;
}

void MainMenus::ClearActions(QMenu* menu, QList<QAction*>& actions) {
  for (QAction* a : actions) {
    menu->removeAction(a);
    a->deleteLater();
  }
  actions.clear();
}

MainMenus::MainMenus(QMenuBar* bar, QObject* parent) : QObject(parent), bar_(bar) {
  setObjectName(QStringLiteral("menus"));

  // ---- File ----
  menFile = AddMenu(nullptr, QStringLiteral("&File"), "menFile");
  menRenSpecial = AddMenu(menFile, QStringLiteral("R&ename Special"), "menRenSpecial");
  for (QAction* a : AddChoices(menRenSpecial, QString::fromLatin1(kRenameCaptions), QStringLiteral("menRenSpecial"), nullptr)) {
    a->setCheckable(false);
    a->setEnabled(false);  // until the renamer is connected (RenameRunner)
  }
  menCopyTo = AddMenu(menFile, QStringLiteral("Copy To"), "menCopyTo");
  menMoveTo = AddMenu(menFile, QStringLiteral("Move To"), "menMoveTo");
  menFile->addSeparator()->setObjectName(QStringLiteral("sepFile"));
  menExit = AddAction(menFile, QStringLiteral("E&xit"), "menExit");
  menExit->setShortcut(QKeySequence(QStringLiteral("Alt+F4")));

  // ---- View ----
  menView = AddMenu(nullptr, QStringLiteral("&View"), "menView");
  menSizeFormat = AddMenu(menView, QStringLiteral("&Size Format"), "menSizeFormat");
  auto* sizeGroup = new QActionGroup(this);
  menSize = AddChoices(menSizeFormat, QString::fromLatin1(core::kSizeFormatCaptions), QStringLiteral("menSize"), sizeGroup);
  for (qsizetype i = 0; i < menSize.size(); ++i)
    connect(menSize[i], &QAction::triggered, this, [this, i] { Q_EMIT SizeFormatChosen(int(i)); });

  menDateFormat = AddMenu(menView, QStringLiteral("&Date Format"), "menDateFormat");
  auto* dateGroup = new QActionGroup(this);
  menDate = AddChoices(menDateFormat, QString::fromLatin1(kDateCaptions), QStringLiteral("menDate"), dateGroup);
  menDateFormat->addSeparator()->setObjectName(QStringLiteral("sepDateTime"));
  auto* timeGroup = new QActionGroup(this);
  menTime = AddChoices(menDateFormat, QString::fromLatin1(kTimeCaptions), QStringLiteral("menTime"), timeGroup);
  for (qsizetype i = 0; i < menDate.size(); ++i)
    connect(menDate[i], &QAction::triggered, this, [this, i] { Q_EMIT DateStyleChosen(int(i)); });
  for (qsizetype i = 0; i < menTime.size(); ++i)
    connect(menTime[i], &QAction::triggered, this, [this, i] { Q_EMIT TimeStyleChosen(int(i)); });

  menAge = AddAction(menView, QStringLiteral("&Age"), "menAge");
  menAge->setCheckable(true);
  menView->addSeparator()->setObjectName(QStringLiteral("sepView1"));

  menStyleTree = AddMenu(menView, QStringLiteral("Style Tr&ee"), "menStyleTree");
  menTreeStyle = AddChoices(menStyleTree, QString::fromLatin1(kTreeStyleCaptions), QStringLiteral("menTreeStyle"), nullptr);
  for (qsizetype i = 0; i < menTreeStyle.size(); ++i)
    connect(menTreeStyle[i], &QAction::triggered, this, [this, i](bool on) { Q_EMIT TreeStyleToggled(1 << i, on); });
  menStyleList = AddMenu(menView, QStringLiteral("Style &List"), "menStyleList");
  menListStyle = AddChoices(menStyleList, QString::fromLatin1(kListStyleCaptions), QStringLiteral("menListStyle"), nullptr);
  for (qsizetype i = 0; i < menListStyle.size(); ++i)
    connect(menListStyle[i], &QAction::triggered, this, [this, i](bool on) { Q_EMIT ListStyleToggled(1 << i, on); });

  menShowPanel = AddAction(menView, QStringLiteral("Show &Panel"), "menShowPanel");
  menShowPanel->setCheckable(true);
  menAltColor = AddAction(menView, QStringLiteral("Alternate &Color for Find Results"), "menAltColor");
  menAltColor->setCheckable(true);
  menSortFoldersApart = AddAction(menView, QStringLiteral("Sort &Folders Apart"), "menSortFoldersApart");
  menSortFoldersApart->setCheckable(true);
  menRelPath = AddAction(menView, QStringLiteral("Relative Pat&hs in Find Results"), "menRelPath");
  menRelPath->setCheckable(true);
  menView->addSeparator()->setObjectName(QStringLiteral("sepView2"));
  menRefresh = AddAction(menView, QStringLiteral("&Refresh"), "menRefresh");
  menRefresh->setShortcut(QKeySequence(Qt::Key_F5));
  menResetDefaults = AddAction(menView, QStringLiteral("&Reset to Defaults..."), "menResetDefaults");

  // ---- Sort By ----
  menSort = AddMenu(nullptr, QStringLiteral("&Sort By"), "menSort");
  sepSort_ = menSort->addSeparator();
  sepSort_->setObjectName(QStringLiteral("sepSort"));
  menAdjustWidths = AddAction(menSort, QStringLiteral("Adjust All Widths"), "menAdjustWidths");
  menDefaultOrder = AddAction(menSort, QStringLiteral("Default Order"), "menDefaultOrder");
  menOriginalOrder = AddAction(menSort, QStringLiteral("Original Order"), "menOriginalOrder");

  // ---- Tools ----
  menTools = AddMenu(nullptr, QStringLiteral("&Tools"), "menTools");
  menAutoFind = AddAction(menTools, QStringLiteral("&Automatic File Find when Browsing"), "menAutoFind");
  menAutoFind->setCheckable(true);

  // ---- Favorites ----
  menFavorites = AddMenu(nullptr, QStringLiteral("F&avorites"), "menFavorites");
  menFavAdd = AddAction(menFavorites, QStringLiteral("&Add Current Folder"), "menFavAdd");
  menFavRemove = AddAction(menFavorites, QStringLiteral("&Remove Current Folder"), "menFavRemove");
  sepFavorites_ = menFavorites->addSeparator();
  sepFavorites_->setObjectName(QStringLiteral("sepFavorites"));

  // ---- History ----
  menHistory = AddMenu(nullptr, QStringLiteral("&History"), "menHistory");
  menHistBack = AddAction(menHistory, QStringLiteral("&Back"), "menHistBack");
  menHistBack->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Left));
  menHistForward = AddAction(menHistory, QStringLiteral("&Forward"), "menHistForward");
  menHistForward->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Right));
  sepHistory_ = menHistory->addSeparator();
  sepHistory_->setObjectName(QStringLiteral("sepHistory"));

  // ---- Help ----
  menHelp = AddMenu(nullptr, QStringLiteral("&Help"), "menHelp");
  menAbout = AddAction(menHelp, QStringLiteral("&About Quorvane..."), "menAbout");

  SetCopyMoveTargets({}, {});
  SetFavorites({});
  SetHistory({}, -1, false);
}

void MainMenus::ShowFormats(int sizeFormat, int dateStyle, int timeStyle, bool age) {
  for (qsizetype i = 0; i < menSize.size(); ++i) menSize[i]->setChecked(i == sizeFormat);
  for (qsizetype i = 0; i < menDate.size(); ++i) menDate[i]->setChecked(i == dateStyle);
  for (qsizetype i = 0; i < menTime.size(); ++i) menTime[i]->setChecked(i == timeStyle);
  menAge->setChecked(age);
}

void MainMenus::ShowTreeStyles(int bits) {
  for (qsizetype i = 0; i < menTreeStyle.size(); ++i) menTreeStyle[i]->setChecked(bits & (1 << i));
}

void MainMenus::ShowListStyles(int bits) {
  for (qsizetype i = 0; i < menListStyle.size(); ++i) menListStyle[i]->setChecked(bits & (1 << i));
}

void MainMenus::SetSortColumns(const QStringList& captions, int sortColumn) {
  ClearActions(menSort, menSortCol);
  auto* group = new QActionGroup(menSort);
  for (qsizetype i = 0; i < captions.size(); ++i) {
    auto* a = new QAction(captions[i], menSort);
    a->setObjectName(QStringLiteral("menSortCol") + QString::number(i));
    a->setCheckable(true);
    a->setChecked(i == sortColumn);
    group->addAction(a);
    menSort->insertAction(sepSort_, a);
    connect(a, &QAction::triggered, this, [this, i] { Q_EMIT SortColumnChosen(int(i)); });
    menSortCol.append(a);
  }
}

void MainMenus::SetFavorites(const QStringList& folders) {
  ClearActions(menFavorites, menFav);
  for (qsizetype i = 0; i < folders.size(); ++i) {
    if (folders[i].trimmed().isEmpty()) continue;
    auto* a = new QAction(MenuText(folders[i]), menFavorites);
    a->setObjectName(QStringLiteral("menFav") + QString::number(i));
    const QString folder = folders[i];
    connect(a, &QAction::triggered, this, [this, folder] { Q_EMIT FavoriteChosen(folder); });
    menFavorites->addAction(a);
    menFav.append(a);
  }
  sepFavorites_->setVisible(!menFav.isEmpty());
}

void MainMenus::SetHistory(const QStringList& folders, qsizetype position, bool newestLast) {
  ClearActions(menHistory, menHist);
  auto* group = new QActionGroup(menHistory);
  for (qsizetype k = 0; k < folders.size(); ++k) {
    const qsizetype i = newestLast ? k : folders.size() - 1 - k;
    auto* a = new QAction(MenuText(folders[i]), menHistory);
    a->setObjectName(QStringLiteral("menHist") + QString::number(i));
    a->setCheckable(true);
    a->setChecked(i == position);
    group->addAction(a);
    connect(a, &QAction::triggered, this, [this, i] { Q_EMIT HistoryChosen(i); });
    menHistory->addAction(a);
    menHist.append(a);
  }
  sepHistory_->setVisible(!menHist.isEmpty());
  menHistBack->setEnabled(position > 0);
  menHistForward->setEnabled(position >= 0 && position + 1 < folders.size());
}

void MainMenus::SetCopyMoveTargets(const QStringList& copyTo, const QStringList& moveTo) {
  // The file operations rebuild these lists, with their commands, when they open.
  for (auto [menu, list, prefix] : {std::tuple{menCopyTo, &copyTo, "menCopyTo"}, std::tuple{menMoveTo, &moveTo, "menMoveTo"}}) {
    menu->clear();
    for (qsizetype i = 0; i < list->size(); ++i) {
      if ((*list)[i].trimmed().isEmpty()) continue;
      QAction* a = menu->addAction(MenuText((*list)[i]));
      a->setObjectName(QString::fromLatin1(prefix) + QString::number(i));
    }
  }
}

}  // namespace browser
