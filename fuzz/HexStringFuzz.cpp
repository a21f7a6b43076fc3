// Hex strings of the contained-text box, and the search built from them.
#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "find/HexString.h"
#include "find/TextSearch.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QString text = QString::fromLatin1(reinterpret_cast<const char*>(data), qsizetype(size));
  QByteArray bytes;
  QString message;
  if (!find::ParseHexString(text, &bytes, &message)) {
    if (message.isEmpty()) __builtin_trap();
    return 0;
  }
  // The parsed bytes searched in the raw input, both compare modes; the
  // binary compare must agree with a plain memmem.
  for (bool caseSensitive : {true, false}) {
    find::TextSearch search;
    search.SetTextCompare(caseSensitive);
    search.SetText(bytes);
    const bool found = search.foundIn(reinterpret_cast<const char*>(data), qsizetype(size));
    if (caseSensitive) {
      const bool expected = bytes.isEmpty() ? size > 0 : memmem(data, size, bytes.constData(), size_t(bytes.size())) != nullptr;
      if (found != expected) __builtin_trap();
    }
  }
  return 0;
}
