#pragma once
#include <QString>
#include <QtGlobal>

namespace platform {

// Attribute bits as the rest of the program knows them.
enum AttributeBit : quint32 {
  kAttrReadOnly = 1,
  kAttrHidden = 2,
  kAttrSystem = 4,
  kAttrDirectory = 16,
  kAttrArchive = 32,
  kAttrNormal = 128,
  kAttrTemporary = 256,
  kAttrCompressed = 2048,
};

// One directory entry as an enumeration delivers it. A symbolic link carries
// its target's data (a dangling one its own) and is flagged so that walks
// never descend through it.
struct DirEntry {
  QString name;   // may hold escaped bytes (see NativePath.h)
  QString alias;  // 8.3 short name, empty where the file system keeps none
  quint32 attributes = 0;
  qint64 creationTime = 0;  // FILETIME, 0 = unknown
  qint64 lastAccessTime = 0;
  qint64 lastWriteTime = 0;
  quint64 size = 0;
  bool isLink = false;

  bool isDirectory() const { return attributes & kAttrDirectory; }
};

}  // namespace platform
