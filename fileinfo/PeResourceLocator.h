#pragma once
#include <QtGlobal>
#include <functional>

namespace fileinfo {

// Finds the version resource (type 16) of a Windows executable: PE32 and
// PE32+ through the section table and the resource tree (first name, any
// language), 16-bit NE through its resource table. Only the headers, the
// section table and the resource tree are read, never the whole file, and
// nothing outside [0, fileSize).
class PeResourceLocator {
 public:
  // Reads up to `len` bytes at `offset`; returns the count read.
  using ReadAt = std::function<qint64(qint64 offset, char* buffer, qint64 len)>;
  struct Span {
    qint64 offset = 0;
    qint64 size = 0;
  };

  // A resource larger than this is not a version block.
  static constexpr qint64 kMaxBlock = 1 << 20;

  PeResourceLocator(ReadAt read, qint64 fileSize) : read_(std::move(read)), fileSize_(fileSize) {}

  // False when the file is no PE/NE image or holds no usable version resource.
  bool FindVersionResource(Span* span);
  qint64 bytesRead() const { return bytesRead_; }

 private:
  bool FindInPe(qint64 header, Span* span);
  bool FindInNe(qint64 header, Span* span);
  bool Read(qint64 offset, void* buffer, qint64 len);
  bool U16(qint64 offset, quint16* v);
  bool U32(qint64 offset, quint32* v);
  bool Fits(qint64 offset, qint64 size) const;

  ReadAt read_;
  qint64 fileSize_;
  qint64 bytesRead_ = 0;
};

}  // namespace fileinfo
