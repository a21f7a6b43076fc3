#pragma once
#include <QString>
#include <QStringList>

#include "core/FindTabValues.h"

namespace find {

// Captions shared by the tab and the criteria text.
QStringList DateKindCaptions();       // "&created", "&modified", "&accessed", "created &or modified"
QStringList SizeUnitCaptions();       // "Bytes", "KB", "MB"
QStringList AttributeCaptions();      // "Read-only" ... "Compressed", in attribute-table order
QStringList WatchCaptions();          // "Name", "Size", "Date", "Excl.", "Attr.", "Text"

// The criteria text at the head of list reports: locations, the subfolder
// switch, each filter or "[ignored]", and the results as the status bar shows
// them. Lines end in CR LF.
QString DescribeCriteria(const core::FindTabValues& values, const QStringList& locations, const QString& results);

}  // namespace find
