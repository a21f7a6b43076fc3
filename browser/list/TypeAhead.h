#pragma once
#include <QChar>
#include <QString>
#include <functional>

namespace browser {

// Find-as-you-type over the list's names. Keys within half a second that
// differ from the last one extend the typed text and search from the focus
// row itself; a repeated key or a pause starts over from the row after it.
class TypeAhead {
 public:
  // Name of the row at a display position, without its group mark, as the
  // folded text to compare against.
  using NameAt = std::function<QStringView(int position)>;

  // The target position (the focus row when nothing matches).
  int search(QChar key, double nowSeconds, int focus, int rowCount, const NameAt& nameAt);
  void reset();
  const QString& typed() const { return typed_; }

 private:
  QString typed_;
  QChar lastKey_;
  double lastTime_ = -1e9;
};

}  // namespace browser
