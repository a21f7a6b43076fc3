#pragma once
#include <QString>
#include <QStringList>

#include "browser/list/ListModel.h"
#include "platform/DirEntry.h"

namespace listtest {

// A directory entry made up in memory.
inline platform::DirEntry Entry(const QString& name, quint64 size = 0, qint64 modified = 0, bool folder = false) {
  platform::DirEntry e;
  e.name = name;
  e.size = size;
  e.lastWriteTime = modified;
  e.creationTime = modified;
  e.lastAccessTime = modified;
  e.attributes = folder ? platform::kAttrDirectory : platform::kAttrArchive;
  return e;
}

// Adds file rows with the given names, in order.
inline void AddNames(browser::ListModel* model, const QStringList& names) {
  const quint16 type = model->store().internType(QStringLiteral("file"), QString());
  for (const QString& n : names) model->addFileRow(Entry(n), QStringLiteral("/t/"), type);
}

// The names in display order, comma-joined.
inline QString Names(const browser::ListModel& model) {
  QStringList out;
  for (int i = 0; i < model.rowCount(); ++i) out.append(model.name(model.rowAt(i)));
  return out.join(u',');
}

}  // namespace listtest
