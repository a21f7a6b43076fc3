#include "preview/PackedOffsets.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <sys/mman.h>

namespace preview {

void PackedOffsets::clear() {
  blocks_.clear();
  blocks_.shrink_to_fit();
  size_ = 0;
}

void PackedOffsets::Free::operator()(quint32* p) const { std::free(p); }

PackedOffsets::Block* PackedOffsets::addBlock(qint64 base) {
  // Small files get small blocks; large ones blocks of 2 or 4 MB, in huge
  // pages where the system has them (a few faults instead of thousands).
  constexpr size_t kHuge = 2 << 20;
  const qint32 capacity = qint32(1024) << std::min<size_t>(blocks_.size(), 9);
  const size_t bytes = size_t(capacity) * size_t(stride_) * sizeof(quint32);
  void* words = bytes % kHuge == 0 ? std::aligned_alloc(kHuge, bytes) : std::malloc(bytes);
  if (!words) throw std::bad_alloc();
  if (bytes % kHuge == 0) madvise(words, bytes, MADV_HUGEPAGE);
  Block b;
  b.base = base;
  b.first = size_;
  b.capacity = capacity;
  b.words.reset(static_cast<quint32*>(words));
  blocks_.push_back(std::move(b));
  return &blocks_.back();
}

void PackedOffsets::appendBatch(qint64 base, const quint32* rel, qint64 n) {
  Q_ASSERT(stride_ == 1);
  while (n > 0) {
    Block* b = blocks_.empty() ? nullptr : &blocks_.back();
    if (!b || b->count == b->capacity || quint64(base + rel[0] - b->base) > 0xFFFFFFFFu) b = addBlock(base + rel[0]);
    const qint64 take = std::min<qint64>(n, b->capacity - b->count);
    if (quint64(base + rel[take - 1] - b->base) > 0xFFFFFFFFu) {  // the block ends 4 GB on
      append(base + rel[0]);
      ++rel;
      --n;
      continue;
    }
    // The distance of each fits 32 bits, so wrapping sums give it exactly.
    const quint32 shift = quint32(quint64(base - b->base));
    quint32* w = b->words.get() + b->count;
    for (qint64 k = 0; k < take; ++k) w[k] = shift + rel[k];
    b->count += qint32(take);
    size_ += take;
    rel += take;
    n -= take;
  }
}

const PackedOffsets::Block& PackedOffsets::find(qint64 i) const {
  Q_ASSERT(i >= 0 && i < size_);
  if (i >= blocks_.back().first) return blocks_.back();
  const auto it = std::upper_bound(blocks_.begin(), blocks_.end(), i, [](qint64 n, const Block& b) { return n < b.first; });
  return *(it - 1);
}

}  // namespace preview
