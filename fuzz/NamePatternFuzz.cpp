// Name patterns as typed into "Named": split, normalise, compile, match.
#include <QString>
#include <cstddef>
#include <cstdint>

#include "find/NamePatterns.h"
#include "platform/WildcardPattern.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const bool exact = data[0] & 1;
  const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
  const QStringList patterns = find::NormalisePatterns(text, exact);
  if (patterns.isEmpty()) __builtin_trap();  // never empty
  if (patterns.contains(QStringLiteral("*.*")) && patterns.size() != 1) __builtin_trap();
  for (const QString& p : patterns) {
    const platform::WildcardPattern pattern(p);
    pattern.matches(text.left(64));
  }
  return 0;
}
