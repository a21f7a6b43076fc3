// Arbitrary bytes as a file for the viewer's whole-file scans, read in
// pieces of a size taken from the input and joined: the text runs must be
// those of one plain walk over the zero-padded 2048-byte blocks, and the
// line index must split the text where a plain split does.
#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

#include "preview/FileViewDocument.h"
#include "preview/modFileView.h"

namespace {

QString Plain(const QByteArray& bytes, bool international) {
  QString out;
  const QByteArray padded = bytes + QByteArray((2048 - bytes.size() % 2048) % 2048, '\0');
  for (qsizetype i = 0, start = -1; i < padded.size(); ++i) {
    if (preview::IsTextByte(uchar(padded[i]), international)) {
      if (start < 0) start = i;
    } else if (start >= 0) {
      if (i - start >= 5) out += QStringLiteral("%1:%2 ").arg(start).arg(i - start);
      start = -1;
    }
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  const int piece = 1 + data[0] * 3;
  const bool international = data[1] & 1;
  const QByteArray bytes(reinterpret_cast<const char*>(data + 2), qsizetype(size - 2));
  const int fd = memfd_create("view", 0);
  if (fd < 0 || write(fd, bytes.constData(), size_t(bytes.size())) != bytes.size()) __builtin_trap();
  const QString path = QStringLiteral("/proc/self/fd/%1").arg(fd);

  preview::PackedOffsets runs(true);
  if (!preview::ScanTextRuns(path, international, &runs, {}, piece)) __builtin_trap();
  QString got;
  runs.forEach([&](qint64 offset, quint32 length) { got += QStringLiteral("%1:%2 ").arg(offset).arg(length); });
  if (got != Plain(bytes, international)) __builtin_trap();

  preview::FileViewDocument doc;
  preview::FileViewDocument::Options options;
  options.pieceBytes = piece;
  if (doc.load(path, options) == preview::kKindText) {
    const qsizetype crlf = bytes.indexOf("\r\n") + 1, lf = bytes.indexOf('\n') + 1, cr = bytes.indexOf('\r') + 1;
    const preview::LineEnd end = preview::DetectLineEnd(crlf, lf, cr);
    const QByteArray separator = end == preview::kLineEndDos ? "\r\n" : end == preview::kLineEndUnix ? "\n" : "\r";
    qint64 lines = 0, widest = 0;
    for (qsizetype from = 0;; ++lines) {
      const qsizetype at = bytes.indexOf(separator, from);
      widest = std::max<qint64>(widest, (at < 0 ? bytes.size() : at) - from);
      if (at < 0) break;
      from = at + separator.size();
    }
    if (doc.lineCount() != lines + 1 || doc.maxLineWidth() != widest) __builtin_trap();
  }
  close(fd);
  return 0;
}
