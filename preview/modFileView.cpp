#include "preview/modFileView.h"

#include <QFile>
#include <QStringDecoder>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/NativePath.h"
#include "preview/FileScan.h"
#include "platform/SafeRename.h"

namespace preview {

namespace {

// Opens a regular file for reading; -1 with `error` set otherwise.
int OpenRegular(const QString& path, qint64* length, QString* error) {
  const int fd = open(platform::ToNative(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0) {
    if (error) *error = platform::ErrorText(errno);
    return -1;
  }
  struct stat st {};
  if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    if (error) *error = S_ISDIR(st.st_mode) ? platform::ErrorText(EISDIR) : QStringLiteral("Not a regular file");
    close(fd);
    return -1;
  }
  if (length) *length = st.st_size;
  return fd;
}

// Windows-1252's characters for 128-159; the rest of 160-255 is Latin-1.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QChar Cp1252(unsigned char b) {
  if (b >= 0x80 && b < 0xA0) return QChar(kCp1252High[b - 0x80]);
  return QChar(char16_t(b));
}

// Bytes one thread scans at a time.
constexpr qint64 kDefaultPiece = 1 << 20;

constexpr char kHexUpper[] = "0123456789ABCDEF";
constexpr char kHexLower[] = "0123456789abcdef";

}  // namespace

FileKind ClassifyFile(const QString& path, qint64* length, QString* error) {
  qint64 size = 0;
  const int fd = OpenRegular(path, &size, error);
  if (length) *length = fd < 0 ? 0 : size;
  if (fd < 0) return kKindUnreadable;
  const qsizetype sample = qsizetype(std::min<qint64>(size, 1024));
  char buffer[1024];
  const qsizetype got = sample ? qsizetype(ReadFully(fd, buffer, sample, 0)) : 0;
  close(fd);
  // A file that shrank since its length was taken shows what is left.
  if (got == 0) return kKindEmpty;
  return std::memchr(buffer, 0, size_t(got)) ? kKindBinary : kKindText;
}

ViewMode ChooseView(FileKind kind, bool hexForText, bool extractForBinary) {
  switch (kind) {
    case kKindText: return hexForText ? kViewHex : kViewText;
    case kKindBinary: return extractForBinary ? kViewExtract : kViewHex;
    default: return kViewNone;
  }
}

LineEnd DetectLineEnd(qint64 crlf, qint64 lf, qint64 cr) {
  if (crlf == 0) return lf ? kLineEndUnix : cr ? kLineEndMac : kLineEndDos;
  if (lf && lf < crlf) return kLineEndUnix;
  if (cr && cr < crlf) return kLineEndMac;
  return kLineEndDos;
}

int HexOffsetDigits(qint64 length) {
  int digits = 8;
  const quint64 last = length > 0 ? quint64(length - 1) : 0;
  while (digits < 16 && (last >> (4 * digits)) != 0) ++digits;
  return digits;
}

QString HexHeaderLine(int offsetDigits) {
  return QString(offsetDigits + 3, u' ') + QStringLiteral("0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f   0123456789abcdef");
}

QString FormatHexLine(const unsigned char* bytes, int count, qint64 offset, int offsetDigits) {
  QString line(offsetDigits + 68, u' ');
  QChar* out = line.data();
  for (int d = offsetDigits - 1, i = 0; d >= 0; --d, ++i) out[i] = QLatin1Char(kHexLower[(quint64(offset) >> (4 * d)) & 0xF]);
  const int base = offsetDigits;  // ":" then byte i at base + 2 + 3i
  out[base] = u':';
  for (int i = 0; i < count && i < 16; ++i) {
    out[base + 2 + 3 * i] = QLatin1Char(kHexUpper[bytes[i] >> 4]);
    out[base + 3 + 3 * i] = QLatin1Char(kHexUpper[bytes[i] & 0xF]);
    out[base + 52 + i] = bytes[i] < 32 ? QChar(u'.') : Cp1252(bytes[i]);
  }
  out[base + 50] = u';';
  return line;
}

bool IsTextByte(unsigned char b, bool international) {
  if (b >= 32 && b <= 126) return b != 94 && b != 96;
  return international && b >= 191 && b <= 253;
}

bool ScanTextRuns(const QString& path, bool international, PackedOffsets* runs,
                  const std::function<bool(qint64, qint64)>& progress, qint64 pieceBytes) {
  qint64 length = 0;
  const int fd = OpenRegular(path, &length, nullptr);
  if (fd < 0) return false;
  constexpr qint64 kBlock = 2048;
  const qint64 piece = pieceBytes > 0 ? pieceBytes : kDefaultPiece;
  // The last block's padding closes a run that reaches the end of the bytes.
  const qint64 padded = (length + kBlock - 1) / kBlock * kBlock;
  const auto record = [runs](qint64 start, qint64 n) {
    if (n >= 5) runs->append(start, quint32(std::min<qint64>(n, 0x7FFFFFFF)));
  };
  qint64 open = -1;  // first byte of the run still open, -1 none
  // Adds a piece scanned on its own: its leading text bytes carry on (or
  // close) the run open before it.
  const auto join = [&](const RunPiece& p, qint64 base) {
    if (p.got > 0 && p.prefix == p.got) {
      if (open < 0) open = base;
      return;
    }
    size_t first = 0;
    if (open >= 0 || p.prefix > 0) {
      if (p.prefix > 0 && !p.runs.empty() && p.runs.front().first == base) first = 1;
      const qint64 start = open >= 0 ? open : base;
      record(start, base + p.prefix - start);
    }
    for (size_t i = first; i < p.runs.size(); ++i) record(p.runs[i].first, p.runs[i].second);
    open = p.open;
  };
  constexpr int kSlots = 4;
  RunPiece slots[kSlots];
  qint64 at = 0;  // bytes joined
  const bool stopped = !ScanInOrder(
      (padded + piece - 1) / piece, kSlots,
      [&](qint64 k, int slot) { ScanRunPiece(fd, k * piece, std::min(piece, padded - k * piece), international, &slots[slot]); },
      [&](qint64 k, int slot) {
        const qint64 base = k * piece, n = std::min(piece, padded - base);
        join(slots[slot], base);
        // Beyond the end, or what a shrinking file no longer has, reads as zero.
        at = base + slots[slot].got;
        return slots[slot].got == n;
      },
      [&] { return !progress || progress(at, length); });
  if (!stopped && open >= 0 && at < padded) record(open, at - open);
  close(fd);
  return true;
}

QString DecodeBytes(const char* bytes, qsizetype size, bool utf8) {
  if (utf8) return QString::fromUtf8(bytes, size);
  QString out(size, Qt::Uninitialized);
  QChar* o = out.data();
  for (qsizetype i = 0; i < size; ++i) o[i] = Cp1252(uchar(bytes[i]));
  return out;
}

}  // namespace preview
