#include "fileinfo/VersionBlock.h"

#include <QStringDecoder>
#include <QStringList>
#include <QtEndian>

namespace fileinfo {

namespace {

constexpr quint32 kFixedSignature = 0xFEEF04BD;
constexpr int kFixedSize = 52;
constexpr int kMaxDepth = 4;  // root, StringFileInfo, table, string

// One structure of the block: [start, end) with its key and value.
struct Node {
  qint64 start = 0, end = 0;
  QString key;
  qint64 valueStart = 0, valueEnd = 0;
  qint64 childrenStart = 0;
  bool text = false;
};

qint64 Align4(qint64 pos) { return (pos + 3) & ~qint64(3); }

class Parser {
 public:
  Parser(const QByteArray& block, VersionBlock::Layout layout) : b_(block), wide_(layout == VersionBlock::k32Bit) {}

  quint16 Word(qint64 at) const { return qFromLittleEndian<quint16>(b_.constData() + at); }

  // The structure at `start` inside [start, limit); false when it does not fit.
  bool Parse(qint64 start, qint64 limit, Node* n) const {
    const qint64 header = wide_ ? 6 : 4;
    if (start + header > limit) return false;
    const qint64 length = Word(start);
    if (length < header) return false;  // a zero length would never move on
    n->start = start;
    n->end = qMin(start + length, limit);
    const qint64 valueLength = Word(start + 2);
    n->text = wide_ && Word(start + 4) == 1;
    qint64 pos = start + header;
    n->key.clear();
    if (wide_) {
      while (pos + 2 <= n->end && Word(pos) != 0) {
        n->key.append(QChar(Word(pos)));
        pos += 2;
      }
      pos += 2;  // the terminating zero (or the end: the key then ran out)
    } else {
      while (pos < n->end && b_.at(pos) != 0) n->key.append(QLatin1Char(b_.at(pos++)));
      pos += 1;
    }
    n->valueStart = qMin(Align4(pos), n->end);
    // Text values count UTF-16 units; the value runs to the next aligned
    // child at most, and never past the structure.
    const qint64 valueBytes = n->text ? valueLength * 2 : valueLength;
    n->valueEnd = qMin(n->valueStart + valueBytes, n->end);
    n->childrenStart = qMin(Align4(n->valueEnd), n->end);
    return true;
  }

  // The child of `parent` whose key is `key` (any case).
  bool Child(const Node& parent, const QString& key, Node* out) const {
    qint64 pos = parent.childrenStart;
    Node n;
    while (pos < parent.end && Parse(pos, parent.end, &n)) {
      if (n.key.compare(key, Qt::CaseInsensitive) == 0) {
        *out = n;
        return true;
      }
      pos = Align4(n.end);
      if (n.end <= n.start) break;
    }
    return false;
  }

  const QByteArray& b_;
  bool wide_;
};

}  // namespace

VersionBlock::Layout VersionBlock::LayoutOf(const QByteArray& block) {
  static const QByteArray root8 = QByteArrayLiteral("VS_VERSION_INFO");
  static const QByteArray root16 = QByteArray::fromRawData("V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0", 30);
  if (block.size() >= 6 + root16.size() && block.mid(6, root16.size()) == root16) return k32Bit;
  if (block.size() >= 4 + root8.size() && block.mid(4, root8.size()) == root8) return k16Bit;
  return kUnknown;
}

QString VersionBlock::DecodeCodePage(const QByteArray& bytes, quint16 codePage) {
  // Windows-1252 in full, the fallback for pages the codecs do not know.
  static const char16_t k1252High[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  if (codePage != 1252 && codePage != 0) {
    const QByteArray name = codePage == 1200 ? QByteArray("UTF-16LE")
                            : codePage == 65001 ? QByteArray("UTF-8")
                            : (codePage >= 1250 && codePage <= 1258) ? "windows-" + QByteArray::number(codePage)
                                                                       : "cp" + QByteArray::number(codePage);
    QStringDecoder decoder(name.constData());
    if (decoder.isValid()) {
      QString text = decoder(bytes);
      if (!decoder.hasError()) return text;
    }
  }
  QString text;
  text.reserve(bytes.size());
  for (char c : bytes) {
    const uchar u = uchar(c);
    text.append(u >= 0x80 && u < 0xA0 ? QChar(k1252High[u - 0x80]) : QChar(u));
  }
  return text;
}

bool VersionBlock::Query(const QByteArray& block, const QString& path, QByteArray* value) {
  const Layout layout = LayoutOf(block);
  if (layout == kUnknown) return false;
  const Parser parser(block, layout);
  Node node;
  if (!parser.Parse(0, block.size(), &node)) return false;
  const QStringList parts = path.split(u'\\', Qt::SkipEmptyParts);
  if (parts.size() >= kMaxDepth) return false;
  for (const QString& part : parts)
    if (!parser.Child(node, part, &node)) return false;

  if (parts.isEmpty()) {
    if (node.valueEnd - node.valueStart < kFixedSize ||
        qFromLittleEndian<quint32>(block.constData() + node.valueStart) != kFixedSignature)
      return false;
    *value = block.mid(node.valueStart, kFixedSize);
    return true;
  }
  const bool isString = parts.size() == 3 && parts[0].compare(u"StringFileInfo", Qt::CaseInsensitive) == 0;
  if (!isString) {
    *value = block.mid(node.valueStart, node.valueEnd - node.valueStart);
    return true;
  }
  // A string runs to its terminating zero; producers disagree on whether
  // the value length counts bytes or characters, so the structure's end bounds it.
  QString text;
  if (layout == k32Bit) {
    for (qint64 p = node.valueStart; p + 2 <= node.end; p += 2) {
      const quint16 unit = parser.Word(p);
      if (unit == 0) break;
      text.append(QChar(unit));
    }
  } else {
    QByteArray bytes = block.mid(node.valueStart, node.end - node.valueStart);
    const qsizetype zero = bytes.indexOf('\0');
    if (zero >= 0) bytes.truncate(zero);
    bool ok = false;
    const quint16 codePage = quint16(parts[1].right(4).toUInt(&ok, 16));
    text = DecodeCodePage(bytes, ok ? codePage : 1252);
  }
  *value = text.toUtf8();
  return true;
}

}  // namespace fileinfo
