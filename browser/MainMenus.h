#pragma once
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class QAction;
class QActionGroup;
class QMenu;
class QMenuBar;

namespace browser {

// The main window's menu bar. Fixed menus are built from their comma
// caption lists; the lists that change (Sort By columns, favourites,
// history, Copy To / Move To) are rebuilt by their setters. Every item is
// named ("men...") so that it can be found by name.
class MainMenus : public QObject {
  Q_OBJECT
 public:
  static constexpr const char* kRenameCaptions =
      "Aaaa.aaa,aaaa.aaa,AAAA.AAA,*.html;*.shtml;*.shtm to *.htm,Spaces to _,Replace Umlauts,Convert to DOS Name";
  static constexpr const char* kDateCaptions = "&General Date,&Short Date,&Medium Date,&Long Date";
  static constexpr const char* kTimeCaptions = "hh:mm:&ss,Short &Time,Medium T&ime,&No Time";
  static constexpr const char* kTreeStyleCaptions = "Show Icons,Show PlusMinus,Show Lines";
  static constexpr const char* kListStyleCaptions =
      "Show Icons,Column Drag,MultiSelect,Highlight Row,Line Numbers,Column Width Auto-Adjustment";

  MainMenus(QMenuBar* bar, QObject* parent);

  // Checks the entries that show the current mode's record and the styles.
  void ShowFormats(int sizeFormat, int dateStyle, int timeStyle, bool age);
  void ShowTreeStyles(int bits);
  void ShowListStyles(int bits);
  // Sort By: the mode's column captions (definition order), the sort column checked.
  void SetSortColumns(const QStringList& captions, int sortColumn);
  void SetFavorites(const QStringList& folders);
  // History entries oldest first; shown newest first unless `newestLast`.
  void SetHistory(const QStringList& folders, qsizetype position, bool newestLast);
  void SetCopyMoveTargets(const QStringList& copyTo, const QStringList& moveTo);

  QMenu* menFile;
  QMenu* menRenSpecial;
  QMenu* menCopyTo;
  QMenu* menMoveTo;
  QAction* menExit;

  QMenu* menView;
  QMenu* menSizeFormat;
  QList<QAction*> menSize;  // nine, index = size option
  QMenu* menDateFormat;
  QList<QAction*> menDate;  // four date styles
  QList<QAction*> menTime;  // four time styles
  QAction* menAge;
  QMenu* menStyleTree;
  QList<QAction*> menTreeStyle;
  QMenu* menStyleList;
  QList<QAction*> menListStyle;
  QAction* menShowPanel;
  QAction* menAltColor;
  QAction* menSortFoldersApart;  // "SortFoldersApart"
  QAction* menRelPath;           // "RelPath"
  QAction* menRefresh;
  QAction* menResetDefaults;

  QMenu* menSort;
  QList<QAction*> menSortCol;
  QAction* menAdjustWidths;
  QAction* menDefaultOrder;
  QAction* menOriginalOrder;

  QMenu* menTools;
  QAction* menAutoFind;

  QMenu* menFavorites;
  QAction* menFavAdd;
  QAction* menFavRemove;
  QList<QAction*> menFav;

  QMenu* menHistory;
  QAction* menHistBack;
  QAction* menHistForward;
  QList<QAction*> menHist;

  QMenu* menHelp;
  QAction* menAbout;

 Q_SIGNALS:
  void SizeFormatChosen(int option);
  void DateStyleChosen(int style);
  void TimeStyleChosen(int style);
  void TreeStyleToggled(int bit, bool on);
  void ListStyleToggled(int bit, bool on);
  void SortColumnChosen(int column);
  void FavoriteChosen(const QString& folder);
  void HistoryChosen(qsizetype index);

 private:
  QMenu* AddMenu(QMenu* parent, const QString& title, const char* name);
  QAction* AddAction(QMenu* menu, const QString& text, const char* name);
  QList<QAction*> AddChoices(QMenu* menu, const QString& captions, const QString& namePrefix, QActionGroup* group);
  void ClearActions(QMenu* menu, QList<QAction*>& actions);

  QMenuBar* bar_;
  QAction* sepFavorites_ = nullptr;
  QAction* sepHistory_ = nullptr;
  QAction* sepSort_ = nullptr;
};

}  // namespace browser
