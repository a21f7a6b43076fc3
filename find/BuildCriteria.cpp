#include "find/BuildCriteria.h"

#include "find/DateBox.h"
#include "find/FindFilters.h"
#include "find/HexString.h"
#include "find/NamePatterns.h"
#include "find/SizeBounds.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"

namespace find {

namespace {

constexpr qint64 kLastSecondTicks = 9'990'000;  // 999 ms: the whole last second is inside

bool Fail(CriteriaMessage* message, const QString& text, CriteriaMessage::Icon icon) {
  message->text = text;
  message->icon = icon;
  return false;
}

bool IsFolder(const QString& path) {
  platform::DirEntry entry;
  return !path.isEmpty() && platform::StatPath(path, &entry) && entry.isDirectory();
}

}  // namespace

QString LookInMessage(const QString& path) {
  return QStringLiteral("Couldn't find \"") + path + QStringLiteral("\"\n\nRecheck the Look In combo...");
}

bool BuildCriteria(const core::FindTabValues& values, const QStringList& lookIn, const LookInRoot& root,
                   FindCriteria* criteria, CriteriaMessage* message) {
  using V = core::FindTabValues;
  FindCriteria c;

  c.patterns = values.watching(V::kWatchName) ? NormalisePatterns(values.named, values.exactMatch)
                                              : QStringList{QStringLiteral("*.*")};
  c.includeSubfolders = values.includeSubfolders;

  for (const QString& location : lookIn) {
    if (!root.name.isEmpty() && location == root.name) {
      for (const QString& folder : root.folders) c.locations.append(platform::WithSeparator(folder));
      continue;
    }
    if (!IsFolder(location)) return Fail(message, LookInMessage(location), CriteriaMessage::kInformation);
    c.locations.append(platform::WithSeparator(location));
  }

  c.sizeOn = values.watching(V::kWatchSize);
  if (c.sizeOn) {
    const auto lo = SizeBound(values.sizeMin, values.sizeUnit, 0);
    const auto hi = SizeBound(values.sizeMax, values.sizeUnit, 2147483647);
    if (!lo || !hi) return Fail(message, QString::fromLatin1(kSizeMessage), CriteriaMessage::kCritical);
    c.sizeMin = *lo;
    c.sizeMax = *hi;
  }

  c.attrOn = values.watching(V::kWatchAttributes);
  if (c.attrOn) {
    c.attrMust = quint32(values.attrMust);
    c.attrMustNot = quint32(values.attrMustNot);
  }

  c.dateOn = values.watching(V::kWatchDate);
  if (c.dateOn) {
    c.dateKind = values.dateKind >= 0 && values.dateKind <= 3 ? int(values.dateKind) : int(kDateModified);
    c.dateNot = values.rangeNot;
    const QString unknown = QString::fromLatin1(kUnknownDate);
    if (values.dateFrom.trimmed() == unknown || values.dateTo.trimmed() == unknown) {
      // Entries of unknown date: their time is 0.
      c.dateFrom = 0;
      c.dateTo = 0;
    } else {
      qint64 from = 0, to = 0;
      if (!ParseDateBox(values.dateFrom, &from) || !ParseDateBox(values.dateTo, &to))
        return Fail(message, QString::fromLatin1(kDateMessage), CriteriaMessage::kCritical);
      c.dateFrom = from;
      c.dateTo = to + kLastSecondTicks;
    }
  }

  c.textOn = values.watching(V::kWatchText);
  c.isHex = values.isHex;
  if (c.textOn) {
    if (values.isHex) {
      QString why;
      if (!ParseHexString(values.containedText, &c.text, &why)) return Fail(message, why, CriteriaMessage::kCritical);
    } else {
      c.text = values.containedText.toUtf8();
    }
  }
  SetTextCompare(&c, values.caseSensitive);
  c.search.SetText(c.text);

  c.excludes = values.excludes;
  c.excludeOn = values.watching(V::kWatchExclude) && !values.excludes.isEmpty();

  *criteria = std::move(c);
  return true;
}

}  // namespace find
