#include "fileinfo/modVerStringInfo.h"

#include <QtEndian>
#include <cmath>

#include "fileinfo/VersionApi.h"
#include "fileinfo/modVerFixedInfo.h"

namespace modVerStringInfo {

namespace {

struct State {
  QByteArray block;  // also the byte string the walks search; positions below are 1-based
  int translationCount = 0;
  QVector<quint16> langIds, codePages;
  QStringList tablePaths;
  ErrorReport report;
};

State& S() {
  static State state;
  return state;
}

// A read past the block inside a walk.
struct ReadFault {
  qint64 pos;
};

// 1-based position of `pattern` in the block from `start` on; 0 when absent.
qint64 InStr(qint64 start, QByteArrayView pattern) {
  const QByteArray& b = S().block;
  if (start < 1 || start > b.size() + 1) return 0;
  const qsizetype at = b.indexOf(pattern, start - 1);
  return at < 0 ? 0 : at + 1;
}

// The little-endian word at 1-based `pos`.
quint16 WordAt(qint64 pos) {
  const QByteArray& b = S().block;
  if (pos < 1 || pos + 1 > b.size()) throw ReadFault{pos};
  return qFromLittleEndian<quint16>(b.constData() + pos - 1);
}

QString Hex4(quint32 v) { return QString::number(v, 16).toUpper().rightJustified(4, u'0').right(4); }

void SetSlot(QStringList* names, qsizetype slot, const QString& name) {
  while (names->size() <= slot) names->append(QString());
  (*names)[slot] = name;
}

// Next position after an entry: forward until (pos - 1) is a multiple of 4.
qint64 Aligned(qint64 pos) {
  while ((pos - 1) % 4 != 0) ++pos;
  return pos;
}

void Report(const QString& tag, const ReadFault& fault) {
  if (S().report)
    S().report(tag, QStringLiteral("read past the end of the version block (position %1 of %2)")
                        .arg(fault.pos)
                        .arg(S().block.size()));
}

void Walk32(QStringList* names) {
  static const char kStart[] = {0x01, 0x00, 'S', 0x00, 't', 0x00, 'r'};
  try {
    const qint64 found = InStr(1, QByteArrayView(kStart, 7));
    if (found <= 0) return;
    const qint64 sfiStart = found - 4;
    const qint64 sfiLength = WordAt(sfiStart);
    qint64 pos = sfiStart + 60;
    if (S().block.size() < pos) return;
    for (qsizetype slot = 7;; ++slot) {
      const qint64 entryLength = WordAt(pos);
      const qint64 keyStart = pos + 6;
      const qint64 zeros = InStr(keyStart, QByteArrayView("\0\0", 2));
      if (zeros <= 0) return;
      const qint64 keyEnd = zeros + 1;
      QString name;
      for (qint64 p = keyStart; p < keyEnd; p += 2) name.append(QLatin1Char(S().block.at(p - 1)));
      SetSlot(names, slot, name);
      if (entryLength == 0) return;  // would stand still for ever
      pos = Aligned(pos + entryLength);
      if (pos >= sfiStart + sfiLength) return;
    }
  } catch (const ReadFault& fault) {
    Report(QStringLiteral("BinaryReadNTError"), fault);
  }
}

void Walk16(QStringList* names) {
  try {
    const qint64 found = InStr(1, QByteArrayView("\0\0StringFileInfo", 16));
    qint64 sfiStart, pos;
    if (found > 0) {
      sfiStart = found - 2;
      pos = sfiStart + 36;
    } else {
      sfiStart = 73;  // after a 20-byte root header and the 52-byte fixed record
      pos = sfiStart + 40;
    }
    if (S().block.size() < pos) return;
    const qint64 sfiLength = WordAt(sfiStart);
    for (qsizetype slot = 7;; ++slot) {
      const qint64 entryLength = WordAt(pos);
      const qint64 keyStart = pos + 4;
      const qint64 zero = InStr(keyStart, QByteArrayView("\0", 1));
      if (zero <= 0) return;
      SetSlot(names, slot, QString::fromLatin1(S().block.mid(keyStart - 1, zero - keyStart)));
      if (entryLength == 0) return;
      pos = Aligned(pos + entryLength);
      if (pos >= sfiStart + sfiLength) return;
    }
  } catch (const ReadFault& fault) {
    Report(QStringLiteral("BinaryRead95Error"), fault);
  }
}

bool Query(const QString& path, QByteArray* value) { return fileinfo::VerQueryValue(S().block, path, value); }

}  // namespace

void SetErrorReport(ErrorReport report) { S().report = std::move(report); }

const QByteArray& block() { return S().block; }
int translationCount() { return S().translationCount; }
const QVector<quint16>& langIds() { return S().langIds; }
const QVector<quint16>& codePages() { return S().codePages; }
const QStringList& tablePaths() { return S().tablePaths; }

void LoadVersionBlockFromBytes(const QByteArray& bytes) {
  State& s = S();
  s.block = bytes;
  s.translationCount = 0;
  s.langIds.clear();
  s.codePages.clear();
  s.tablePaths.clear();
}

bool LoadVersionBlock(const QString& path) {
  LoadVersionBlockFromBytes(QByteArray());
  const quint32 size = fileinfo::GetFileVersionInfoSize(path);
  if (size == 0) return false;
  QByteArray bytes;
  if (!fileinfo::GetFileVersionInfo(path, size, &bytes)) return false;
  LoadVersionBlockFromBytes(bytes);
  return true;
}

bool ReadTranslations(int* count) {
  State& s = S();
  s.langIds.clear();
  s.codePages.clear();
  s.tablePaths.clear();
  bool result = false;
  QByteArray data;
  int n = 0;
  if (!Query(QStringLiteral("\\VarFileInfo\\Translation"), &data)) {
    s.langIds = {0};
    s.codePages = {0};
    s.tablePaths = {QString()};
  } else {
    n = int(std::nearbyint(double(data.size()) / 4.0));  // halves to the even neighbour
    data.resize(qsizetype(n) * 4, '\0');
    for (int i = 0; i < n; ++i) {
      auto word = [&data](qsizetype at) { return quint16(uchar(data.at(at)) | uchar(data.at(at + 1)) << 8); };
      const quint16 lang = word(4 * i);
      const quint16 page = word(4 * i + 2);
      s.langIds.append(lang);
      s.codePages.append(page);
      s.tablePaths.append(QStringLiteral("\\StringFileInfo\\") + Hex4(lang) + Hex4(page) + u'\\');
    }
    result = n >= 1;
    if (n == 0) {
      s.langIds = {0};
      s.codePages = {0};
      s.tablePaths = {QString()};
    }
  }
  // A translation that names a missing table: the usual U.S. English one stands in.
  QByteArray table;
  if (!Query(s.tablePaths[0], &table)) {
    s.tablePaths[0] = QStringLiteral("\\StringFileInfo\\040904E4\\");
    if (Query(s.tablePaths[0], &table)) {
      s.langIds[0] = 1033;
      s.codePages[0] = 1252;
      result = true;
      n = qMax(n, 1);
    }
  }
  s.translationCount = n;
  *count = n;
  return result;
}

bool ReadLoadedVersionInfo(QStringList* names, QStringList* values) {
  int count = 0;
  const bool hasTranslations = ReadTranslations(&count);
  *names = QStringList(7);
  *values = QStringList(7);

  QByteArray fixedBytes;
  modVerFixedInfo::FixedFileInfo fixed;
  if (Query(QStringLiteral("\\"), &fixedBytes) && !fixedBytes.isEmpty() &&
      modVerFixedInfo::ParseFixedInfo(fixedBytes, &fixed)) {
    (*values)[0] = modVerFixedInfo::FileTypeText(fixed.fileType, fixed.fileSubtype);
    (*values)[1] = modVerFixedInfo::FormatVersion(fixed.fileVersionMS, fixed.fileVersionLS);
    (*values)[2] = modVerFixedInfo::FormatVersion(fixed.productVersionMS, fixed.productVersionLS);
    (*values)[3] = modVerFixedInfo::FileFlagsText(fixed.fileFlags);
    (*values)[4] = modVerFixedInfo::FileOSText(fixed.fileOS);
  }

  // The root key "VS_VERSION_INFO" starts after two words (16-bit layout) or three (32-bit).
  const qint64 firstV = InStr(1, "V");
  if (firstV == 5) Walk16(names);
  else if (firstV == 7) Walk32(names);
  else return false;

  if (hasTranslations) {
    const State& s = S();
    (*names)[5] = QStringLiteral("Language");
    (*values)[5] = LanguageName(s.langIds[0]);
    (*names)[6] = QStringLiteral("Character Set");
    (*values)[6] = CharSetName(s.codePages[0]);
    for (int j = 1; j < count && j < s.langIds.size(); ++j) {
      (*values)[5] += QStringLiteral(", ") + LanguageName(s.langIds[j]);
      (*names)[5] = QStringLiteral("Languages");
      (*values)[6] += QStringLiteral(", ") + CharSetName(s.codePages[j]);
      (*names)[6] = QStringLiteral("Character Sets");
    }
  }
  while (values->size() < names->size()) values->append(QString());
  for (qsizetype i = 7; i < names->size(); ++i) QueryStringValue(0, (*names)[i], &(*values)[i]);
  return true;
}

bool ReadVersionInfo(const QString& path, QStringList* names, QStringList* values) {
  if (path.isEmpty() || !LoadVersionBlock(path)) return false;
  return ReadLoadedVersionInfo(names, values);
}

bool QueryStringValue(int tableIndex, const QString& key, QString* value) {
  const State& s = S();
  if (key.isEmpty() || tableIndex < 0 || tableIndex >= s.tablePaths.size()) return false;
  QByteArray data;
  if (!Query(s.tablePaths[tableIndex] + key, &data)) return false;
  if (!data.isEmpty()) {
    const qsizetype zero = data.indexOf('\0');
    *value = QString::fromUtf8(zero >= 0 ? data.left(zero) : data);
  }
  return true;
}

QString LanguageName(quint32 langId) {
  const QString name = fileinfo::VerLanguageName(langId);
  return name.isEmpty() ? QStringLiteral("(unknown)") : name.left(128);
}

QString CharSetName(quint32 codePage) {
  switch (codePage) {
    case 0: return QStringLiteral("Seven-bit ASCII");
    case 932: return QStringLiteral("Windows - Japan");
    case 949: return QStringLiteral("Windows - Korea");
    case 950: return QStringLiteral("Windows - Taiwan");
    case 1200: return QStringLiteral("Unicode");
    case 1250: return QStringLiteral("Windows - Latin (Eastern Europe)");
    case 1251: return QStringLiteral("Windows - Cyrillic");
    case 1252: return QStringLiteral("Windows - Multilingual (U.S. Standard)");
    case 1253: return QStringLiteral("Windows - Greek");
    case 1254: return QStringLiteral("Windows - Turkish");
    case 1255: return QStringLiteral("Windows - Hebrew");
    case 1256: return QStringLiteral("Windows - Arabic");
    default: return QStringLiteral("(unknown: ") + QString::number(codePage, 16).toUpper() + u')';
  }
}

QString GetFileVersionText(bool useFixed, const QString& path, const QString& prefix) {
  if (!LoadVersionBlock(path)) return QString();
  if (useFixed) {
    QByteArray bytes;
    modVerFixedInfo::FixedFileInfo fixed;
    if (!Query(QStringLiteral("\\"), &bytes) || !modVerFixedInfo::ParseFixedInfo(bytes, &fixed)) return QString();
    return prefix + modVerFixedInfo::FormatVersion(fixed.fileVersionMS, fixed.fileVersionLS);
  }
  int count = 0;
  ReadTranslations(&count);
  QString value;
  if (!QueryStringValue(0, QStringLiteral("FileVersion"), &value) || value.isEmpty()) return QString();
  return prefix + value;
}

}  // namespace modVerStringInfo
