#pragma once
#include <QtGlobal>
#include <memory>
#include <vector>

namespace preview {

// Ascending 64-bit file offsets, each optionally with a 32-bit value, kept
// in 4 or 8 bytes apiece: blocks of 32-bit distances from the block's first
// offset. Blocks are never moved or copied as the table grows, so memory
// peaks at what is held, not at twice that.
class PackedOffsets {
 public:
  explicit PackedOffsets(bool withValues = false) : stride_(withValues ? 2 : 1) {}

  void clear();
  qint64 size() const { return size_; }
  bool empty() const { return size_ == 0; }

  // `offset` must not be below the last one appended.
  void append(qint64 offset, quint32 value = 0) {
    Block* b = blocks_.empty() ? nullptr : &blocks_.back();
    if (!b || b->count == b->capacity || quint64(offset - b->base) > 0xFFFFFFFFu) b = addBlock(offset);
    quint32* w = b->words.get() + qsizetype(b->count) * stride_;
    w[0] = quint32(offset - b->base);
    if (stride_ == 2) w[1] = value;
    ++b->count;
    ++size_;
  }

  // Appends base + rel[k] for k < n; for the line index, without values.
  void appendBatch(qint64 base, const quint32* rel, qint64 n);

  qint64 offset(qint64 i) const {
    const Block& b = find(i);
    return b.base + b.words[size_t((i - b.first) * stride_)];
  }
  quint32 value(qint64 i) const {
    const Block& b = find(i);
    return stride_ == 2 ? b.words[size_t((i - b.first) * 2 + 1)] : 0;
  }

  // f(offset, value) for every entry in order.
  template <class F>
  void forEach(F f) const {
    for (const Block& b : blocks_)
      for (qint32 k = 0; k < b.count; ++k) {
        const quint32* w = b.words.get() + qsizetype(k) * stride_;
        f(b.base + w[0], stride_ == 2 ? w[1] : 0u);
      }
  }

 private:
  struct Free {
    void operator()(quint32* p) const;
  };
  struct Block {
    qint64 base = 0;   // offset the distances count from
    qint64 first = 0;  // index of the block's first entry
    qint32 count = 0, capacity = 0;
    std::unique_ptr<quint32[], Free> words;
  };
  Block* addBlock(qint64 base);
  const Block& find(qint64 i) const;

  std::vector<Block> blocks_;
  int stride_;
  qint64 size_ = 0;
};

}  // namespace preview
