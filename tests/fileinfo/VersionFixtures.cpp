#include "VersionFixtures.h"

#include <QStringEncoder>
#include <QtEndian>

namespace fixtures {

namespace {

void Put16(QByteArray* b, quint16 v) {
  char c[2];
  qToLittleEndian(v, c);
  b->append(c, 2);
}
void Put32(QByteArray* b, quint32 v) {
  char c[4];
  qToLittleEndian(v, c);
  b->append(c, 4);
}
void Set16(QByteArray* b, qsizetype at, quint16 v) { qToLittleEndian(v, b->data() + at); }
void Set32(QByteArray* b, qsizetype at, quint32 v) { qToLittleEndian(v, b->data() + at); }
void Pad4(QByteArray* b) {
  while (b->size() % 4) b->append('\0');
}
QByteArray Utf16z(const QString& s) {
  QByteArray b(reinterpret_cast<const char*>(s.utf16()), s.size() * 2);
  b.append(2, '\0');
  return b;
}

}  // namespace

QByteArray Serialize(const Node& node, bool wide) {
  QByteArray b;
  Put16(&b, 0);
  Put16(&b, node.valueLength);
  if (wide) {
    Put16(&b, node.type);
    b += Utf16z(node.key);
  } else {
    b += node.key.toLatin1();
    b.append('\0');
  }
  Pad4(&b);
  b += node.value;
  for (const Node& child : node.children) {
    Pad4(&b);
    b += Serialize(child, wide);
  }
  Set16(&b, 0, quint16(b.size()));
  return b;
}

QByteArray FixedBytes(const Fixed& f) {
  QByteArray b;
  for (quint32 v : {f.signature, 0x00010000u, f.fileMS, f.fileLS, f.productMS, f.productLS, 0x3Fu, f.flags, f.os,
                    f.type, f.subtype, 0u, 0u})
    Put32(&b, v);
  return b;
}

QByteArray Block(bool wide, const Fixed& fixed, const QVector<Table>& tables,
                 const QVector<QPair<quint16, quint16>>& translations, quint16 codePage) {
  Node root{QStringLiteral("VS_VERSION_INFO"), FixedBytes(fixed), 52, 0, {}};
  Node sfi{QStringLiteral("StringFileInfo"), {}, 0, 1, {}};
  for (const Table& t : tables) {
    Node table{t.name, {}, 0, 1, {}};
    for (const auto& [key, text] : t.strings) {
      QByteArray value;
      if (wide) value = Utf16z(text);
      else {
        QStringEncoder enc(codePage == 1251 ? "windows-1251" : "windows-1252");
        value = enc(text);
        value.append('\0');
      }
      table.children.append(Node{key, value, quint16(wide ? text.size() + 1 : value.size()), 1, {}});
    }
    sfi.children.append(table);
  }
  root.children.append(sfi);
  if (!translations.isEmpty()) {
    QByteArray words;
    for (const auto& [lang, page] : translations) {
      Put16(&words, lang);
      Put16(&words, page);
    }
    Node var{QStringLiteral("VarFileInfo"), {}, 0, 1, {}};
    var.children.append(Node{QStringLiteral("Translation"), words, quint16(words.size()), 0, {}});
    root.children.append(var);
  }
  return Serialize(root, wide);
}

QByteArray WrapPe(const QByteArray& block, bool plus) {
  const int optionalSize = plus ? 240 : 224;
  QByteArray f(0x200, '\0');
  f[0] = 'M';
  f[1] = 'Z';
  Set32(&f, 0x3C, 0x40);
  f.replace(0x40, 4, QByteArray("PE\0\0", 4));
  Set16(&f, 0x44, plus ? 0x8664 : 0x14C);
  Set16(&f, 0x46, 1);  // one section
  Set16(&f, 0x54, quint16(optionalSize));
  const int opt = 0x58;
  Set16(&f, opt, plus ? 0x20B : 0x10B);
  Set32(&f, opt + (plus ? 108 : 92), 16);
  const int dirs = opt + (plus ? 112 : 96);
  const quint32 rva = 0x1000;
  // Root (type 16) -> name 1 -> language 0x409 -> data entry -> block.
  QByteArray rsrc(0x58, '\0');
  Set16(&rsrc, 0x0E, 1);
  Set32(&rsrc, 0x10, 16);
  Set32(&rsrc, 0x14, 0x80000000u | 0x18);
  Set16(&rsrc, 0x18 + 0x0E, 1);
  Set32(&rsrc, 0x28, 1);
  Set32(&rsrc, 0x2C, 0x80000000u | 0x30);
  Set16(&rsrc, 0x30 + 0x0E, 1);
  Set32(&rsrc, 0x40, 0x409);
  Set32(&rsrc, 0x44, 0x48);
  Set32(&rsrc, 0x48, rva + 0x58);
  Set32(&rsrc, 0x4C, quint32(block.size()));
  rsrc += block;
  Set32(&f, dirs + 16, rva);
  Set32(&f, dirs + 20, quint32(rsrc.size()));
  const int section = opt + optionalSize;
  f.replace(section, 5, ".rsrc");
  Set32(&f, section + 8, quint32(rsrc.size()));
  Set32(&f, section + 12, rva);
  Set32(&f, section + 16, quint32(rsrc.size()));
  Set32(&f, section + 20, 0x200);
  return f + rsrc;
}

QByteArray WrapNe(const QByteArray& block, quint16 shift) {
  QByteArray f(0x200, '\0');
  f[0] = 'M';
  f[1] = 'Z';
  Set32(&f, 0x3C, 0x40);
  f[0x40] = 'N';
  f[0x41] = 'E';
  Set16(&f, 0x40 + 0x24, 0x40);  // resource table at 0x80
  Set16(&f, 0x80, shift);
  Set16(&f, 0x82, 0x8010);
  Set16(&f, 0x84, 1);
  const quint32 unit = shift < 16 ? 1u << shift : 0;
  Set16(&f, 0x8A, quint16(unit ? 0x200 / unit : 0));
  Set16(&f, 0x8C, quint16(unit ? (block.size() + unit - 1) / unit : 0));
  Set16(&f, 0x90, 0x8001);
  return f + block;  // the type list ends with the zero type after the entry
}

}  // namespace fixtures
