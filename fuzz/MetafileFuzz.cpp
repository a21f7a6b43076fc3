// Arbitrary bytes as a metafile through the renderer: sized, then drawn
// small. The library is old C; what it cannot read must fail, not crash.
#include <QBuffer>
#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "preview/WmfRenderer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::ReadOnly);
  const QSize s = preview::WmfRenderer::Size(buffer);
  if (s.isValid() && (s.width() <= 0 || s.height() <= 0)) std::abort();
  const QImage image = preview::WmfRenderer::Render(buffer, QSize(64, 48), 64 * 48);
  if (!image.isNull() && image.size() != QSize(64, 48)) std::abort();
  return 0;
}
