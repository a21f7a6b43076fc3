#include "browser/list/TypeAhead.h"

#include "browser/list/FoldCase.h"

namespace browser {

void TypeAhead::reset() {
  typed_.clear();
  lastKey_ = QChar();
  lastTime_ = -1e9;
}

int TypeAhead::search(QChar key, double nowSeconds, int focus, int rowCount, const NameAt& nameAt) {
  const bool extend = key != lastKey_ && nowSeconds - lastTime_ < 0.5;
  int start;
  if (extend) {
    typed_.append(key);
    start = focus;
  } else {
    typed_ = QString(key);
    start = focus + 1;
  }
  lastTime_ = nowSeconds;
  lastKey_ = key;
  if (rowCount <= 0) return focus;

  const QString wanted = FoldCase(typed_);
  // Extending tests every row from the focus on; starting over tests every
  // row but the focus. Past the end the search wraps, unless the focus is row 0.
  const int toTest = extend ? rowCount : rowCount - 1;
  int position = start;
  for (int tested = 0; tested < toTest; ++tested, ++position) {
    if (position >= rowCount) {
      if (focus == 0) break;
      position = 0;
    }
    const QStringView name = nameAt(position);
    if (name.size() >= wanted.size() && name.left(wanted.size()) == QStringView(wanted)) return position;
  }
  return focus;
}

}  // namespace browser
