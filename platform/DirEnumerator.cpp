#include "platform/DirEnumerator.h"

namespace platform {

DirEnumerator::DirEnumerator(const QString& folder, QStringView pattern) : reader_(folder), pattern_(pattern) {}

bool DirEnumerator::next(DirEntry* out) {
  while (index_ < reader_.count()) {
    const qsizetype i = index_++;
    const QString& alias = reader_.alias(i);
    if (!pattern_.matches(reader_.name(i)) && (alias.isEmpty() || !pattern_.matches(alias))) continue;
    if (reader_.stat(i, out)) return true;
  }
  return false;
}

}  // namespace platform
