#pragma once
#include <QByteArray>
#include <QString>
#include <QVector>

// Version blocks and the executables that carry them, byte by byte.
namespace fixtures {

struct Fixed {
  quint32 fileMS = 0x00010002, fileLS = 0x00030004, productMS = 0x00050000, productLS = 0x08930001;
  quint32 flags = 0, os = 0x00040004, type = 2, subtype = 0;
  quint32 signature = 0xFEEF04BD;
};

struct Table {
  QString name;  // "040904B0"
  QVector<QPair<QString, QString>> strings;
};

// A structure of either layout: wide = 32-bit (type word, UTF-16 key).
struct Node {
  QString key;
  QByteArray value;
  quint16 valueLength = 0;
  quint16 type = 0;
  QVector<Node> children;
};

QByteArray Serialize(const Node& node, bool wide);
QByteArray FixedBytes(const Fixed& fixed);
// A whole block: root, StringFileInfo with `tables`, VarFileInfo with `translations` (lang, code page).
QByteArray Block(bool wide, const Fixed& fixed, const QVector<Table>& tables,
                 const QVector<QPair<quint16, quint16>>& translations, quint16 codePage = 1252);

QByteArray WrapPe(const QByteArray& block, bool plus);
QByteArray WrapNe(const QByteArray& block, quint16 shift = 4);

}  // namespace fixtures
