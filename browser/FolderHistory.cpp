#include "browser/FolderHistory.h"

namespace browser {

void FolderHistory::Visit(const QString& folder) {
  if (folder.isEmpty()) return;
  if (position_ >= 0 && entries_[position_] == folder) return;
  entries_.erase(entries_.begin() + (position_ + 1), entries_.end());
  entries_.append(folder);
  if (entries_.size() > kMaxEntries) entries_.removeFirst();
  position_ = entries_.size() - 1;
}

QString FolderHistory::GoBack() { return canGoBack() ? GoTo(position_ - 1) : QString(); }

QString FolderHistory::GoForward() { return canGoForward() ? GoTo(position_ + 1) : QString(); }

QString FolderHistory::GoTo(qsizetype index) {
  if (index < 0 || index >= entries_.size()) return QString();
  position_ = index;
  return entries_[index];
}

void FolderHistory::clear() {
  entries_.clear();
  position_ = -1;
}

}  // namespace browser
