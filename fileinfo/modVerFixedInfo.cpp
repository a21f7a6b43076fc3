#include "fileinfo/modVerFixedInfo.h"

#include <QStringList>
#include <QtEndian>

namespace modVerFixedInfo {

bool ParseFixedInfo(const QByteArray& bytes, FixedFileInfo* info) {
  if (bytes.size() < 52) return false;
  quint32 f[13];
  for (int i = 0; i < 13; ++i) f[i] = qFromLittleEndian<quint32>(bytes.constData() + 4 * i);
  *info = {f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7], f[8], f[9], f[10], f[11], f[12]};
  return true;
}

QString FileTypeText(quint32 type, quint32 subtype) {
  static const char* const kDrivers[] = {"Unknown", "Printer", "Keyboard", "Language",    "Display",     "Mouse",
                                         "Network", "System",  "Installable", "Sound", "Comm", "Input method"};
  switch (type) {
    case 0: return QStringLiteral("Unknown File Type");
    case 1: return QStringLiteral("Application");
    case 2: return QStringLiteral("Dynamic link library");
    case 3:
      if (subtype < 12) return QLatin1String(kDrivers[subtype]) + QLatin1String(" driver");
      return QStringLiteral("Driver of type ") + QString::number(subtype);
    case 4:
      if (subtype == 1) return QStringLiteral("Raster Font");
      if (subtype == 2) return QStringLiteral("Vector Font");
      if (subtype == 3) return QStringLiteral("TrueType Font");
      return QStringLiteral("Font of type ") + QString::number(subtype);
    case 5: return QStringLiteral("Virtual device driver");
    case 7: return QStringLiteral("Static link library");
    default: return QStringLiteral("Type ") + QString::number(type);
  }
}

QString FileOSText(quint32 os) {
  switch (os) {
    case 0x00000000: return QStringLiteral("Undefinded or unknown");
    case 0x00000001: return QStringLiteral("16-bit Windows");
    case 0x00000002: return QStringLiteral("16-bit Presentation Manager");
    case 0x00000003: return QStringLiteral("32-bit Presentation Manager");
    case 0x00000004: return QStringLiteral("32-bit Windows");
    case 0x00010000: return QStringLiteral("MS-DOS");
    case 0x00010001: return QStringLiteral("DOS-Win16");
    case 0x00010004: return QStringLiteral("DOS-Win32");
    case 0x00020000: return QStringLiteral("OS/2-16");
    case 0x00020002: return QStringLiteral("OS/2-16 PM-16");
    case 0x00030000: return QStringLiteral("OS/2-32");
    case 0x00030003: return QStringLiteral("OS/2-32 PM-32");
    case 0x00040000: return QStringLiteral("Windows NT");
    case 0x00040004: return QStringLiteral("Win32-API on Windows NT");
    default: return QStringLiteral("OS type ") + QString::number(os);
  }
}

QString FileFlagsText(quint32 flags) {
  static const char* const kTexts[] = {"Contains debug information. ",
                                       "PreRelease. ",
                                       "Patched. ",
                                       "Private build. ",
                                       "Resource dynamically allocated. ",
                                       "Special build."};
  QString text;
  for (int bit = 0; bit < 6; ++bit)
    if (flags & (1u << bit)) text += QLatin1String(kTexts[bit]);
  return text.isEmpty() ? QStringLiteral("(none)") : text;
}

QString FormatVersion(quint32 high, quint32 low) {
  const qint16 parts[4] = {qint16(high >> 16), qint16(high & 0xFFFF), qint16(low >> 16), qint16(low & 0xFFFF)};
  QString text = QString::number(parts[0]);
  for (int i = 1; i < 4; ++i) text += u'.' + QString::number(parts[i]).rightJustified(2, u'0');
  return text;
}

}  // namespace modVerFixedInfo
