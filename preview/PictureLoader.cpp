#include "preview/PictureLoader.h"

#include <QFile>
#include <QImageReader>
#include <QPixelFormat>

#include "preview/WmfRenderer.h"

namespace preview {

namespace {

// Pixels a decoder may produce at 4 bytes each within the allocation limit.
constexpr qint64 kMaxPixels = qint64(kAllocationLimitMb) * 1024 * 1024 / 4;
// Icon files of thousands of entries are not searched to the end.
constexpr int kMaxIconImages = 64;

void Prepare(QImageReader& reader) {
  // The content decides: a file whose extension lies still shows.
  reader.setDecideFormatFromContent(true);
  reader.setAllocationLimit(kAllocationLimitMb);
}

int BitsOf(QImage::Format format) {
  if (format == QImage::Format_Invalid) return 0;
  const QPixelFormat pf = QImage::toPixelFormat(format);
  const int bits = int(pf.bitsPerPixel());
  // 32-bit formats without alpha carry 24 bits of colour.
  return bits == 32 && pf.alphaUsage() == QPixelFormat::IgnoresAlpha ? 24 : bits;
}

bool IsIconFile(const QString& path) {
  const QString ext = modImgInfo::ExtensionOf(path);
  return ext == u"ico" || ext == u"cur";
}

// Icons and cursors hold several images: the largest is shown, the deepest
// of equal size.
void ChooseBestImage(QImageReader& reader, PictureProbe& p) {
  const int count = std::min(reader.imageCount(), kMaxIconImages);
  qint64 bestArea = -1;
  int bestBits = -1;
  for (int i = 0; i < count; ++i) {
    if (!reader.jumpToImage(i)) break;
    const QSize s = reader.size();
    const qint64 area = s.isValid() ? qint64(s.width()) * s.height() : 0;
    const int bits = BitsOf(reader.imageFormat());
    if (area > bestArea || (area == bestArea && bits > bestBits)) {
      bestArea = area;
      bestBits = bits;
      p.index = i;
      p.size = s;
      p.bits = bits;
    }
  }
  reader.jumpToImage(p.index);
}

PictureProbe Probe(QImageReader& reader, bool icon) {
  PictureProbe p;
  Prepare(reader);
  if (!reader.canRead()) return p;
  p.ok = true;
  p.format = reader.format();
  if (icon && reader.imageCount() > 1) {
    ChooseBestImage(reader, p);
  } else {
    p.size = reader.size();
    p.bits = BitsOf(reader.imageFormat());
  }
  return p;
}

QString DecoderTypeText(const QByteArray& format) {
  if (format == "webp") return QStringLiteral("WebP file");
  if (format == "tiff" || format == "tif") return QStringLiteral("TIFF file");
  if (format == "svg" || format == "svgz") return QStringLiteral("SVG file");
  if (format == "xpm") return QStringLiteral("XPM file");
  return QString::fromLatin1(format.toUpper()) + QStringLiteral(" file");
}

}  // namespace

PictureProbe ProbePicture(const QString& path) {
  QFile file;
  if (!modImgInfo::OpenImageFile(path, file)) return {};
  if (modImgInfo::ExtensionOf(path) == u"wmf") {
    PictureProbe p;
    p.size = WmfRenderer::Size(file);
    p.ok = p.size.isValid();
    p.format = "wmf";
    p.bits = 24;
    return p;
  }
  QImageReader reader(&file);
  return Probe(reader, IsIconFile(path));
}

LoadedPicture LoadPicture(const QString& path, QSize area, bool zoom) {
  LoadedPicture out;
  QFile file;
  if (!modImgInfo::OpenImageFile(path, file)) return out;
  if (modImgInfo::ExtensionOf(path) == u"wmf") {
    out.size = WmfRenderer::Size(file);
    if (!out.size.isValid()) return out;
    out.fit = modImgInfo::FitPreviewSize(out.size, area, zoom);
    out.image = WmfRenderer::Render(file, out.fit.shown, kMaxPixels);
    out.ok = !out.image.isNull();
    return out;
  }
  QImageReader reader(&file);
  const PictureProbe p = Probe(reader, IsIconFile(path));
  if (!p.ok) return out;
  // Vector pictures are drawn at the shown size and JPEG scales while
  // decoding; every other decoder first makes the whole picture.
  const bool scalesWhileDecoding = p.format == "jpeg" || p.format == "svg" || p.format == "svgz";
  if (p.size.isValid()) {
    out.size = p.size;
    out.fit = modImgInfo::FitPreviewSize(p.size, area, zoom);
    const QSize made = out.fit.scaled && scalesWhileDecoding ? out.fit.shown : p.size;
    if (qint64(made.width()) * made.height() > kMaxPixels) return out;
    if (out.fit.scaled) reader.setScaledSize(out.fit.shown);
  }
  QImage image = reader.read();
  if (image.isNull()) return out;
  if (!p.size.isValid()) {
    out.size = image.size();
    out.fit = modImgInfo::FitPreviewSize(out.size, area, zoom);
    if (out.fit.scaled) image = image.scaled(out.fit.shown, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  }
  out.image = std::move(image);
  out.ok = true;
  return out;
}

bool ReadPictureFacts(const QString& path, modImgInfo::ImageHeader& record) {
  const QString ext = modImgInfo::ExtensionOf(path);
  if (modImgInfo::KindOf(ext) == modImgInfo::Kind::kHeader) return modImgInfo::ReadImageHeader(path, record);
  record = modImgInfo::ImageHeader();
  if (modImgInfo::KindOf(ext) == modImgInfo::Kind::kNone) return false;
  QFile file;
  PictureProbe p;
  if (modImgInfo::OpenImageFile(path, file)) {
    QImageReader reader(&file);
    p = Probe(reader, false);
    if (p.ok && p.bits == 0 && p.size.isValid()) {
      // Some decoders name their pixel format only once they decode: a
      // one-pixel decode tells it without making the whole picture.
      reader.setScaledSize(QSize(1, 1));
      p.bits = BitsOf(reader.read().format());
    }
  }
  if (!p.ok || !p.size.isValid()) {
    record.typeText = QString::fromLatin1(modImgInfo::kUnrecognized);
    return false;
  }
  record.typeText = DecoderTypeText(p.format);
  record.width = p.size.width();
  record.height = p.size.height();
  record.bits = qint16(p.bits);
  record.colorsText = modImgInfo::ColorsText(p.bits);
  return true;
}

}  // namespace preview
