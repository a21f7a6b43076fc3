#pragma once
#include <QString>
#include <QStringList>

namespace browser {

// The folders the list has shown, for Back/Forward (Alt+Left/Right) and the
// history menu. A new visit drops the entries ahead of the present one, as a
// web browser does; revisiting the present folder changes nothing.
class FolderHistory {
 public:
  static constexpr qsizetype kMaxEntries = 30;

  void Visit(const QString& folder);
  bool canGoBack() const { return position_ > 0; }
  bool canGoForward() const { return position_ + 1 < entries_.size(); }
  // Moves and returns the folder to show; empty when there is none.
  QString GoBack();
  QString GoForward();
  QString GoTo(qsizetype index);

  const QStringList& entries() const { return entries_; }  // oldest first
  qsizetype position() const { return position_; }
  void clear();

 private:
  QStringList entries_;
  qsizetype position_ = -1;
};

}  // namespace browser
