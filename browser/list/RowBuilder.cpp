#include "browser/list/RowBuilder.h"

#include <QMimeDatabase>
#include <cstdio>

#include "browser/list/FoldCase.h"
#include "browser/list/ListModel.h"
#include "platform/NativePath.h"

namespace browser {

namespace {

// The first bytes of a file, for content sniffing; empty if it cannot be read.
QByteArray Head(const QString& path) {
  QByteArray data;
  FILE* f = std::fopen(platform::ToNative(path).constData(), "rb");
  if (!f) return data;
  data.resize(512);
  data.resize(qsizetype(std::fread(data.data(), 1, size_t(data.size()), f)));
  std::fclose(f);
  return data;
}

RowBuilder::TypeName FromMime(const QMimeType& mime) {
  QString icon = mime.iconName();
  if (icon.isEmpty()) icon = mime.genericIconName();
  return {mime.comment(), icon};
}

}  // namespace

RowBuilder::RowBuilder(ListModel* model) : model_(model) {}

QStringView RowBuilder::ExtensionOf(QStringView name) {
  const qsizetype dot = name.lastIndexOf(u'.');
  return dot < 0 ? QStringView() : name.mid(dot + 1);
}

bool RowBuilder::AskedOneByOne(QStringView extension) {
  static const char* const kOwnIcons[] = {"exe", "lnk", "ico", "icl", "cur", "ani"};
  for (const char* e : kOwnIcons)
    if (extension.compare(QLatin1String(e), Qt::CaseInsensitive) == 0) return true;
  return false;
}

RowBuilder::TypeName RowBuilder::typeOf(const platform::DirEntry& entry, const QString& folder) {
  static const QMimeDatabase db;
  if (entry.isDirectory()) return FromMime(db.mimeTypeForName(QStringLiteral("inode/directory")));
  const QStringView ext = ExtensionOf(entry.name);
  if (AskedOneByOne(ext)) return FromMime(db.mimeTypeForFileNameAndData(entry.name, Head(folder + entry.name)));
  // By extension alone, so that every name with it shares one answer.
  const QString probe = ext.isEmpty() ? QStringLiteral("x") : QStringLiteral("x.") + ext.toString();
  return FromMime(db.mimeTypeForFile(probe, QMimeDatabase::MatchExtension));
}

quint16 RowBuilder::typeIndex(const platform::DirEntry& entry, const QString& folder) {
  // The model's type table goes with its rows; so does this cache.
  if (model_->store().typeCount() == 0) cache_.clear();
  const QStringView ext = ExtensionOf(entry.name);
  const bool single = !entry.isDirectory() && AskedOneByOne(ext);
  QString key;
  if (!single) {
    key = entry.isDirectory() ? QStringLiteral("d:") : QStringLiteral("f:");
    key.append(FoldCase(ext));
    const auto it = cache_.constFind(key);
    if (it != cache_.constEnd()) return *it;
  }
  const TypeName t = typeOf(entry, folder);
  const quint16 index = model_->store().internType(t.name, t.iconKey);
  if (!single) cache_.insert(key, index);
  return index;
}

void RowBuilder::add(const platform::DirEntry& entry, const QString& folder) {
  model_->addFileRow(entry, folder, typeIndex(entry, folder));
}

}  // namespace browser
