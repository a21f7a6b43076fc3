#pragma once
#include <QString>
#include <QStringList>
#include <QStringView>
#include <vector>

namespace browser {

// One column of the list, in definition order.
struct ListColumn {
  enum Kind : int { kText = 0, kNumeric = 1, kDate = 2 };
  QString caption;
  int kind = kText;
  qint32 digits = 0;  // numeric columns: the number after "n"
  qint32 width = 0;   // pixels
  bool rightAligned = false;
  bool visible = true;
  int dataIndex = 0;  // which of the row's texts (and key slot) the column shows
};

// The columns of one list mode and their on-screen order.
//
// Definition strings: "caption[.kind][/dataIndex]" items separated by ",".
// Column-order strings: "name[.width]" items separated by ","; an empty name
// stands for the column at the item's position.
class ColumnLayout {
 public:
  // Parses a definition string; the right-align list is tested by substring.
  static std::vector<ListColumn> ParseDefinition(QStringView definition, QStringView rightAlignList);

  void clear();
  // Appends a column; returns its index. Column 0 is never right-aligned.
  int addColumn(const QString& caption, QStringView kindText, qint32 width, bool rightAligned, int dataIndex = -1);
  void define(QStringView definition, QStringView rightAlignList);

  int count() const { return int(columns_.size()); }
  const ListColumn& column(int index) const { return columns_[size_t(index)]; }
  void setWidth(int index, qint32 width);
  // Column index (definition order) by caption, without regard to case; -1 if none.
  int find(QStringView caption) const;

  // "Name.100,Ext.38,": every column in display order, trailing comma kept.
  QString columnOrder() const;
  void setColumnOrder(QStringView order);

  // One character per column in definition order, "1" shown, anything else
  // (or a missing character) hidden; longer masks are fine.
  void setVisibility(QStringView mask);
  QString visibility() const;
  void setVisible(int index, bool visible);

  // Display position -> column index.
  const std::vector<int>& displayOrder() const { return order_; }
  // Visible columns in display order.
  std::vector<int> visibleInOrder() const;
  // Moves the column at display position `from` to display position `to`.
  void moveColumn(int from, int to);
  void resetOrder();  // definition order

 private:
  std::vector<ListColumn> columns_;
  std::vector<int> order_;
};

}  // namespace browser
