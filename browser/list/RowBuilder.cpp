#include "browser/list/RowBuilder.h"

#include <QHash>
#include <QMimeDatabase>

#include "browser/list/FoldCase.h"
#include "browser/list/ListModel.h"

namespace browser {

namespace {

// Comments and icon names are read from the MIME database's files; each
// MIME type is asked once per process.
RowBuilder::TypeName FromMime(const QMimeType& mime) {
  static QHash<QString, RowBuilder::TypeName> known;
  const QString name = mime.name();
  const auto it = known.constFind(name);
  if (it != known.constEnd()) return *it;
  QString icon = mime.iconName();
  if (icon.isEmpty()) icon = mime.genericIconName();
  const RowBuilder::TypeName t{mime.comment(), icon};
  known.insert(name, t);
  return t;
}

}  // namespace

RowBuilder::RowBuilder(ListModel* model) : model_(model) {}

QStringView RowBuilder::ExtensionOf(QStringView name) {
  const qsizetype dot = name.lastIndexOf(u'.');
  return dot < 0 ? QStringView() : name.mid(dot + 1);
}

bool RowBuilder::AskedOneByOne(QStringView extension) {
  // Asked for every row: three ASCII letters folded into one number.
  static const char* const kOwnIcons[] = {"exe", "lnk", "ico", "icl", "cur", "ani"};
  if (extension.size() != 3) return false;
  quint32 key = 0;
  for (QChar c : extension) {
    const char16_t u = c.unicode();
    if (u >= 0x80) {
      // Letters that fold to ASCII (the Kelvin sign): the full comparison.
      for (const char* e : kOwnIcons)
        if (extension.compare(QLatin1String(e), Qt::CaseInsensitive) == 0) return true;
      return false;
    }
    key = key << 8 | quint32(u >= 'A' && u <= 'Z' ? u + 32 : u);
  }
  for (const char* e : kOwnIcons)
    if (key == (quint32(quint8(e[0])) << 16 | quint32(quint8(e[1])) << 8 | quint32(quint8(e[2])))) return true;
  return false;
}

RowBuilder::TypeName RowBuilder::typeOf(const platform::DirEntry& entry) {
  static const QMimeDatabase db;
  if (entry.isDirectory()) return FromMime(db.mimeTypeForName(QStringLiteral("inode/directory")));
  const QStringView ext = ExtensionOf(entry.name);
  // These carry their own icons; each file is asked about by its own name.
  // Otherwise by extension alone, so that every name with it shares one answer.
  const QMimeType mime = AskedOneByOne(ext)
                             ? db.mimeTypeForFile(entry.name, QMimeDatabase::MatchExtension)
                             : db.mimeTypeForFile(ext.isEmpty() ? QStringLiteral("x") : QStringLiteral("x.") + ext.toString(),
                                                  QMimeDatabase::MatchExtension);
  TypeName t = FromMime(mime);
  // A type the database does not know is named as the Windows shell names it.
  if (mime.isDefault()) t.name = ext.isEmpty() ? QStringLiteral("File") : ext.toString().toUpper() + QStringLiteral(" File");
  return t;
}

quint16 RowBuilder::typeIndex(const platform::DirEntry& entry) {
  // The model's type table goes with its rows; so does this cache.
  if (model_->store().typeCount() == 0) cache_.clear();
  const QStringView ext = ExtensionOf(entry.name);
  const bool single = !entry.isDirectory() && AskedOneByOne(ext);
  if (!single) {
    // The key is built in a reused buffer: no allocation per row once warm.
    key_.assign(1, entry.isDirectory() ? u'd' : u'f');
    key_.resize(size_t(ext.size()) + 1);
    FoldInto(ext, key_.data() + 1);
    const auto it = cache_.find(key_);
    if (it != cache_.end()) return it->second;
  }
  const TypeName t = typeOf(entry);
  const quint16 index = model_->store().internType(t.name, t.iconKey);
  if (!single) cache_.emplace(key_, index);
  return index;
}

void RowBuilder::add(const platform::DirEntry& entry, const QString& folder) {
  model_->addFileRow(entry, folder, typeIndex(entry));
}

}  // namespace browser
