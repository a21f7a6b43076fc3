// Version blocks of either layout: the key walks, the translations and the
// queries of every kind of path.
#include <QByteArray>
#include <QStringList>
#include <cstddef>
#include <cstdint>

#include "fileinfo/VersionBlock.h"
#include "fileinfo/modVerStringInfo.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A fresh copy, so that reading past the block is caught by the sanitizer.
  const QByteArray block(reinterpret_cast<const char*>(data), qsizetype(size));
  modVerStringInfo::SetErrorReport([](const QString&, const QString&) {});
  modVerStringInfo::LoadVersionBlockFromBytes(block);
  QStringList names, values;
  if (modVerStringInfo::ReadLoadedVersionInfo(&names, &values) && names.size() != values.size()) __builtin_trap();
  QByteArray value;
  for (const char* path : {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo\\040904B0\\",
                           "\\StringFileInfo\\040904E4\\CompanyName", "\\StringFileInfo\\041904E3\\FileVersion"}) {
    if (fileinfo::VersionBlock::Query(block, QString::fromLatin1(path), &value) && path[1] == 0 && value.size() != 52)
      __builtin_trap();
  }
  return 0;
}
