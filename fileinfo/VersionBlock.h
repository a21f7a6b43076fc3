#pragma once
#include <QByteArray>
#include <QString>

namespace fileinfo {

// Queries a raw version block the way the platform's query does, on both
// layouts: the 16-bit one (length, value length, 8-bit key) and the 32-bit
// one (length, value length, type, UTF-16 key). Path parts are separated by
// "\" and compared without regard to case.
//   "\"                          the 52-byte fixed record (signature 0xFEEF04BD only)
//   "\VarFileInfo\Translation"   the translation words
//   "\StringFileInfo\TABLE\"     the table itself (empty value)
//   "\StringFileInfo\TABLE\KEY"  the string, as UTF-8: UTF-16 values are
//                                converted, 8-bit ones decoded with the table's code page
// Every read is bounded by the block and by each structure's own length.
class VersionBlock {
 public:
  enum Layout { kUnknown, k16Bit, k32Bit };

  static Layout LayoutOf(const QByteArray& block);
  // False when the path names nothing; `value` then stays as it was.
  static bool Query(const QByteArray& block, const QString& path, QByteArray* value);
  // 8-bit text in a Windows code page; Windows-1252 when the page is unknown.
  static QString DecodeCodePage(const QByteArray& bytes, quint16 codePage);
};

}  // namespace fileinfo
