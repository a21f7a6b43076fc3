#include "preview/FileViewDocument.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "core/NumberFormat.h"
#include "platform/Clock.h"
#include "platform/NativePath.h"
#include "preview/FileScan.h"

namespace preview {

namespace {

constexpr qsizetype kChunk = 1 << 20;
// Bytes one thread indexes at a time.
constexpr qint64 kPiece = 1 << 20;

QString Thousands(qint64 n) { return core::FormatNumber(double(n), u"#,0"); }

// Valid UTF-8, a sequence cut off by the end of the sample allowed.
bool IsUtf8(const unsigned char* s, qsizetype n) {
  for (qsizetype i = 0; i < n;) {
    const unsigned char c = s[i];
    const int more = c < 0x80 ? 0 : (c & 0xE0) == 0xC0 && c >= 0xC2 ? 1 : (c & 0xF0) == 0xE0 ? 2
                                 : (c & 0xF8) == 0xF0 && c <= 0xF4  ? 3
                                                                    : -1;
    if (more < 0) return false;
    for (int k = 1; k <= more; ++k)
      if (i + k < n && (s[i + k] & 0xC0) != 0x80) return false;
    i += more + 1;
  }
  return true;
}

}  // namespace

FileViewDocument::~FileViewDocument() { clear(); }

void FileViewDocument::clear() {
  if (fd_ >= 0) close(fd_);
  fd_ = -1;
  kind_ = kKindUnreadable;
  mode_ = kViewNone;
  kindText_.clear();
  viewName_.clear();
  error_.clear();
  length_ = lineCount_ = maxLineWidth_ = 0;
  seconds_ = 0;
  aborted_ = false;
  starts_.clear();
  runs_.clear();
  totalTextBytes_ = 0;
  separator_ = 0;
  utf8_ = false;
  offsetDigits_ = 8;
}

qsizetype FileViewDocument::readAt(char* buffer, qsizetype size, qint64 offset) const {
  return fd_ >= 0 ? qsizetype(ReadFully(fd_, buffer, size, offset)) : 0;
}

FileKind FileViewDocument::load(const QString& path, const Options& options, const Progress& progress) {
  clear();
  const qint64 start = platform::MonotonicMs();
  kind_ = ClassifyFile(path, &length_, &error_);
  mode_ = ChooseView(kind_, options.hexForText, options.extractForBinary);
  kindText_ = kind_ == kKindText ? QStringLiteral("ASCII") : kind_ == kKindBinary ? QStringLiteral("Binary")
              : kind_ == kKindEmpty                        ? QStringLiteral("Empty")
                                                           : QString();
  if (mode_ == kViewNone) return kind_;
  fd_ = open(platform::ToNative(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd_ < 0) {  // gone since it was classified
    error_ = QString::fromLocal8Bit(strerror(errno));
    kind_ = kKindUnreadable;
    mode_ = kViewNone;
    return kind_;
  }
  switch (mode_) {
    case kViewText:
      viewName_ = QStringLiteral("ASCII");
      aborted_ = !indexText(progress, options.pieceBytes);
      break;
    case kViewHex:
      viewName_ = QStringLiteral("Hex");
      lineCount_ = length_ / 16 + (length_ % 16 ? 1 : 0);
      offsetDigits_ = HexOffsetDigits(length_);
      maxLineWidth_ = offsetDigits_ + 68;
      break;
    default: {
      viewName_ = QStringLiteral("Text");
      bool stopped = false;
      ScanTextRuns(
          path, options.international, &runs_,
          [&](qint64 done, qint64 total) {
            stopped = progress && !progress(done, total);
            return !stopped;
          },
          options.pieceBytes);
      aborted_ = stopped;
      qint64 longest = 0;
      runs_.forEach([&](qint64, quint32 length) {
        totalTextBytes_ += length;
        longest = std::max<qint64>(longest, length);
      });
      lineCount_ = runs_.size();
      maxLineWidth_ = longest + 10;
      break;
    }
  }
  seconds_ = double(platform::MonotonicMs() - start) / 1000.0;
  return kind_;
}

// Two passes: the first positions of CR LF, LF and CR decide the separator
// (read only as far as needed: an LF before any CR means UNIX whatever
// follows), the second records where each line starts, two pieces at once.
bool FileViewDocument::indexText(const Progress& progress, qint64 pieceBytes) {
  std::vector<char> buffer(static_cast<size_t>(kChunk));
  char* b = buffer.data();
  qint64 crlf = 0, lf = 0, cr = 0;  // 1-based, 0 absent
  char previous = 0;
  for (qint64 at = 0; at < length_;) {
    const qsizetype got = readAt(b, qsizetype(std::min<qint64>(kChunk, length_ - at)), at);
    if (got <= 0) break;
    if (!cr)
      if (const void* p = std::memchr(b, '\r', size_t(got))) cr = at + (static_cast<const char*>(p) - b) + 1;
    for (const char* p = b; (p = static_cast<const char*>(std::memchr(p, '\n', size_t(b + got - p)))); ++p) {
      const qint64 pos = at + (p - b) + 1;
      if (!lf) lf = pos;
      if ((p > b ? p[-1] : previous) == '\r') {
        crlf = pos - 1;
        break;
      }
      if (!cr || lf < cr) break;
    }
    if (crlf || (lf && (!cr || lf < cr))) break;
    previous = b[got - 1];
    at += got;
  }
  const LineEnd end = DetectLineEnd(crlf, lf, cr);
  kindText_ += end == kLineEndDos ? QStringLiteral("-DOS") : end == kLineEndUnix ? QStringLiteral("-UNIX") : QStringLiteral("-MAC");
  separator_ = end == kLineEndDos ? 2 : 1;
  const char needle = end == kLineEndMac ? '\r' : '\n';

  // Line starts are kept as 32-bit distances within a piece.
  const qint64 piece = pieceBytes > 0 ? std::min<qint64>(pieceBytes, 1 << 30) : kPiece;
  starts_.append(0);
  qint64 lastStart = 0;
  constexpr int kSlots = 4;
  LinePiece slots[kSlots];
  qint64 at = 0;  // bytes joined
  const bool finished = ScanInOrder(
      (length_ + piece - 1) / piece, kSlots,
      [&](qint64 k, int slot) {
        ScanLinePiece(fd_, k * piece, std::min(piece, length_ - k * piece), needle, end == kLineEndDos, separator_, &slots[slot]);
      },
      [&](qint64 k, int slot) {
        const qint64 base = k * piece, n = std::min(piece, length_ - base);
        const LinePiece& p = slots[slot];
        if (p.count > 0) {
          maxLineWidth_ = std::max({maxLineWidth_, base + p.starts[0] - separator_ - lastStart, p.widest});
          starts_.appendBatch(base, p.starts.get(), p.count);
          lastStart = base + p.starts[size_t(p.count - 1)];
        }
        at = base + p.got;
        return p.got == n;  // else the file shrank
      },
      [&] { return !progress || progress(at, length_); });
  if (!finished) return false;
  // The file may have shrunk: the last line ends where reading did.
  length_ = std::min(length_, at);
  maxLineWidth_ = std::max(maxLineWidth_, length_ - lastStart);
  lineCount_ = starts_.size();
  // UTF-8 when its first part is valid UTF-8; else the Windows code page.
  const qsizetype sample = readAt(b, std::min<qsizetype>(kChunk, qsizetype(length_)), 0);
  utf8_ = IsUtf8(reinterpret_cast<const unsigned char*>(b), sample);
  return true;
}

QString FileViewDocument::headerLine(qint64 top) const {
  if (mode_ == kViewHex) return HexHeaderLine(offsetDigits_);
  if (mode_ != kViewExtract) return QString();
  if (runs_.empty()) return QStringLiteral("No text found");
  top = std::clamp<qint64>(top, 0, lineCount_ - 1);
  const QString count = QString::number(lineCount_);
  return QStringLiteral("Offset    Text ") + QString::number(top + 1).rightJustified(count.size()) + u'/' + count +
         u' ' + QString::number(runs_.value(top)).rightJustified(4) + QStringLiteral(" bytes     Total: ") +
         Thousands(totalTextBytes_) + QStringLiteral(" bytes");
}

QString FileViewDocument::line(qint64 n, qint64 from, qint64 maxChars) const {
  if (n < 0 || n >= lineCount_) return QString();
  from = std::max<qint64>(0, from);
  switch (mode_) {
    case kViewHex: {
      unsigned char bytes[16];
      const qint64 offset = n * 16;
      const qsizetype got = readAt(reinterpret_cast<char*>(bytes), qsizetype(std::min<qint64>(16, length_ - offset)), offset);
      return FormatHexLine(bytes, int(got), offset, offsetDigits_).mid(from, maxChars);
    }
    case kViewExtract: {
      const qint64 offset = runs_.offset(n), length = runs_.value(n);
      QString out = QString::number(quint64(offset), 16).rightJustified(8, u'0') + QStringLiteral(": ");
      const qint64 skip = std::max<qint64>(0, from - out.size());
      out = out.mid(from);
      const qsizetype want = qsizetype(std::clamp<qint64>(std::min<qint64>(length - skip, maxChars - out.size()), 0, kWholeLine));
      QByteArray bytes(want, Qt::Uninitialized);
      bytes.truncate(readAt(bytes.data(), want, offset + skip));
      return out + DecodeBytes(bytes.constData(), bytes.size(), false);
    }
    case kViewText: {
      const qint64 begin = starts_.offset(n);
      const qint64 end = n + 1 < lineCount_ ? starts_.offset(n + 1) - separator_ : length_;
      // Bytes stand for characters closely enough to find a slice of a long
      // line; a few spare bytes keep a UTF-8 sequence whole.
      const qint64 first = std::min(begin + from, end);
      const qsizetype want = qsizetype(std::clamp<qint64>(end - first, 0, std::min<qint64>(maxChars + 3, kWholeLine)));
      QByteArray bytes(want, Qt::Uninitialized);
      bytes.truncate(readAt(bytes.data(), want, first));
      return DecodeBytes(bytes.constData(), bytes.size(), utf8_).left(maxChars);
    }
    default: return QString();
  }
}

QString FileViewDocument::loadTimeText() const {
  return QStringLiteral("Load time: ") + core::FormatNumber(seconds_, u"0.000") + QStringLiteral(" sec");
}

QString FileViewDocument::fileText() const {
  return kindText_ + QStringLiteral(" file: ") + Thousands(length_) + QStringLiteral(" bytes");
}

QString FileViewDocument::viewText() const {
  return viewName_ + QStringLiteral(" view: ") + Thousands(lineCount_) + QStringLiteral(" lines");
}

bool FileViewDocument::writeLines(const std::vector<qint64>& lines, const std::function<void(const QString&)>& write,
                                  const std::function<bool()>& stop) const {
  for (qint64 n : lines) {
    if (stop && stop()) {
      write(QStringLiteral("*** Job terminated by user ***"));
      return false;
    }
    write(line(n));
  }
  return true;
}

}  // namespace preview
