// Name patterns and native names: arbitrary bytes split into a pattern and a
// name must match without crashing, and every native name must survive the
// round trip through QString.
#include <cstddef>
#include <cstdint>

#include "platform/NativePath.h"
#include "platform/WildcardPattern.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const char* bytes = reinterpret_cast<const char*>(data);
  size_t cut = 0;
  while (cut < size && bytes[cut] != '\n') ++cut;
  const QString pattern = platform::FromNative(bytes, qsizetype(cut));
  const QString name = platform::FromNative(bytes + (cut < size ? cut + 1 : cut), qsizetype(size - (cut < size ? cut + 1 : cut)));
  platform::WildcardPattern(pattern).matches(name);

  const QByteArray raw(bytes, qsizetype(size));
  if (platform::ToNative(platform::FromNative(raw)) != raw) __builtin_trap();
  platform::DisplayText(platform::FromNative(raw));
  return 0;
}
