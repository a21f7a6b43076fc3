#include "preview/WmfRenderer.h"

#include <QIODevice>
#include <QMutex>
#include <QMutexLocker>

#include <cstdlib>

extern "C" {
#include <libwmf/api.h>
#include <libwmf/gd.h>
#include <libwmf/gd/gd.h>
}

namespace preview {

namespace {

// Metafiles larger than this are not read into memory.
constexpr qint64 kMaxFileBytes = 64LL * 1024 * 1024;
constexpr double kDotsPerInch = 96;

// The library sizes its record buffer from the header's largest-record
// field before reading a record: a header must not claim more than the file
// holds.
bool PlausibleHeader(const QByteArray& data) {
  auto le16 = [&data](qsizetype at) { return quint32(uchar(data[at])) | quint32(uchar(data[at + 1])) << 8; };
  qsizetype at = 0;
  if (data.size() >= 22 && le16(0) == 0xCDD7 && le16(2) == 0x9AC6) at = 22;  // placeable header first
  if (data.size() < at + 18) return false;
  const quint32 type = le16(at), headerWords = le16(at + 2);
  const quint64 maxRecordWords = le16(at + 12) | quint64(le16(at + 14)) << 16;
  return (type == 1 || type == 2) && headerWords == 9 && maxRecordWords * 2 <= quint64(data.size());
}

// The picture the library drew is the caller's to free, and the library
// does not export the call that frees it: its parts were allocated with
// malloc. Pattern brushes and tiles stay the library's.
void FreeDrawnImage(void* drawn) {
  auto* image = static_cast<gdImagePtr>(drawn);
  std::free(image->_tpixels);
  std::free(image->tpixels);
  std::free(image->polyInts);
  std::free(image->style);
  if (image->clip) std::free(image->clip->list);
  std::free(image->clip);
  std::free(image);
}

QMutex& LibraryLock() {
  static QMutex lock;
  return lock;
}

// One opened and scanned metafile; destroyed with the library's handle.
class Session {
 public:
  explicit Session(QIODevice& file) {
    if (file.size() > kMaxFileBytes) return;
    file.seek(0);
    data_ = file.readAll();
    if (!PlausibleHeader(data_)) return;
    wmfAPI_Options options{};
    options.function = wmf_gd_function;
    const unsigned long flags = WMF_OPT_FUNCTION | WMF_OPT_IGNORE_NONFATAL | WMF_OPT_NO_ERROR | WMF_OPT_NO_DEBUG;
    if (wmf_api_create(&api_, flags, &options) != wmf_E_None) {
      if (api_) wmf_api_destroy(api_);
      api_ = nullptr;
      return;
    }
    ok_ = wmf_mem_open(api_, reinterpret_cast<unsigned char*>(data_.data()), long(data_.size())) == wmf_E_None &&
          wmf_scan(api_, 0, &bbox_) == wmf_E_None;
  }
  ~Session() {
    if (api_) wmf_api_destroy(api_);
    if (drawn_) FreeDrawnImage(drawn_);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  QSize size() {
    unsigned int w = 0, h = 0;
    if (!ok_ || wmf_display_size(api_, &w, &h, kDotsPerInch, kDotsPerInch) != wmf_E_None) return {};
    if (w == 0 || h == 0 || w > 1u << 20 || h > 1u << 20) return {};
    return QSize(int(w), int(h));
  }

  QImage render(QSize size) {
    if (!ok_) return {};
    wmf_gd_t* device = WMF_GD_GetData(api_);
    device->type = wmf_gd_image;
    device->width = unsigned(size.width());
    device->height = unsigned(size.height());
    device->bbox = bbox_;
    const bool played = wmf_play(api_, 0, &bbox_) == wmf_E_None;
    drawn_ = device->gd_image;
    device->gd_image = nullptr;
    if (!played || !drawn_) return {};
    const int* pixels = wmf_gd_image_pixels(drawn_);
    if (!pixels) return {};
    QImage image(size, QImage::Format_ARGB32);
    if (image.isNull()) return {};
    for (int y = 0; y < size.height(); ++y) {
      auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
      for (int x = 0; x < size.width(); ++x) {
        // The library's pixels: 7 bits of transparency over 0xRRGGBB.
        const unsigned p = unsigned(pixels[qsizetype(y) * size.width() + x]);
        const int alpha = 255 - int((p >> 24) & 0x7F) * 255 / 127;
        line[x] = qRgba(int((p >> 16) & 0xFF), int((p >> 8) & 0xFF), int(p & 0xFF), alpha);
      }
    }
    return image;
  }

 private:
  QByteArray data_;
  wmfAPI* api_ = nullptr;
  void* drawn_ = nullptr;
  wmfD_Rect bbox_{};
  bool ok_ = false;
};

}  // namespace

QSize WmfRenderer::Size(QIODevice& file) {
  QMutexLocker lock(&LibraryLock());
  Session session(file);
  return session.size();
}

QImage WmfRenderer::Render(QIODevice& file, QSize size, qint64 maxPixels) {
  if (size.isEmpty() || qint64(size.width()) * size.height() > maxPixels) return {};
  QMutexLocker lock(&LibraryLock());
  Session session(file);
  return session.render(size);
}

}  // namespace preview
