#include "find/DescribeCriteria.h"

#include "core/AttributeText.h"

namespace find {

QStringList DateKindCaptions() {
  return {QStringLiteral("&created"), QStringLiteral("&modified"), QStringLiteral("&accessed"),
          QStringLiteral("created &or modified")};
}

QStringList SizeUnitCaptions() { return {QStringLiteral("Bytes"), QStringLiteral("KB"), QStringLiteral("MB")}; }

QStringList AttributeCaptions() {
  return {QStringLiteral("Read-only"), QStringLiteral("Hidden"),  QStringLiteral("System"),
          QStringLiteral("Directory"), QStringLiteral("Archive"), QStringLiteral("Normal"),
          QStringLiteral("Temporary"), QStringLiteral("Compressed")};
}

QStringList WatchCaptions() {
  return {QStringLiteral("Name"),  QStringLiteral("Size"),  QStringLiteral("Date"),
          QStringLiteral("Excl."), QStringLiteral("Attr."), QStringLiteral("Text")};
}

namespace {

const QString kEol = QStringLiteral("\r\n");
const QString kIgnored = QStringLiteral("[ignored]");

QString Bound(const QString& box) {
  const QString t = box.trimmed();
  return t.isEmpty() ? QStringLiteral("(no limit)") : t;
}

}  // namespace

QString DescribeCriteria(const core::FindTabValues& v, const QStringList& locations, const QString& results) {
  using V = core::FindTabValues;
  QString s;
  s += QStringLiteral("Location(s)") + kEol;
  for (const QString& location : locations) s += u' ' + location + kEol;
  s += QStringLiteral("Include subfolders: ") + (v.includeSubfolders ? QStringLiteral("True") : QStringLiteral("False")) +
       kEol;
  s += QStringLiteral("Filters") + kEol;

  s += QStringLiteral(" Named: ") + (v.watching(V::kWatchName) ? v.named : kIgnored) + kEol;

  QString size = kIgnored;
  if (v.watching(V::kWatchSize)) {
    const QStringList units = SizeUnitCaptions();
    size = QStringLiteral("at least ") + Bound(v.sizeMin) + QStringLiteral(", at most ") + Bound(v.sizeMax) + u' ' +
           units.value(v.sizeUnit, units[0]);
  }
  s += QStringLiteral(" Size: ") + size + kEol;

  QString date = kIgnored;
  if (v.watching(V::kWatchDate)) {
    QString kind = DateKindCaptions().value(v.dateKind, DateKindCaptions()[1]);
    kind.remove(u'&');
    date = kind + QStringLiteral(" between ") + v.dateFrom + QStringLiteral(" and ") + v.dateTo;
    if (v.rangeNot) date += QStringLiteral(" NOT");
  }
  s += QStringLiteral(" Date: ") + date + kEol;

  QString attributes = kIgnored;
  if (v.watching(V::kWatchAttributes)) {
    QStringList parts;
    const QStringList names = AttributeCaptions();
    for (size_t i = 0; i < core::kAttributeTable.size(); ++i) {
      const quint32 bit = core::kAttributeTable[i].bit;
      if (quint32(v.attrMust) & bit) parts.append(names[qsizetype(i)]);
      if (quint32(v.attrMustNot) & bit) parts.append(QStringLiteral("Not ") + names[qsizetype(i)]);
    }
    attributes = parts.join(QStringLiteral(", "));
  }
  s += QStringLiteral(" Attributes: ") + attributes + kEol;

  QString text = kIgnored;
  if (v.watching(V::kWatchText)) {
    text = v.containedText.left(60);
    if (v.containedText.size() > 60) text += QStringLiteral(" [...]");
  }
  s += QStringLiteral(" Containing Text: ") + text + kEol;

  const bool excludeOn = v.watching(V::kWatchExclude) && !v.excludes.isEmpty();
  s += QStringLiteral(" Exclude Folders: ") + (excludeOn ? v.excludes.join(QStringLiteral("; ")) : kIgnored) + kEol;

  s += QStringLiteral("Results: ") + results + kEol;
  return s;
}

}  // namespace find
