#include "fileinfo/PeResourceLocator.h"

#include <QByteArray>
#include <QtEndian>
#include <vector>

namespace fileinfo {

namespace {

constexpr quint32 kRtVersion = 16;
constexpr quint16 kNeVersionType = 0x8010;  // integer type 16
constexpr quint32 kSubdirectory = 0x80000000u;

struct Section {
  quint32 virtualSize = 0, virtualAddress = 0, rawSize = 0, rawPointer = 0;
};

// File offset of an RVA through the section table; -1 outside every section.
qint64 RvaToOffset(const std::vector<Section>& sections, quint32 rva) {
  for (const Section& s : sections) {
    const quint32 extent = qMax(s.virtualSize, s.rawSize);
    if (rva >= s.virtualAddress && quint64(rva) < quint64(s.virtualAddress) + extent) {
      const quint64 delta = rva - s.virtualAddress;
      if (delta >= s.rawSize) return -1;  // uninitialised tail: nothing on disk
      return qint64(s.rawPointer) + qint64(delta);
    }
  }
  return -1;
}

}  // namespace

bool PeResourceLocator::Fits(qint64 offset, qint64 size) const {
  return offset >= 0 && size >= 0 && offset <= fileSize_ && size <= fileSize_ - offset;
}

bool PeResourceLocator::Read(qint64 offset, void* buffer, qint64 len) {
  if (!Fits(offset, len)) return false;
  const qint64 got = read_(offset, static_cast<char*>(buffer), len);
  if (got > 0) bytesRead_ += got;
  return got == len;
}

bool PeResourceLocator::U16(qint64 offset, quint16* v) {
  uchar b[2];
  if (!Read(offset, b, 2)) return false;
  *v = qFromLittleEndian<quint16>(b);
  return true;
}

bool PeResourceLocator::U32(qint64 offset, quint32* v) {
  uchar b[4];
  if (!Read(offset, b, 4)) return false;
  *v = qFromLittleEndian<quint32>(b);
  return true;
}

bool PeResourceLocator::FindVersionResource(Span* span) {
  uchar dos[64];
  if (!Read(0, dos, sizeof dos) || dos[0] != 'M' || dos[1] != 'Z') return false;
  const qint64 header = qFromLittleEndian<quint32>(dos + 0x3C);
  char sig[4];
  if (!Read(header, sig, 4)) return false;
  if (sig[0] == 'P' && sig[1] == 'E' && sig[2] == 0 && sig[3] == 0) return FindInPe(header, span);
  if (sig[0] == 'N' && sig[1] == 'E') return FindInNe(header, span);
  return false;
}

bool PeResourceLocator::FindInPe(qint64 header, Span* span) {
  uchar coff[20];
  if (!Read(header + 4, coff, sizeof coff)) return false;
  const quint16 sectionCount = qFromLittleEndian<quint16>(coff + 2);
  const quint16 optionalSize = qFromLittleEndian<quint16>(coff + 16);
  const qint64 optional = header + 24;
  quint16 magic = 0;
  if (!U16(optional, &magic)) return false;
  qint64 countAt, directories;
  if (magic == 0x10b) countAt = 92, directories = 96;        // PE32
  else if (magic == 0x20b) countAt = 108, directories = 112;  // PE32+
  else return false;
  quint32 directoryCount = 0, resourceRva = 0;
  if (optionalSize < directories + 3 * 8 || !U32(optional + countAt, &directoryCount) || directoryCount < 3 ||
      !U32(optional + directories + 2 * 8, &resourceRva) || resourceRva == 0)
    return false;

  // The section table, read in one go; one that runs past the end is cut.
  const qint64 tableAt = optional + optionalSize;
  if (!Fits(tableAt, 0)) return false;
  const qint64 count = qMin<qint64>(sectionCount, (fileSize_ - tableAt) / 40);
  QByteArray table(count * 40, Qt::Uninitialized);
  if (count == 0 || !Read(tableAt, table.data(), table.size())) return false;
  std::vector<Section> sections(static_cast<size_t>(count));
  for (qint64 i = 0; i < count; ++i) {
    const uchar* p = reinterpret_cast<const uchar*>(table.constData()) + i * 40;
    sections[size_t(i)] = {qFromLittleEndian<quint32>(p + 8), qFromLittleEndian<quint32>(p + 12),
                           qFromLittleEndian<quint32>(p + 16), qFromLittleEndian<quint32>(p + 20)};
  }
  const qint64 root = RvaToOffset(sections, resourceRva);
  if (root < 0) return false;

  // Three fixed levels (type, name, language) starting from the root, so a
  // directory that points back at itself cannot make the walk loop.
  qint64 dir = root;
  quint32 dataEntry = 0;
  for (int level = 0; level < 3; ++level) {
    uchar head[16];
    if (!Read(dir, head, sizeof head)) return false;
    const quint32 named = qFromLittleEndian<quint16>(head + 12);
    const quint32 ids = qFromLittleEndian<quint16>(head + 14);
    const qint64 total = qMin<qint64>(named + ids, (fileSize_ - dir - 16) / 8);
    if (total <= 0) return false;
    quint32 target = 0;
    bool found = false;
    if (level == 0) {
      // Id entries follow the named ones; read them as a block.
      const qint64 first = qMin<qint64>(named, total);
      QByteArray entries((total - first) * 8, Qt::Uninitialized);
      if (!entries.isEmpty() && !Read(dir + 16 + first * 8, entries.data(), entries.size())) return false;
      for (qint64 i = 0; i < entries.size() / 8 && !found; ++i) {
        const uchar* e = reinterpret_cast<const uchar*>(entries.constData()) + i * 8;
        if (qFromLittleEndian<quint32>(e) == kRtVersion) {
          target = qFromLittleEndian<quint32>(e + 4);
          found = true;
        }
      }
    } else {
      found = U32(dir + 16 + 4, &target);  // the first name, the first language
    }
    if (!found) return false;
    const bool subdirectory = (target & kSubdirectory) != 0;
    if (subdirectory != (level < 2)) return false;  // exactly three levels
    if (subdirectory) dir = root + (target & ~kSubdirectory);
    else dataEntry = target;
  }
  quint32 dataRva = 0, dataSize = 0;
  if (!U32(root + dataEntry, &dataRva) || !U32(root + dataEntry + 4, &dataSize)) return false;
  const qint64 at = RvaToOffset(sections, dataRva);
  if (at < 0 || dataSize == 0 || dataSize > kMaxBlock || !Fits(at, dataSize)) return false;
  *span = {at, dataSize};
  return true;
}

bool PeResourceLocator::FindInNe(qint64 header, Span* span) {
  quint16 tableOffset = 0, shift = 0;
  if (!U16(header + 0x24, &tableOffset)) return false;
  qint64 pos = header + tableOffset;
  if (!U16(pos, &shift) || shift > 24) return false;  // a larger unit puts every resource past any file
  pos += 2;
  // Each type record is followed by its resources; the walk moves forward
  // only, so it ends at the table's zero type or at the end of the file.
  for (;;) {
    quint16 type = 0, count = 0;
    if (!U16(pos, &type) || type == 0 || !U16(pos + 2, &count)) return false;
    pos += 8;
    if (type == kNeVersionType) {
      if (count == 0) return false;
      quint16 offset = 0, length = 0;
      if (!U16(pos, &offset) || !U16(pos + 2, &length)) return false;
      const qint64 at = qint64(offset) << shift;
      const qint64 size = qMin<qint64>(qint64(length) << shift, kMaxBlock);
      if (size == 0 || !Fits(at, 1)) return false;
      // The last unit may be padded past the end of the file.
      *span = {at, qMin(size, fileSize_ - at)};
      return true;
    }
    pos += qint64(count) * 12;
    if (pos >= fileSize_) return false;
  }
}

}  // namespace fileinfo
