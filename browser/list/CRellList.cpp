#include "browser/list/CRellList.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHash>
#include <QIcon>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QSet>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QUrl>

#include "browser/list/CRellListHeader.h"
#include "core/ColorContrast.h"
#include "platform/Clock.h"
#include "platform/NativePath.h"

namespace browser {

namespace {

constexpr int kIconSize = 16;
constexpr int kTextInset = 3;

// A file URL that carries the name's real bytes.
QUrl FileUrl(const QString& path) {
  return QUrl::fromEncoded("file://" + platform::ToNative(path).toPercentEncoding("/"));
}

QString PathFromUrl(const QUrl& url) {
  if (!url.isLocalFile()) return QString();
  return platform::FromNative(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

ListKey MapKey(int key) {
  switch (key) {
    case Qt::Key_Up: return ListKey::Up;
    case Qt::Key_Down: return ListKey::Down;
    case Qt::Key_Home: return ListKey::Home;
    case Qt::Key_End: return ListKey::End;
    case Qt::Key_PageUp: return ListKey::PageUp;
    case Qt::Key_PageDown: return ListKey::PageDown;
    case Qt::Key_Space: return ListKey::Space;
    case Qt::Key_Left: return ListKey::Left;
    case Qt::Key_Right: return ListKey::Right;
    case Qt::Key_F2: return ListKey::F2;
    default:
      if ((key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z)) return ListKey::Character;
      return ListKey::Other;
  }
}

}  // namespace

CRellList::CRellList(QWidget* parent) : QAbstractScrollArea(parent) {
  setObjectName(QStringLiteral("CRellList"));
  setFocusPolicy(Qt::StrongFocus);
  setAcceptDrops(true);
  viewport()->setAcceptDrops(true);
  viewport()->setAutoFillBackground(false);
  header_ = new CRellListHeader(this);
  const QFontMetrics fm(font());
  rowHeight_ = std::max(fm.height() + 4, kIconSize + 2);
  setViewportMargins(0, rowHeight_ + 4, 0, 0);
  altRowColor_ = QColor(0xEE, 0xF4, 0xFF);
  selRowColor_ = palette().color(QPalette::Highlight);
  verticalScrollBar()->setSingleStep(1);
  model_.setStatusHook([this](const QString& text) {
    if (model_.mode() == core::kModeDrives) Q_EMIT StatusDisks(text, model_.selectedCount());
    else Q_EMIT StatusObjects(text, model_.selectedCount());
  });
  model_.setBusyHook([](bool busy) {
    if (busy) QApplication::setOverrideCursor(Qt::BusyCursor);
    else QApplication::restoreOverrideCursor();
  });
}

CRellList::~CRellList() { model_.setBusyHook(nullptr); }

// ---- mode, fills, sort ----

void CRellList::setMode(int mode, const core::ModeRecord& record) {
  finishRename(false);
  model_.setMode(mode, record);
  altColor_ = record.altColor;
  refresh();
}

void CRellList::setFormats(int sizeFormat, int dateStyle, int timeStyle) {
  model_.setFormats(sizeFormat, dateStyle, timeStyle);
  if (styleOption(kAutoWidth)) autoAdjustWidths();
  viewport()->update();
}

void CRellList::beginFill() {
  finishRename(false);
  model_.beginFill();
  refresh();
}

void CRellList::finishFill() {
  model_.endFill();
  model_.sortAgain();
  if (styleOption(kAutoWidth)) autoAdjustWidths();
  refresh();
  raiseStatus();
}

FillResult CRellList::fillBrowse(const QString& folder, const FillContext& context) {
  beginFill();
  const FillResult result = ListFill::Browse(&model_, folder, context);
  finishFill();
  if (result == FillResult::kUnreadable)
    Q_EMIT StatusObjects(QStringLiteral("Cannot read ") + platform::DisplayText(folder), 0);
  return result;
}

FillResult CRellList::fillDrives(const FillContext& context) {
  beginFill();
  const FillResult result = ListFill::Drives(&model_, context);
  finishFill();
  return result;
}

void CRellList::sortBy(int column, bool keepDirection) {
  model_.sort(column, keepDirection);
  refresh();
}

void CRellList::refresh() {
  updateScrollBars();
  header_->update();
  viewport()->update();
}

// ---- styles and colours ----

void CRellList::setStyles(int bits) {
  styles_ = bits;
  model_.setMultiSelect(styles_ & kMultiSelect);
  if (styles_ & kAutoWidth) autoAdjustWidths();
  refresh();
}

void CRellList::setStyleOption(StyleOption option, bool on) { setStyles(on ? (styles_ | option) : (styles_ & ~option)); }

void CRellList::setAlternateColor(bool on) {
  altColor_ = on;
  viewport()->update();
}

void CRellList::setAlternateRowColor(const QColor& color) {
  altRowColor_ = color;
  viewport()->update();
}

void CRellList::setSelectedRowColor(const QColor& color) {
  selRowColor_ = color;
  viewport()->update();
}

QColor CRellList::SelectedTextColor() const {
  // The palette's selected-text colour where it reads on the row's colour
  // (a chosen "SelRowColor" may be light), else black or white.
  auto ref = [](const QColor& c) { return quint32(c.red()) | quint32(c.green()) << 8 | quint32(c.blue()) << 16; };
  const quint32 text = core::ReadableTextColor(ref(selRowColor_), ref(palette().color(QPalette::HighlightedText)));
  return QColor(int(text & 0xFF), int((text >> 8) & 0xFF), int((text >> 16) & 0xFF));
}

// ---- selection ----

void CRellList::selectAll() {
  model_.selectAll();
  viewport()->update();
  raiseStatus();
}

void CRellList::invertSelection() {
  model_.invertSelection();
  viewport()->update();
  raiseStatus();
}

void CRellList::setFocusPosition(int position) {
  if (model_.rowCount() == 0) return;
  model_.moveTo(position, false, false);
  afterMove(false);
}

QString CRellList::focusPath() const {
  if (model_.rowCount() == 0) return QString();
  return model_.path(model_.rowAt(std::min(model_.focus(), model_.rowCount() - 1)));
}

QStringList CRellList::selectedPaths() const {
  QStringList out;
  for (int p : model_.selectedPositions()) out.append(model_.path(model_.rowAt(p)));
  return out;
}

void CRellList::selectPaths(const QStringList& paths) {
  const QSet<QString> wanted(paths.begin(), paths.end());
  std::vector<int> positions;
  for (int p = 0; p < model_.rowCount(); ++p)
    if (wanted.contains(model_.path(model_.rowAt(p)))) positions.push_back(p);
  if (positions.empty()) return;
  setFocusPosition(positions.front());
  for (size_t i = 1; i < positions.size(); ++i) model_.toggleSelectedAt(positions[i]);
  refresh();
}

void CRellList::afterMove(bool byKey) {
  updateScrollBars();
  viewport()->update();
  if (model_.rowCount() > 0) Q_EMIT FileSelected(focusPath(), !byKey);
  raiseStatus();
}

void CRellList::raiseStatus() {
  const QString text = model_.statusText();
  if (model_.mode() == core::kModeDrives) Q_EMIT StatusDisks(text, model_.selectedCount());
  else Q_EMIT StatusObjects(text, model_.selectedCount());
  Q_EMIT StatusBytes(model_.bytesTotal(), model_.bytesFree());
}

void CRellList::activate(int position) {
  if (position < 0 || position >= model_.rowCount()) return;
  const RowId id = model_.rowAt(position);
  const QString path = model_.path(id);
  if (model_.isFolder(id) || IsTextRow(id)) Q_EMIT BeforeBrowse(platform::WithSeparator(path));
  else Q_EMIT OpenFile(path);
}

// ---- geometry ----

int CRellList::lineNumberWidth() const {
  if (!styleOption(kLineNumbers)) return 0;
  const QString widest = QString::number(std::max(1, model_.rowCount()));
  return fontMetrics().horizontalAdvance(widest) + 2 * kTextInset + 2;
}

int CRellList::totalWidth() const {
  int w = lineNumberWidth();
  for (int c : model_.columns().visibleInOrder()) w += std::max(0, model_.columns().column(c).width);
  return w;
}

void CRellList::updateScrollBars() {
  const int rows = std::max(1, viewport()->height() / rowHeight_);
  model_.setPageRows(rows);
  QScrollBar* v = verticalScrollBar();
  const QSignalBlocker block(v);
  v->setRange(0, std::max(0, model_.rowCount() - rows));
  v->setPageStep(rows);
  v->setValue(model_.top());
  QScrollBar* h = horizontalScrollBar();
  h->setRange(0, std::max(0, totalWidth() - viewport()->width()));
  h->setPageStep(viewport()->width());
  h->setSingleStep(20);
  header_->setOffset(h->value());
}

int CRellList::positionAt(const QPoint& p) const {
  if (p.y() < 0) return -1;
  const int position = model_.top() + p.y() / rowHeight_;
  return position < model_.rowCount() ? position : -1;
}

void CRellList::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  const QRect r = viewport()->geometry();
  header_->setGeometry(r.x(), r.y() - (rowHeight_ + 4), r.width(), rowHeight_ + 4);
  updateScrollBars();
}

void CRellList::scrollContentsBy(int, int) {
  model_.setTop(verticalScrollBar()->value());
  header_->setOffset(horizontalScrollBar()->value());
  viewport()->update();
}

bool CRellList::viewportEvent(QEvent* event) {
  // Keep the model's page size in step before anything reads it.
  if (event->type() == QEvent::Resize) updateScrollBars();
  return QAbstractScrollArea::viewportEvent(event);
}

// ---- painting ----

void CRellList::paintEvent(QPaintEvent*) {
  const quint64 cellsBefore = model_.cellsFormatted();
  QPainter p(viewport());
  const QPalette& pal = palette();
  const QRect area = viewport()->rect();
  p.fillRect(area, pal.color(QPalette::Base));
  const int n = model_.rowCount();
  const int top = model_.top();
  const int xOffset = horizontalScrollBar()->value();
  const std::vector<int> columns = model_.columns().visibleInOrder();
  const int gutter = lineNumberWidth();
  const bool icons = styleOption(kShowIcons);
  const bool wholeRow = styleOption(kHighlightRow);
  const QColor selText = SelectedTextColor();
  const int rowWidth = totalWidth() - gutter;
  static QHash<QString, QIcon> iconCache;

  for (int position = top, y = 0; position < n && y < area.height(); ++position, y += rowHeight_) {
    const RowId id = model_.rowAt(position);
    const bool selected = model_.store().isSelected(id);
    const QRect rowRect(0, y, area.width(), rowHeight_);
    if (altColor_ && (position % 2) == 1) p.fillRect(rowRect, altRowColor_);
    int x = -xOffset;
    if (gutter > 0) {
      p.setPen(pal.color(QPalette::PlaceholderText));
      p.drawText(QRect(x, y, gutter - kTextInset, rowHeight_), Qt::AlignRight | Qt::AlignVCenter,
                 QString::number(position + 1));
      x += gutter;
    }
    const int rowStart = x;
    if (selected && wholeRow) p.fillRect(QRect(rowStart, y, rowWidth, rowHeight_), selRowColor_);
    for (size_t i = 0; i < columns.size(); ++i) {
      const ListColumn& c = model_.columns().column(columns[i]);
      const int w = std::max(0, c.width);
      if (x + w > 0 && x < area.width()) {
        const QRect cell(x, y, w, rowHeight_);
        const bool first = i == 0;
        const bool marked = selected && (wholeRow || first);
        if (marked && !wholeRow) p.fillRect(cell, selRowColor_);
        QRect textRect = cell.adjusted(kTextInset, 0, -kTextInset, 0);
        if (first && icons && c.dataIndex == 0) {
          const QString key = model_.iconKey(id);
          auto it = iconCache.find(key);
          if (it == iconCache.end()) {
            QIcon icon = QIcon::fromTheme(key);
            if (icon.isNull())
              icon = style()->standardIcon(IsTextRow(id)          ? QStyle::SP_DriveHDIcon
                                           : model_.isFolder(id) ? QStyle::SP_DirIcon
                                                                 : QStyle::SP_FileIcon);
            it = iconCache.insert(key, icon);
          }
          it->paint(&p, QRect(textRect.x(), y + (rowHeight_ - kIconSize) / 2, kIconSize, kIconSize));
          textRect.setLeft(textRect.left() + kIconSize + kTextInset);
        }
        QString text;
        model_.appendDataText(&text, id, c.dataIndex);
        p.setPen(marked ? selText : pal.color(QPalette::Text));
        const Qt::Alignment align = (c.rightAligned ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter;
        p.drawText(textRect, align, fontMetrics().elidedText(text, Qt::ElideRight, textRect.width()));
      }
      x += w;
    }
    if (position == model_.focus() && hasFocus()) {
      QStyleOptionFocusRect o;
      o.initFrom(this);
      o.rect = QRect(rowStart, y, std::max(0, x - rowStart), rowHeight_).adjusted(0, 0, -1, -1);
      style()->drawPrimitive(QStyle::PE_FrameFocusRect, &o, &p, this);
    }
  }
  lastPaintCells_ = model_.cellsFormatted() - cellsBefore;
}

// ---- keyboard ----

void CRellList::keyPressEvent(QKeyEvent* event) {
  const Qt::KeyboardModifiers mods = event->modifiers();
  const bool shift = mods & Qt::ShiftModifier, ctrl = mods & Qt::ControlModifier, alt = mods & Qt::AltModifier;
  const int key = event->key();
  if (key == Qt::Key_Return || key == Qt::Key_Enter) {
    activate(model_.focus());
    return;
  }
  if (key == Qt::Key_Menu || (key == Qt::Key_F10 && shift)) {
    const int f = model_.focus();
    const QPoint local(rowHeight_, (f - model_.top()) * rowHeight_ + rowHeight_ / 2);
    Q_EMIT QueryPopup(model_.rowCount() ? f : -1, viewport()->mapToGlobal(local), true);
    return;
  }
  if (ctrl && key == Qt::Key_A) {
    selectAll();
    return;
  }
  const ListKey listKey = MapKey(key);
  if (listKey == ListKey::Left || listKey == ListKey::Right) {
    // The view scrolls sideways first; the focus row stays.
    QScrollBar* h = horizontalScrollBar();
    h->setValue(h->value() + (listKey == ListKey::Left ? -h->singleStep() : h->singleStep()));
  }
  QChar ch;
  if (listKey == ListKey::Character) ch = QChar(char16_t(key));
  const KeyResult r = model_.keyDown(listKey, ch, shift, ctrl, alt, platform::MonotonicSeconds());
  if (!r.handled) {
    QAbstractScrollArea::keyPressEvent(event);
    return;
  }
  if (r.rename) startRename();
  if (r.moved) afterMove(true);
}

// ---- mouse ----

void CRellList::mousePressEvent(QMouseEvent* event) {
  setFocus(Qt::MouseFocusReason);
  finishRename(true);
  const int position = positionAt(event->position().toPoint());
  pressPos_ = event->position().toPoint();
  pressRow_ = position;
  dragReady_ = false;
  if (position < 0) return;
  const Qt::KeyboardModifiers mods = event->modifiers();
  const bool shift = mods & Qt::ShiftModifier, ctrl = mods & Qt::ControlModifier;
  const bool wasSelected = model_.isSelectedAt(position);
  if (event->button() == Qt::RightButton) {
    if (!wasSelected) model_.click(position, false, false);
  } else if (event->button() == Qt::LeftButton && wasSelected && !shift && !ctrl) {
    // A press on the selection may start a drag; the click itself lands on release.
    dragReady_ = true;
    return;
  } else {
    model_.click(position, shift, ctrl);
  }
  afterMove(false);
}

void CRellList::mouseMoveEvent(QMouseEvent* event) {
  if (!dragReady_ || !(event->buttons() & Qt::LeftButton)) return;
  if ((event->position().toPoint() - pressPos_).manhattanLength() < QApplication::startDragDistance()) return;
  dragReady_ = false;
  startDrag();
}

void CRellList::mouseReleaseEvent(QMouseEvent* event) {
  if (dragReady_ && event->button() == Qt::LeftButton && pressRow_ >= 0) {
    model_.click(pressRow_, false, false);
    afterMove(false);
  }
  dragReady_ = false;
}

void CRellList::mouseDoubleClickEvent(QMouseEvent* event) {
  const int position = positionAt(event->position().toPoint());
  if (event->button() == Qt::LeftButton && position >= 0) activate(position);
}

void CRellList::contextMenuEvent(QContextMenuEvent* event) {
  if (event->reason() == QContextMenuEvent::Keyboard) return;  // handled in keyPressEvent
  const int position = positionAt(event->pos());  // viewport coordinates
  Q_EMIT QueryPopup(position, event->globalPos(), false);
}

// ---- drag and drop ----

void CRellList::startDrag() {
  const QStringList paths = selectedPaths();
  if (paths.isEmpty()) return;
  QList<QUrl> urls;
  for (const QString& p : paths) urls.append(FileUrl(p));
  auto* data = new QMimeData;
  data->setUrls(urls);
  auto* drag = new QDrag(this);
  drag->setMimeData(data);
  drag->exec(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction);
}

void CRellList::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void CRellList::dragMoveEvent(QDragMoveEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void CRellList::dropEvent(QDropEvent* event) {
  QStringList paths;
  for (const QUrl& url : event->mimeData()->urls()) {
    const QString p = PathFromUrl(url);
    if (!p.isEmpty()) paths.append(p);
  }
  if (paths.isEmpty()) return;
  const int hit = positionAt(event->position().toPoint());  // viewport coordinates
  event->acceptProposedAction();
  Q_EMIT Drop(paths, event->dropAction(), hit);
}

// ---- inline rename ----

void CRellList::startRename() {
  if (model_.rowCount() == 0 || model_.mode() == core::kModeDrives) return;
  finishRename(false);
  const int position = model_.focus();
  model_.setTop(model_.top());
  if (position < model_.top() || position >= model_.top() + model_.pageRows()) model_.moveTo(position, false, false);
  updateScrollBars();
  // The name cell's place on screen.
  int x = lineNumberWidth() - horizontalScrollBar()->value();
  int width = 120;
  for (int c : model_.columns().visibleInOrder()) {
    const ListColumn& col = model_.columns().column(c);
    if (col.dataIndex == 0) {
      width = std::max(60, col.width);
      break;
    }
    x += col.width;
  }
  if (styleOption(kShowIcons)) x += kIconSize + kTextInset;
  editRow_ = int(model_.rowAt(position));
  editor_ = new QLineEdit(viewport());
  editor_->setObjectName(QStringLiteral("txtRename"));
  editor_->setText(model_.displayName(model_.rowAt(position)));
  editor_->setGeometry(x, (position - model_.top()) * rowHeight_, width, rowHeight_);
  editor_->installEventFilter(this);
  const qsizetype dot = editor_->text().lastIndexOf(u'.');
  editor_->setSelection(0, dot > 0 && !model_.isFolder(model_.rowAt(position)) ? int(dot) : int(editor_->text().size()));
  connect(editor_, &QLineEdit::returnPressed, this, [this] { finishRename(true); });
  editor_->show();
  editor_->setFocus();
}

void CRellList::finishRename(bool commit) {
  if (!editor_) return;
  QLineEdit* editor = editor_;
  editor_ = nullptr;
  const RowId id = RowId(editRow_);
  editRow_ = -1;
  const QString newName = editor->text();
  editor->hide();
  editor->deleteLater();
  setFocus();
  const int position = model_.positionOf(id);
  if (!commit || position < 0 || newName.isEmpty() || newName == model_.displayName(id)) return;
  bool accept = false;
  Q_EMIT QueryRename(model_.path(id), newName, &accept);
  if (accept) model_.store().renameFile(id, newName);
  viewport()->update();
}

bool CRellList::eventFilter(QObject* watched, QEvent* event) {
  if (watched == editor_) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
      finishRename(false);
      return true;
    }
    if (event->type() == QEvent::FocusOut) finishRename(true);
  }
  return QAbstractScrollArea::eventFilter(watched, event);
}

// ---- widths ----

void CRellList::autoAdjustWidths() {
  // Fits the visible columns to their caption and the texts of the first rows.
  constexpr int kSample = 200;
  const QFontMetrics fm(font());
  ColumnLayout& layout = model_.columns();
  for (int c : layout.visibleInOrder()) {
    const ListColumn& col = layout.column(c);
    int w = fm.horizontalAdvance(col.caption) + 4 * kTextInset;
    for (int i = 0; i < std::min(kSample, model_.rowCount()); ++i)
      w = std::max(w, fm.horizontalAdvance(model_.dataText(model_.rowAt(i), col.dataIndex)) + 2 * kTextInset);
    if (col.dataIndex == 0 && styleOption(kShowIcons)) w += kIconSize + kTextInset;
    layout.setWidth(c, std::min(w, 600));
  }
}

void CRellList::fitColumn(int column) {
  // The widest of the caption and the cells on screen, as desktop lists do.
  const QFontMetrics fm(font());
  ColumnLayout& layout = model_.columns();
  const ListColumn& col = layout.column(column);
  int w = fm.horizontalAdvance(col.caption) + 4 * kTextInset;
  const int end = std::min(model_.rowCount(), model_.top() + model_.pageRows() + 1);
  for (int i = std::max(0, model_.top()); i < end; ++i)
    w = std::max(w, fm.horizontalAdvance(model_.dataText(model_.rowAt(i), col.dataIndex)) + 2 * kTextInset);
  if (col.dataIndex == 0 && styleOption(kShowIcons)) w += kIconSize + kTextInset;
  layout.setWidth(column, w);
  refresh();
}

void CRellList::adjustAllWidths() {
  autoAdjustWidths();
  refresh();
}

}  // namespace browser
