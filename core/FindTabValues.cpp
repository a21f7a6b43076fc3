#include "core/FindTabValues.h"

#include <algorithm>

#include "core/CProfile.h"

namespace core {

void FindTabValuesWR(CProfile& p, FindTabValues& v) {
  p.setProfileSection(QStringLiteral("Find"));
  p.Value(QStringLiteral("ExactMatch"), v.exactMatch);
  p.Value(QStringLiteral("InclSubs"), v.includeSubfolders);
  p.Value(QStringLiteral("RangeNot"), v.rangeNot);
  p.Value(QStringLiteral("Date"), v.dateKind);
  p.ControlText(QStringLiteral("DateFrom"), v.dateFrom);
  p.ControlText(QStringLiteral("DateTo"), v.dateTo);
  p.ControlText(QStringLiteral("SizeMin"), v.sizeMin);
  p.ControlText(QStringLiteral("SizeMax"), v.sizeMax);
  p.Value(QStringLiteral("SizeUnit"), v.sizeUnit);
  p.Value(QStringLiteral("AttrFindCheck"), v.attrMust);
  p.Value(QStringLiteral("AttrFindNotCheck"), v.attrMustNot);
  p.ControlText(QStringLiteral("ContText"), v.containedText);
  p.Value(QStringLiteral("CaseSens"), v.caseSensitive);
  p.Value(QStringLiteral("Hex"), v.isHex);
  p.Value(QStringLiteral("Mind"), v.watch);
  p.ControlText(QStringLiteral("Named"), v.named);

  // The exclude list: "Count" now, its entries after the remaining keys.
  qint16 count = qint16(std::min<qsizetype>(v.excludes.size(), 32767));
  const bool haveCount = p.Value(QStringLiteral("Count"), count) > 0 || !p.fProfRead();
  p.ControlText(QStringLiteral("LookIn"), v.lookIn);
  p.ControlText(QStringLiteral("ExcludeFolders"), v.excludeInput);
  if (!haveCount) return;
  if (p.fProfRead()) v.excludes = QStringList(std::max<qint16>(count, 0), QString());
  for (qint16 i = 0; i < count && i < v.excludes.size(); ++i)
    p.ControlText(QStringLiteral("ExcludePath") + QString::number(i), v.excludes[i]);
}

}  // namespace core
