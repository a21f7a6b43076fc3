#pragma once
#include <QStringList>
#include <QWidget>
#include <array>

#include "core/FindTabValues.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QMenu;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QToolButton;

namespace find {

// The "Find Files" tab: the criteria of a find as the user types them. It
// only holds values; the window builds the criteria from values() and runs
// the find when findRequested() is raised.
//
// Controls carry the names the program uses for them, which are also their
// objectNames. Control arrays are numbered from 0: chkNamed0 "Exact &match",
// chkNamed1 "Include &subfolders"; optDate0..3 in the order created,
// modified, accessed, created or modified; txtDate0 (from), txtDate1 (to);
// txtSize0 (at least), txtSize1 (at most); optSizeUnit0..2 Bytes, KB, MB;
// chkAttrFind0..7 and chkAttrFindNot0..7 in the order of the attribute
// letters R H S D A N T C; cmdExclude0 "<< Add", cmdExclude1 "Remove";
// chkWatch0..5 "Name", "Size", "Date", "Excl.", "Attr.", "Text". The date
// quick filters sit in the menu of cmdDateMenu.
class FindFilesTab : public QWidget {
  Q_OBJECT

 public:
  explicit FindFilesTab(QWidget* parent = nullptr);

  core::FindTabValues values() const;
  void setValues(const core::FindTabValues& values);

  // Entries offered in the Look in list (the drives, recent folders).
  void setLookInItems(const QStringList& items);
  // The folder the user browsed to. "Look in" takes it unless the user typed
  // or chose a location there since the last find (lookInUsed() resets that).
  void followFolder(const QString& folder);
  void lookInUsed() { lookInChosen_ = false; }
  // The focused list entry, for the "Like" and "Similar to" date filters:
  // its name and three file times (0 where unknown).
  void setCurrentEntry(const QString& name, qint64 created, qint64 modified, qint64 accessed);

 Q_SIGNALS:
  void findRequested();  // "F&ind Now"
  void stopRequested();  // "Sto&p (Esc)"; the abort flag is already set

 private:
  QGroupBox* buildNameGroup();
  QGroupBox* buildDateGroup();
  QGroupBox* buildSizeGroup();
  QGroupBox* buildAttributeGroup();
  QGroupBox* buildExcludeGroup();
  QGroupBox* buildTextGroup();
  QWidget* buildCommands();
  void fillDateMenu();
  void applyDateFill(const QString& from, const QString& to, bool rangeNot);
  void setHexFont(bool hex);
  qint64 currentEntryTime() const;

  QComboBox* cboNamed = nullptr;
  QComboBox* cboLookIn = nullptr;
  std::array<QCheckBox*, 2> chkNamed{};
  std::array<QRadioButton*, 4> optDate{};
  std::array<QLineEdit*, 2> txtDate{};
  QCheckBox* chkRangeNot = nullptr;
  QToolButton* cmdDateMenu = nullptr;
  QMenu* dateMenu_ = nullptr;
  std::array<QLineEdit*, 2> txtSize{};
  std::array<QRadioButton*, 3> optSizeUnit{};
  std::array<QCheckBox*, 8> chkAttrFind{};
  std::array<QCheckBox*, 8> chkAttrFindNot{};
  QListWidget* lstExclude = nullptr;
  QLineEdit* txtExclude = nullptr;
  std::array<QPushButton*, 2> cmdExclude{};
  QPlainTextEdit* txtContText = nullptr;
  QCheckBox* chkCaseSens = nullptr;
  QCheckBox* chkHex = nullptr;
  std::array<QCheckBox*, 6> chkWatch{};
  QPushButton* cmdFind = nullptr;
  QPushButton* cmdFindStop = nullptr;

  QString entryName_;
  bool lookInChosen_ = false;
  std::array<qint64, 3> entryTimes_{};  // created, modified, accessed
};

}  // namespace find
