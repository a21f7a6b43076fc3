#pragma once
#include <QList>
#include <QPersistentModelIndex>
#include <QString>
#include <QTreeWidget>

class QTimer;

namespace browser {

// The folder tree: a "Computer" node holding the mounted volumes (the
// drives), and below them the folders, each read when it is first opened.
// Tells its owner which folder was selected and whether that was done with
// the keyboard, so that moving through the tree with a held key does not
// fill the list for every folder passed.
class CRellTree : public QTreeWidget {
  Q_OBJECT
 public:
  // The Style Tree options, as bits in menu order.
  enum StyleOption : int { kShowIcons = 1, kShowPlusMinus = 2, kShowLines = 4 };
  static constexpr int kDefaultStyles = kShowIcons | kShowPlusMinus | kShowLines;
  // When a node is read, its children (up to this many) are probed for
  // subfolders in the background, in slices that leave input flowing, so
  // that leaves lose their expander; the rest keep it until opened.
  static constexpr int kProbeLimit = 500;
  static constexpr int kProbeSliceMs = 8;

  explicit CRellTree(QWidget* parent = nullptr);

  // (Re)builds the top: "Computer" and one node per mounted volume.
  void LoadVolumes();
  // Opens the tree down to `folder` (ending in "/"; empty for the drives),
  // selects it and raises FolderSelected(folder, false). False when the path
  // lies on no volume or is not a folder.
  bool SelectPath(const QString& folder);
  // Reads the subfolders of `folder` again if it has been read, keeping the
  // nodes (and their open state) of the folders that are still there.
  void RefreshFolder(const QString& folder);
  // Path of the selected node ("" for the drives node).
  QString CurrentPath() const;
  // The node of a path, or null when it is not in the tree (yet).
  QTreeWidgetItem* ItemOf(const QString& folder) const;

  // The volumes' root folders, as the tree shows them.
  QStringList VolumeRoots() const;

  // Whether background probes are still pending.
  bool probing() const;

  int styles() const { return styles_; }
  void setStyles(int bits);

 Q_SIGNALS:
  // `path` ends in "/"; the empty path stands for the drives ("Computer").
  void FolderSelected(const QString& path, bool byKeyboard);
  void QueryPopup(const QString& path, const QPoint& globalPos);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const override;

 private:
  enum Role : int { kPathRole = Qt::UserRole, kReadRole, kKindRole, kDriveTypeRole, kNameRole };
  enum Kind : int { kComputer, kVolume, kFolder };

  void Read(QTreeWidgetItem* item);
  QTreeWidgetItem* MakeFolderItem(const QString& name, const QString& path) const;
  QTreeWidgetItem* ChildNamed(QTreeWidgetItem* item, const QString& name) const;
  void InsertSorted(QTreeWidgetItem* parent, QTreeWidgetItem* child) const;
  QTreeWidgetItem* VolumeFor(const QString& folder) const;
  QIcon FolderIcon(const QString& path, bool open) const;
  void ApplyIcon(QTreeWidgetItem* item) const;
  void OnCurrentChanged(QTreeWidgetItem* current);
  void ProbeSome();
  void OnExpanded(QTreeWidgetItem* item);
  void OnCollapsed(QTreeWidgetItem* item);

  QTimer* tmrProbe = nullptr;
  QList<QPersistentModelIndex> probes_;
  QTreeWidgetItem* computer_ = nullptr;
  QString home_;
  int styles_ = kDefaultStyles;
  bool byKey_ = false;
  bool quiet_ = false;
};

}  // namespace browser
