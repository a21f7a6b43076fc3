// The PE/NE version-resource locator on arbitrary files: it must end, stay
// inside the file and only name spans inside it.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fileinfo/PeResourceLocator.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const qint64 fileSize = qint64(size);
  fileinfo::PeResourceLocator locator(
      [&](qint64 offset, char* buffer, qint64 len) -> qint64 {
        if (offset < 0 || len < 0 || offset > fileSize || len > fileSize - offset) __builtin_trap();
        memcpy(buffer, data + offset, size_t(len));
        return len;
      },
      fileSize);
  fileinfo::PeResourceLocator::Span span;
  if (locator.FindVersionResource(&span) &&
      (span.offset < 0 || span.size <= 0 || span.offset + span.size > fileSize))
    __builtin_trap();
  return 0;
}
