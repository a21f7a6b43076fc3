#include "preview/PackedOffsets.h"

#include <algorithm>

namespace preview {

void PackedOffsets::clear() {
  blocks_.clear();
  blocks_.shrink_to_fit();
  size_ = 0;
}

PackedOffsets::Block* PackedOffsets::addBlock(qint64 base) {
  // Small files get a small first block; large ones 64 K entries a block.
  const qint32 capacity = qint32(1024) << std::min<size_t>(blocks_.size(), 6);
  Block b;
  b.base = base;
  b.first = size_;
  b.capacity = capacity;
  b.words.reset(new quint32[size_t(capacity) * size_t(stride_)]);
  blocks_.push_back(std::move(b));
  return &blocks_.back();
}

const PackedOffsets::Block& PackedOffsets::find(qint64 i) const {
  Q_ASSERT(i >= 0 && i < size_);
  if (i >= blocks_.back().first) return blocks_.back();
  const auto it = std::upper_bound(blocks_.begin(), blocks_.end(), i, [](qint64 n, const Block& b) { return n < b.first; });
  return *(it - 1);
}

}  // namespace preview
