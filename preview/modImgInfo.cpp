#include "preview/modImgInfo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QByteArrayView>
#include <QFile>
#include <QFileInfo>
#include <cmath>
#include <limits>

#include "core/NumberFormat.h"
#include "core/Rounding.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"

namespace modImgInfo {

namespace {

// The extensions with a header rule; ".png." is ours beyond them.
constexpr QStringView kHeaderList = u".gif.ico.cur.wmf.jpg.jpeg.bmp.dib.rle.png.";
// Previewed through the decoder's own facts.
constexpr QStringView kDecoderList = u".webp.tif.tiff.svg.svgz.xpm.";

constexpr qint64 kJpegSearch = 10000;

quint16 Le16(const char* p) { return quint16(uchar(p[0]) | uchar(p[1]) << 8); }
quint32 Le32(const char* p) {
  return quint32(uchar(p[0])) | quint32(uchar(p[1])) << 8 | quint32(uchar(p[2])) << 16 | quint32(uchar(p[3])) << 24;
}
quint16 Be16(const char* p) { return quint16(uchar(p[0]) << 8 | uchar(p[1])); }
quint32 Be32(const char* p) {
  return quint32(uchar(p[0])) << 24 | quint32(uchar(p[1])) << 16 | quint32(uchar(p[2])) << 8 | quint32(uchar(p[3]));
}

bool InList(QStringView list, QStringView ext) {
  if (ext.isEmpty() || ext.contains(u'.')) return false;
  return list.contains(QString(u'.' + ext.toString() + u'.'), Qt::CaseInsensitive);
}

bool Unrecognized(ImageHeader& r) {
  r.typeText = QString::fromLatin1(kUnrecognized);
  return false;
}

bool ReadBitmap(QIODevice& in, bool dib, ImageHeader& r) {
  const QByteArray b = in.read(14 + 40);
  if (b.size() < 54 || Le16(b.constData()) != 0x4D42) return Unrecognized(r);
  const char* info = b.constData() + 14;
  r.typeText = dib ? QStringLiteral("Device-independent bitmap") : QStringLiteral("Bitmap file");
  r.width = qint32(Le32(info + 4));
  r.height = qint32(Le32(info + 8));
  // A negative height marks rows stored top-down; the picture is as high.
  if (r.height < 0 && r.height != std::numeric_limits<qint32>::min()) r.height = -r.height;
  r.bits = qint16(Le16(info + 14));
  return true;
}

// Icons and cursors share the layout; the type word tells them apart.
bool ReadIconDirectory(QIODevice& in, bool cursor, ImageHeader& r) {
  const QByteArray b = in.read(6 + 16);
  if (b.size() < 22) return Unrecognized(r);
  const char* p = b.constData();
  const quint16 count = Le16(p + 4);
  // With no images there is no entry to read the facts from.
  if (Le16(p + 2) != (cursor ? 2 : 1) || count == 0) return Unrecognized(r);
  const char* entry = p + 6;
  // A size byte of 0 stands for 256 pixels.
  r.width = uchar(entry[0]) ? uchar(entry[0]) : 256;
  r.height = uchar(entry[1]) ? uchar(entry[1]) : 256;
  const int colours = uchar(entry[2]);
  r.bits = colours == 0 ? (cursor ? 1 : 8) : qint16(core::RoundHalfEven(std::log2(double(colours))));
  if (cursor) {
    r.typeText = QStringLiteral("Cursor file");
    r.note = QStringLiteral("Hotspot at: %1, %2").arg(Le16(entry + 4)).arg(Le16(entry + 6));
  } else {
    r.typeText = QStringLiteral("Icon file");
    if (count > 1) r.note = QStringLiteral("Icons contained: ") + QString::number(count);
  }
  return true;
}

bool ReadGif(QIODevice& in, ImageHeader& r) {
  const QByteArray b = in.read(6 + 7);
  if (b.size() < 13 || !b.startsWith("GIF")) return Unrecognized(r);
  r.typeText = QString::fromLatin1(b.left(6));
  r.width = Le16(b.constData() + 6);
  r.height = Le16(b.constData() + 8);
  r.bits = qint16((uchar(b[10]) & 7) + 1);
  return true;
}

bool ReadJpeg(QIODevice& in, ImageHeader& r) {
  // The frame header's size fields may lie a few bytes past the searched part.
  const QByteArray b = in.read(kJpegSearch + 8);
  if (b.size() < 2 || uchar(b[0]) != 0xFF || uchar(b[1]) != 0xD8) return Unrecognized(r);
  const QByteArrayView searched(b.constData(), std::min<qsizetype>(b.size(), kJpegSearch));
  qsizetype at = -1;
  for (const char* marker : {"\xFF\xC0", "\xFF\xC2"}) {
    at = searched.indexOf(QByteArrayView(marker, 2));
    if (at < 0) continue;
    // An embedded thumbnail's frame comes first; the picture's is the second.
    const qsizetype second = searched.indexOf(QByteArrayView(marker, 2), at + 2);
    if (second >= 0) at = second;
    break;
  }
  if (at < 0) return true;  // no frame header: type, size and bits stay empty
  if (at + 9 > b.size()) return Unrecognized(r);
  QString type = QStringLiteral("JPEG file");
  if (b.size() >= 13 && b.mid(6, 4) == "JFIF")
    type += QStringLiteral(" (JFIF v%1.%2)").arg(uchar(b[11])).arg(uchar(b[12]));
  r.typeText = type;
  r.height = Be16(b.constData() + at + 5);
  r.width = Be16(b.constData() + at + 7);
  r.bits = 24;
  return true;
}

bool ReadPng(QIODevice& in, ImageHeader& r) {
  const QByteArray b = in.read(8 + 8 + 13);
  if (b.size() < 29 || !b.startsWith("\x89PNG\r\n\x1A\n") || b.mid(12, 4) != "IHDR") return Unrecognized(r);
  const quint32 w = Be32(b.constData() + 16);
  const quint32 h = Be32(b.constData() + 20);
  const int depth = uchar(b[24]);
  int channels = 0;
  switch (uchar(b[25])) {
    case 0: channels = 1; break;  // grey
    case 2: channels = 3; break;  // RGB
    case 3: channels = 1; break;  // palette
    case 4: channels = 2; break;  // grey + alpha
    case 6: channels = 4; break;  // RGBA
    default: return Unrecognized(r);
  }
  if (w > quint32(std::numeric_limits<qint32>::max()) || h > quint32(std::numeric_limits<qint32>::max()) ||
      depth == 0 || depth > 16)
    return Unrecognized(r);
  r.typeText = QStringLiteral("PNG file");
  r.width = qint32(w);
  r.height = qint32(h);
  r.bits = qint16(depth * channels);
  return true;
}

}  // namespace

QString StatusText(int code) {
  switch (code) {
    case kStatusLoading: return QStringLiteral("Loading...");
    case kStatusCannotDecode: return QStringLiteral("Cannot decode.");
    case kStatusExcluded: return QStringLiteral("File type excluded from preview in configuration.");
    case kStatusNotPreviewed: return QStringLiteral("Not a previewed format.");
    default: return QString();
  }
}

Kind KindOf(QStringView ext) {
  if (InList(kHeaderList, ext)) return Kind::kHeader;
  if (InList(kDecoderList, ext)) return Kind::kDecoder;
  return Kind::kNone;
}

QString ExtensionOf(const QString& path) {
  const qsizetype slash = path.lastIndexOf(u'/');
  const qsizetype dot = path.lastIndexOf(u'.');
  return dot > slash ? path.mid(dot + 1).toLower() : QString();
}

bool IsExcluded(QStringView ext, const QString& noPrevI) {
  return !ext.isEmpty() && noPrevI.contains(QString(u'.' + ext.toString() + u'.'), Qt::CaseInsensitive);
}

int StatusFor(QStringView ext, const QString& noPrevI) {
  if (KindOf(ext) == Kind::kNone) return kStatusNotPreviewed;
  return IsExcluded(ext, noPrevI) ? kStatusExcluded : kStatusLoading;
}

double FileLength(const QString& path) {
  platform::DirEntry entry;
  return platform::StatPath(path, &entry) ? double(entry.size) : 0;
}

bool OpenImageFile(const QString& path, QFile& file) {
  const int fd = ::open(platform::ToNative(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) return false;
  struct stat st {};
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || !file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
    ::close(fd);
    return false;
  }
  return true;
}

bool ParseImageHeader(QStringView ext, QIODevice& in, ImageHeader& r) {
  r = ImageHeader();
  const QString e = ext.toString().toLower();
  bool ok = false;
  if (e == u"bmp" || e == u"dib") ok = ReadBitmap(in, e == u"dib", r);
  else if (e == u"ico" || e == u"cur") ok = ReadIconDirectory(in, e == u"cur", r);
  else if (e == u"gif") ok = ReadGif(in, r);
  else if (e == u"jpg" || e == u"jpeg") ok = ReadJpeg(in, r);
  else if (e == u"png") ok = ReadPng(in, r);
  else if (e == u"wmf" || e == u"rle") {
    r.typeText = e == u"wmf" ? QStringLiteral("Windows Meta File") : QStringLiteral("Run-length-encoded file");
    r.bits = 24;
    ok = true;
  } else {
    return false;
  }
  if (ok) r.colorsText = ColorsText(r.bits);
  return ok;
}

bool ReadImageHeader(const QString& path, ImageHeader& record) {
  record = ImageHeader();
  const QString ext = ExtensionOf(path);
  if (KindOf(ext) != Kind::kHeader) return false;
  QFile file;
  if (!OpenImageFile(path, file)) {
    record.typeText = QString::fromLatin1(kUnrecognized);
    return false;
  }
  return ParseImageHeader(ext, file, record);
}

QString ColorsText(int bits) {
  if (bits == 24) return QStringLiteral("16M");
  if (bits > 24) return QStringLiteral("16M+");
  return QString::number(std::ldexp(1.0, bits), 'g', 15);
}

QStringList FactsLines(const ImageHeader& r, double fileSize, int screenBits) {
  const double area = double(r.width) * double(r.height);
  const double raw = area * double(r.bits) / 8;
  QStringList lines;
  lines << QStringLiteral("Type: ") + r.typeText;
  lines << QStringLiteral("Colors: %1 (%2-bit)").arg(r.colorsText).arg(r.bits);
  lines << QStringLiteral("Area: ") + core::FormatNumber(area, u"#,0") + QStringLiteral(" pixels (") +
               core::FormatNumber(area * screenBits / 8, u"#,0") + QStringLiteral(" video bytes)");
  lines << QStringLiteral("File size: ") + core::FormatNumber(fileSize, u"#,0") + QStringLiteral(" bytes");
  // Without an area there is nothing to compare the file with.
  lines << QStringLiteral("Compression ratio: ") + (raw > 0 ? core::FormatNumber(fileSize / raw, u"#,0.00%") : QString());
  return lines;
}

QString FormatPreviewSize(int width, int height, bool zoomed, int shownWidth, int shownHeight) {
  QString s = QStringLiteral("Size: %1 x %2").arg(width).arg(height);
  if (!zoomed) return s;
  if (shownWidth < width) s += QStringLiteral(", reduced to %1 x %2").arg(shownWidth).arg(shownHeight);
  else if (shownWidth > width) s += QStringLiteral(", zoomed to %1 x %2").arg(shownWidth).arg(shownHeight);
  if (width > 0) s += QStringLiteral(" (%1%)").arg(qint64(core::RoundHalfEven(double(shownWidth) / width * 100)));
  return s;
}

Fit FitPreviewSize(QSize picture, QSize area, bool zoom) {
  Fit f{picture, false};
  if (picture.width() <= 0 || picture.height() <= 0 || area.width() <= 0 || area.height() <= 0) return f;
  if (!zoom && picture.width() <= area.width() && picture.height() <= area.height()) return f;
  const double sx = double(area.width()) / picture.width();
  const double sy = double(area.height()) / picture.height();
  if (sx <= sy) {
    f.shown = QSize(area.width(), std::max(1, int(core::RoundHalfEven(picture.height() * sx))));
  } else {
    f.shown = QSize(std::max(1, int(core::RoundHalfEven(picture.width() * sy))), area.height());
  }
  f.scaled = true;
  return f;
}

}  // namespace modImgInfo
