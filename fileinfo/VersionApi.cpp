#include "fileinfo/VersionApi.h"

#include <QFile>
#include <QLocale>
#include <unicode/uloc.h>

#include "fileinfo/PeResourceLocator.h"
#include "fileinfo/VersionBlock.h"

namespace fileinfo {

namespace {

bool Locate(QFile& file, PeResourceLocator::Span* span) {
  if (!file.open(QIODevice::ReadOnly)) return false;
  PeResourceLocator locator(
      [&file](qint64 offset, char* buffer, qint64 len) -> qint64 {
        return file.seek(offset) ? file.read(buffer, len) : -1;
      },
      file.size());
  return locator.FindVersionResource(span);
}

}  // namespace

quint32 GetFileVersionInfoSize(const QString& path) {
  QFile file(path);
  PeResourceLocator::Span span;
  return Locate(file, &span) ? quint32(span.size) : 0;
}

bool GetFileVersionInfo(const QString& path, quint32 size, QByteArray* block) {
  QFile file(path);
  PeResourceLocator::Span span;
  if (size == 0 || !Locate(file, &span) || !file.seek(span.offset)) return false;
  QByteArray data = file.read(qMin<qint64>(span.size, size));
  if (data.size() != qMin<qint64>(span.size, size)) return false;
  data.resize(size, '\0');  // a larger buffer than the resource keeps zeros after it
  *block = data;
  return true;
}

bool VerQueryValue(const QByteArray& block, const QString& subBlock, QByteArray* value) {
  return VersionBlock::Query(block, subBlock, value);
}

QString VerLanguageName(quint32 langId) {
  char locale[ULOC_FULLNAME_CAPACITY] = {};
  UErrorCode status = U_ZERO_ERROR;
  const int32_t n = uloc_getLocaleForLCID(langId, locale, sizeof locale - 1, &status);
  if (U_FAILURE(status) || n <= 0 || status == U_USING_DEFAULT_WARNING) return QString();
  char language[ULOC_LANG_CAPACITY] = {};
  status = U_ZERO_ERROR;
  uloc_getLanguage(locale, language, sizeof language - 1, &status);
  if (U_FAILURE(status) || language[0] == 0 || qstrcmp(language, "und") == 0) return QString();  // no language known
  UChar name[128] = {};
  status = U_ZERO_ERROR;
  const QByteArray display = QLocale().name().toLatin1();
  const int32_t len = uloc_getDisplayName(locale, display.constData(), name, 127, &status);
  if (U_FAILURE(status) || len <= 0) return QString();
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(name), qMin(len, 127));
}

}  // namespace fileinfo
