#include "browser/list/ColumnLayout.h"

#include <algorithm>

namespace browser {

namespace {

constexpr qint32 kDefaultWidth = 80;

// The numeric value of a text as the layout strings read it: leading blanks,
// an optional sign, then digits up to the first other character; 0 if none.
qint32 NumericValue(QStringView text) {
  qsizetype i = 0;
  while (i < text.size() && (text[i] == u' ' || text[i] == u'\t')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) negative = text[i++] == u'-';
  qint64 value = 0;
  for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i) {
    value = value * 10 + (text[i].unicode() - u'0');
    if (value > 0x7fffffff) value = 0x7fffffff;
  }
  return qint32(negative ? -value : value);
}

QStringView Trimmed(QStringView text) {
  qsizetype b = 0, e = text.size();
  while (b < e && text[b] == u' ') ++b;
  while (e > b && text[e - 1] == u' ') --e;
  return text.mid(b, e - b);
}

void ReadKind(QStringView kindText, ListColumn* c) {
  const QStringView kind = Trimmed(kindText);
  c->kind = ListColumn::kText;
  c->digits = 0;
  if (kind.isEmpty()) return;
  const QChar first = kind[0].toLower();
  if (first == u'd') {
    c->kind = ListColumn::kDate;
  } else if (first == u'n') {
    c->kind = ListColumn::kNumeric;
    c->digits = NumericValue(kind.mid(1));
  }
}

}  // namespace

std::vector<ListColumn> ColumnLayout::ParseDefinition(QStringView definition, QStringView rightAlignList) {
  std::vector<ListColumn> out;
  int position = 0;
  for (QStringView item : definition.split(u',')) {
    ListColumn c;
    c.width = kDefaultWidth;
    c.dataIndex = position;
    const qsizetype slash = item.indexOf(u'/');
    if (slash >= 0) {
      c.dataIndex = NumericValue(item.mid(slash + 1));
      item = item.left(slash);
    }
    const qsizetype dot = item.indexOf(u'.');
    QStringView caption = item;
    if (dot >= 0) {
      caption = item.left(dot);
      ReadKind(item.mid(dot + 1), &c);
    }
    c.caption = Trimmed(caption).toString();
    c.rightAligned = position != 0 && rightAlignList.contains(c.caption);
    out.push_back(std::move(c));
    ++position;
  }
  return out;
}

void ColumnLayout::clear() {
  columns_.clear();
  order_.clear();
}

int ColumnLayout::addColumn(const QString& caption, QStringView kindText, qint32 width, bool rightAligned,
                            int dataIndex) {
  ListColumn c;
  const int index = count();
  c.caption = caption;
  ReadKind(kindText, &c);
  c.width = width;
  c.rightAligned = index != 0 && rightAligned;
  c.dataIndex = dataIndex < 0 ? index : dataIndex;
  columns_.push_back(std::move(c));
  order_.push_back(index);
  return index;
}

void ColumnLayout::define(QStringView definition, QStringView rightAlignList) {
  clear();
  columns_ = ParseDefinition(definition, rightAlignList);
  resetOrder();
}

void ColumnLayout::setWidth(int index, qint32 width) {
  if (index >= 0 && index < count()) columns_[size_t(index)].width = width;
}

int ColumnLayout::find(QStringView caption) const {
  for (int i = 0; i < count(); ++i)
    if (columns_[size_t(i)].caption.compare(caption, Qt::CaseInsensitive) == 0) return i;
  return -1;
}

QString ColumnLayout::columnOrder() const {
  QString out;
  for (int index : order_) {
    const ListColumn& c = columns_[size_t(index)];
    out.append(c.caption).append(u'.').append(QString::number(c.width)).append(u',');
  }
  return out;
}

void ColumnLayout::setColumnOrder(QStringView order) {
  if (order.isEmpty()) {
    resetOrder();
    return;
  }
  std::vector<bool> placed(columns_.size(), false);
  std::vector<int> next;
  next.reserve(columns_.size());
  int position = 0;
  for (QStringView item : order.split(u',')) {
    QStringView name = item;
    bool hasWidth = false;
    qint32 width = 0;
    const qsizetype dot = item.indexOf(u'.');
    if (dot >= 0) {
      name = item.left(dot);
      width = NumericValue(item.mid(dot + 1));
      hasWidth = true;
    }
    QString wanted = Trimmed(name).toString();
    if (hasWidth && wanted.isEmpty() && position < count()) wanted = columns_[size_t(position)].caption;
    ++position;
    for (int i = 0; i < count(); ++i) {
      if (placed[size_t(i)] || columns_[size_t(i)].caption.compare(wanted, Qt::CaseInsensitive) != 0) continue;
      placed[size_t(i)] = true;
      next.push_back(i);
      if (hasWidth) columns_[size_t(i)].width = width;
      break;
    }
  }
  for (int i = 0; i < count(); ++i)
    if (!placed[size_t(i)]) next.push_back(i);
  order_ = std::move(next);
}

void ColumnLayout::setVisibility(QStringView mask) {
  for (int i = 0; i < count(); ++i) columns_[size_t(i)].visible = i < mask.size() && mask[i] == u'1';
}

QString ColumnLayout::visibility() const {
  QString out;
  for (const ListColumn& c : columns_) out.append(c.visible ? u'1' : u'0');
  return out;
}

void ColumnLayout::setVisible(int index, bool visible) {
  if (index >= 0 && index < count()) columns_[size_t(index)].visible = visible;
}

std::vector<int> ColumnLayout::visibleInOrder() const {
  std::vector<int> out;
  for (int index : order_)
    if (columns_[size_t(index)].visible) out.push_back(index);
  return out;
}

void ColumnLayout::moveColumn(int from, int to) {
  if (from < 0 || from >= count() || to < 0 || to >= count() || from == to) return;
  const int index = order_[size_t(from)];
  order_.erase(order_.begin() + from);
  order_.insert(order_.begin() + to, index);
}

void ColumnLayout::resetOrder() {
  order_.resize(columns_.size());
  for (size_t i = 0; i < order_.size(); ++i) order_[i] = int(i);
}

}  // namespace browser
