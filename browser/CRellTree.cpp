#include "browser/CRellTree.h"

#include <QContextMenuEvent>
#include <QDir>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QElapsedTimer>
#include <QSet>
#include <QTimer>

#include "browser/IconTheme.h"
#include "browser/SubfolderReader.h"
#include "core/DriveText.h"
#include "platform/NativePath.h"
#include "platform/Volumes.h"

namespace browser {

CRellTree::CRellTree(QWidget* parent) : QTreeWidget(parent) {
  setObjectName(QStringLiteral("CRellTree"));
  setColumnCount(1);
  header()->hide();
  header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  header()->setStretchLastSection(false);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setUniformRowHeights(true);
  setAnimated(false);
  setExpandsOnDoubleClick(true);
  setIndentation(16);
  setIconSize(QSize(16, 16));
  setSelectionMode(QAbstractItemView::SingleSelection);
  home_ = platform::WithSeparator(QDir::homePath());
  connect(this, &QTreeWidget::currentItemChanged, this,
          [this](QTreeWidgetItem* current, QTreeWidgetItem*) { OnCurrentChanged(current); });
  connect(this, &QTreeWidget::itemExpanded, this, &CRellTree::OnExpanded);
  connect(this, &QTreeWidget::itemCollapsed, this, &CRellTree::OnCollapsed);
  tmrProbe = new QTimer(this);
  tmrProbe->setObjectName(QStringLiteral("tmrProbe"));
  tmrProbe->setSingleShot(true);
  tmrProbe->setInterval(0);
  connect(tmrProbe, &QTimer::timeout, this, &CRellTree::ProbeSome);
  setStyles(kDefaultStyles);
}

void CRellTree::ProbeSome() {
  QElapsedTimer slice;
  slice.start();
  while (!probes_.isEmpty() && slice.elapsed() < kProbeSliceMs) {
    const QPersistentModelIndex index = probes_.takeFirst();
    QTreeWidgetItem* item = index.isValid() ? itemFromIndex(index) : nullptr;
    // Removed meanwhile, or opened (and so read) before its turn came.
    if (!item || item->data(0, kReadRole).toBool()) continue;
    if (!SubfolderReader::HasAny(item->data(0, kPathRole).toString()))
      item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
  }
  if (!probes_.isEmpty()) tmrProbe->start();
}

bool CRellTree::probing() const { return !probes_.isEmpty(); }

void CRellTree::LoadVolumes() {
  quiet_ = true;
  clear();
  computer_ = new QTreeWidgetItem(this);
  computer_->setText(0, QStringLiteral("Computer"));
  computer_->setData(0, kPathRole, QString());
  computer_->setData(0, kKindRole, kComputer);
  computer_->setData(0, kReadRole, true);
  ApplyIcon(computer_);
  for (const platform::Volume& v : platform::MountedVolumes()) {
    auto* item = new QTreeWidgetItem(computer_);
    QString shown = v.root;
    if (shown.size() > 1) shown.chop(1);
    QString type = core::DriveTypeName(v.driveType, v.floppy, shown);
    if (type.isEmpty()) type = QStringLiteral("Disk");
    item->setText(0, type + QStringLiteral(" (") + platform::DisplayText(shown) + u')');
    item->setToolTip(0, platform::DisplayText(v.device) + QStringLiteral(" (") + v.fileSystem + u')');
    item->setData(0, kPathRole, v.root);
    item->setData(0, kKindRole, kVolume);
    item->setData(0, kDriveTypeRole, v.driveType);
    item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    ApplyIcon(item);
  }
  computer_->setExpanded(true);
  quiet_ = false;
}

QStringList CRellTree::VolumeRoots() const {
  QStringList roots;
  if (!computer_) return roots;
  for (int i = 0; i < computer_->childCount(); ++i) roots.append(computer_->child(i)->data(0, kPathRole).toString());
  return roots;
}

QIcon CRellTree::FolderIcon(const QString& path, bool open) const {
  if (path == home_) return IconTheme::Get(QStringLiteral("user-home"), QStringLiteral("folder"));
  return open ? IconTheme::Get(QStringLiteral("folder-open"), QStringLiteral("folder"))
              : IconTheme::Get(QStringLiteral("folder"));
}

void CRellTree::ApplyIcon(QTreeWidgetItem* item) const {
  if (!(styles_ & kShowIcons)) {
    item->setIcon(0, QIcon());
    return;
  }
  switch (item->data(0, kKindRole).toInt()) {
    case kComputer: item->setIcon(0, IconTheme::Get(QStringLiteral("computer"))); break;
    case kVolume:
      switch (item->data(0, kDriveTypeRole).toInt()) {
        case platform::kDriveRemovable:
          item->setIcon(0, IconTheme::Get(QStringLiteral("drive-removable-media"), QStringLiteral("drive-harddisk")));
          break;
        case platform::kDriveCdRom:
          item->setIcon(0, IconTheme::Get(QStringLiteral("media-optical"), QStringLiteral("drive-harddisk")));
          break;
        case platform::kDriveRemote:
          item->setIcon(0, IconTheme::Get(QStringLiteral("folder-remote"), QStringLiteral("drive-harddisk")));
          break;
        default: item->setIcon(0, IconTheme::Get(QStringLiteral("drive-harddisk"))); break;
      }
      break;
    default: item->setIcon(0, FolderIcon(item->data(0, kPathRole).toString(), item->isExpanded())); break;
  }
}

void CRellTree::setStyles(int bits) {
  styles_ = bits & kDefaultStyles;
  setRootIsDecorated(styles_ & (kShowPlusMinus | kShowLines));
  for (QTreeWidgetItemIterator it(this); *it; ++it) ApplyIcon(*it);
  viewport()->update();
}

QTreeWidgetItem* CRellTree::MakeFolderItem(const QString& name, const QString& path) const {
  auto* item = new QTreeWidgetItem;
  item->setText(0, platform::DisplayText(name));
  item->setData(0, kPathRole, path);
  item->setData(0, kNameRole, name);
  item->setData(0, kKindRole, kFolder);
  item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
  ApplyIcon(item);
  return item;
}

void CRellTree::Read(QTreeWidgetItem* item) {
  if (!item || item->data(0, kReadRole).toBool()) return;
  item->setData(0, kReadRole, true);
  const QString path = item->data(0, kPathRole).toString();
  const QStringList names = SubfolderReader::List(path);
  QList<QTreeWidgetItem*> children;
  children.reserve(names.size());
  for (const QString& name : names) children.append(MakeFolderItem(name, path + name + u'/'));
  item->addChildren(children);
  item->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
  if (names.size() <= kProbeLimit) {
    for (QTreeWidgetItem* child : children) probes_.append(QPersistentModelIndex(indexFromItem(child)));
    if (!tmrProbe->isActive()) tmrProbe->start();
  }
}

QTreeWidgetItem* CRellTree::ChildNamed(QTreeWidgetItem* item, const QString& name) const {
  // Children are sorted: a binary search finds the name among thousands.
  int lo = 0, hi = item->childCount();
  while (lo < hi) {
    const int mid = (lo + hi) / 2;
    if (SubfolderReader::Before(item->child(mid)->data(0, kNameRole).toString(), name)) lo = mid + 1;
    else hi = mid;
  }
  if (lo < item->childCount() && item->child(lo)->data(0, kNameRole).toString() == name) return item->child(lo);
  return nullptr;
}

void CRellTree::InsertSorted(QTreeWidgetItem* parent, QTreeWidgetItem* child) const {
  const QString name = child->data(0, kNameRole).toString();
  int lo = 0, hi = parent->childCount();
  while (lo < hi) {
    const int mid = (lo + hi) / 2;
    if (SubfolderReader::Before(parent->child(mid)->data(0, kNameRole).toString(), name)) lo = mid + 1;
    else hi = mid;
  }
  parent->insertChild(lo, child);
}

QTreeWidgetItem* CRellTree::VolumeFor(const QString& folder) const {
  if (!computer_) return nullptr;
  QTreeWidgetItem* best = nullptr;
  qsizetype bestLength = -1;
  for (int i = 0; i < computer_->childCount(); ++i) {
    QTreeWidgetItem* v = computer_->child(i);
    const QString root = v->data(0, kPathRole).toString();
    if (folder.startsWith(root) && root.size() > bestLength) {
      best = v;
      bestLength = root.size();
    }
  }
  return best;
}

QTreeWidgetItem* CRellTree::ItemOf(const QString& folder) const {
  if (folder.isEmpty()) return computer_;
  QTreeWidgetItem* item = VolumeFor(folder);
  if (!item) return nullptr;
  const QString root = item->data(0, kPathRole).toString();
  const QStringList parts = folder.mid(root.size()).split(u'/', Qt::SkipEmptyParts);
  for (const QString& part : parts) {
    item = ChildNamed(item, part);
    if (!item) return nullptr;
  }
  return item;
}

bool CRellTree::SelectPath(const QString& folderIn) {
  if (!computer_) LoadVolumes();
  const QString folder = folderIn.isEmpty() ? QString() : platform::WithSeparator(folderIn);
  QTreeWidgetItem* item = folder.isEmpty() ? computer_ : VolumeFor(folder);
  if (!item) return false;
  if (!folder.isEmpty()) {
    const QString root = item->data(0, kPathRole).toString();
    const QStringList parts = folder.mid(root.size()).split(u'/', Qt::SkipEmptyParts);
    QString path = root;
    for (const QString& part : parts) {
      Read(item);
      path += part + u'/';
      QTreeWidgetItem* child = ChildNamed(item, part);
      if (!child) {
        // Not listed: a linked folder or one made since is shown all the
        // same; a folder that is not there cannot be selected.
        if (!SubfolderReader::IsFolder(path)) return false;
        child = MakeFolderItem(part, path);
        InsertSorted(item, child);
      }
      item->setExpanded(true);
      item = child;
    }
  }
  quiet_ = true;
  setCurrentItem(item);
  quiet_ = false;
  scrollToItem(item, QAbstractItemView::PositionAtCenter);
  horizontalScrollBar()->setValue(0);  // names start at the left; a long one elsewhere must not shift the view
  Q_EMIT FolderSelected(folder, false);
  return true;
}

void CRellTree::RefreshFolder(const QString& folderIn) {
  QTreeWidgetItem* item = ItemOf(folderIn.isEmpty() ? QString() : platform::WithSeparator(folderIn));
  if (!item || item == computer_ || !item->data(0, kReadRole).toBool()) return;
  const QString path = item->data(0, kPathRole).toString();
  const QStringList names = SubfolderReader::List(path);
  const QSet<QString> wanted(names.begin(), names.end());
  QTreeWidgetItem* current = currentItem();
  for (int i = item->childCount() - 1; i >= 0; --i) {
    QTreeWidgetItem* child = item->child(i);
    if (wanted.contains(child->data(0, kNameRole).toString())) continue;
    // Moving the selection off a vanished folder is not the user's choice.
    bool holdsCurrent = false;
    for (QTreeWidgetItem* c = current; c; c = c->parent())
      if (c == child) holdsCurrent = true;
    if (holdsCurrent) {
      quiet_ = true;
      setCurrentItem(item);
      quiet_ = false;
    }
    delete item->takeChild(i);
  }
  for (const QString& n : names)
    if (!ChildNamed(item, n)) InsertSorted(item, MakeFolderItem(n, path + n + u'/'));
}

QString CRellTree::CurrentPath() const {
  const QTreeWidgetItem* item = currentItem();
  return item ? item->data(0, kPathRole).toString() : QString();
}

void CRellTree::OnCurrentChanged(QTreeWidgetItem* current) {
  if (quiet_ || !current) return;
  Q_EMIT FolderSelected(current->data(0, kPathRole).toString(), byKey_);
}

void CRellTree::OnExpanded(QTreeWidgetItem* item) {
  Read(item);
  if (item->data(0, kKindRole).toInt() == kFolder) ApplyIcon(item);
}

void CRellTree::OnCollapsed(QTreeWidgetItem* item) {
  if (item->data(0, kKindRole).toInt() == kFolder) ApplyIcon(item);
}

void CRellTree::keyPressEvent(QKeyEvent* event) {
  // Every selection change made while handling a key counts as a keyboard one.
  byKey_ = true;
  QTreeWidget::keyPressEvent(event);
  byKey_ = false;
}

void CRellTree::contextMenuEvent(QContextMenuEvent* event) {
  QTreeWidgetItem* item = event->reason() == QContextMenuEvent::Mouse ? itemAt(event->pos()) : currentItem();
  if (!item) return;
  Q_EMIT QueryPopup(item->data(0, kPathRole).toString(), event->globalPos());
}

void CRellTree::drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const {
  const bool lines = styles_ & kShowLines;
  const bool plusMinus = styles_ & kShowPlusMinus;
  if (!lines) {
    if (plusMinus) QTreeWidget::drawBranches(painter, rect, index);
    return;
  }
  const int indent = indentation();
  if (rect.width() < indent) return;
  painter->save();
  QPen pen(palette().color(QPalette::Dark));
  pen.setStyle(Qt::DotLine);
  painter->setPen(pen);
  const int x = rect.right() + 1 - indent;
  const int cx = x + indent / 2;
  const int midY = rect.top() + rect.height() / 2;
  const bool hasNext = index.sibling(index.row() + 1, 0).isValid();
  const bool firstTop = !index.parent().isValid() && index.row() == 0;
  painter->drawLine(cx, firstTop ? midY : rect.top(), cx, hasNext ? rect.bottom() : midY);
  painter->drawLine(cx, midY, x + indent - 1, midY);
  // The lines of the ancestors that have siblings below them.
  int ax = x - indent;
  for (QModelIndex a = index.parent(); a.isValid() && ax >= rect.left(); a = a.parent(), ax -= indent)
    if (a.sibling(a.row() + 1, 0).isValid()) painter->drawLine(ax + indent / 2, rect.top(), ax + indent / 2, rect.bottom());
  if (plusMinus && model()->hasChildren(index)) {
    const QRect box(cx - 4, midY - 4, 8, 8);
    painter->setPen(QPen(palette().color(QPalette::Dark)));
    painter->fillRect(box, palette().color(QPalette::Base));
    painter->drawRect(box);
    painter->setPen(QPen(palette().color(QPalette::Text)));
    painter->drawLine(box.left() + 2, midY, box.right() - 2, midY);
    if (!isExpanded(index)) painter->drawLine(cx, box.top() + 2, cx, box.bottom() - 2);
  }
  painter->restore();
}

}  // namespace browser
