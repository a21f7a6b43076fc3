// Arbitrary bytes through the picture header reader under every extension
// it has a rule for, and the facts block built from what it read.
#include <QBuffer>
#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "preview/modImgInfo.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  for (const char* ext : {"bmp", "dib", "ico", "cur", "gif", "jpg", "jpeg", "png", "wmf", "rle"}) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    modImgInfo::ImageHeader h;
    const bool ok = modImgInfo::ParseImageHeader(QString::fromLatin1(ext), buffer, h);
    if (!ok && h.typeText != QLatin1String(modImgInfo::kUnrecognized)) std::abort();
    if (ok && h.colorsText.isEmpty()) std::abort();
    if (h.width < 0) {
      // Only a bitmap's width field is signed.
      if (ext[0] != 'b' && ext[0] != 'd') std::abort();
    }
    const QStringList lines = modImgInfo::FactsLines(h, double(size), 24);
    if (lines.size() != 5) std::abort();
    const modImgInfo::Fit fit = modImgInfo::FitPreviewSize(QSize(h.width, h.height), QSize(400, 300), ok);
    if (fit.scaled && (fit.shown.width() > 400 || fit.shown.height() > 300 || fit.shown.isEmpty())) std::abort();
    modImgInfo::FormatPreviewSize(h.width, h.height, fit.scaled, fit.shown.width(), fit.shown.height());
  }
  return 0;
}
