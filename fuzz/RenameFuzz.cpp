// Arbitrary bytes as a file name and as an undo log. Checks that every
// transformation keeps the raw bytes of a name that is not UTF-8 (in order)
// and never yields a name with "/" from one without, that an escaped field
// parses back to its exact text, and that the batch read from a log, written
// out again and read back, is the same batch.
#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "core/RowEscape.h"
#include "fileops/RenameLog.h"
#include "fileops/RenameSpecial.h"
#include "platform/NativePath.h"

namespace {

QString RawBytes(const QString& s) {
  QString out;
  for (qsizetype i = 0; i < s.size(); ++i) {
    const char16_t c = s[i].unicode();
    if (c >= 0xDC80 && c <= 0xDCFF && (i == 0 || !QChar::isHighSurrogate(s[i - 1].unicode()))) out += s[i];
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));

  const QString name = platform::FromNative(bytes.left(300));
  if (platform::ToNative(name) != bytes.left(300)) std::abort();
  QString back;
  if (!core::ParseRowField(core::RowField(name), &back) || back != name) std::abort();
  for (int how = 0; how <= int(fileops::RenameHow::kUmlauts); ++how) {
    const QString made = fileops::RenameSpecial::NewName(fileops::RenameHow(how), name);
    if (made.isEmpty()) continue;
    if (RawBytes(made) != RawBytes(name)) std::abort();
    if (made.contains(u'/') && !name.contains(u'/')) std::abort();
  }

  const std::vector<fileops::RenameItem> batch = fileops::RenameLog::LastBatchOf(bytes);
  QByteArray again;
  for (const fileops::RenameItem& item : batch) {
    if (item.oldName.isEmpty() || item.newName.isEmpty() || item.oldName.contains(u'/') || item.newName.contains(u'/'))
      std::abort();
    again += fileops::RenameLog::Line(QStringLiteral("T"), item.oldPath(), item.newPath());
  }
  const std::vector<fileops::RenameItem> reread = fileops::RenameLog::LastBatchOf(again);
  if (reread.size() != batch.size()) std::abort();
  for (size_t i = 0; i < batch.size(); ++i)
    if (reread[i].oldPath() != batch[i].oldPath() || reread[i].newPath() != batch[i].newPath()) std::abort();
  return 0;
}
