#pragma once
#include <QString>
#include <QStringView>

#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/WildcardPattern.h"

namespace platform {

// The FindFirstFile/FindNextFile pair: the entries of one folder whose name
// (or 8.3 alias) matches a pattern, in file-system order. Names that do not
// match are never stat'ed. An unreadable folder is simply not valid.
class DirEnumerator {
 public:
  DirEnumerator(const QString& folder, QStringView pattern);

  bool isValid() const { return reader_.isOpen(); }
  bool next(DirEntry* out);

 private:
  FolderReader reader_;
  WildcardPattern pattern_;
  qsizetype index_ = 0;
};

}  // namespace platform
