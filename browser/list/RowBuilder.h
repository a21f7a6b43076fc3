#pragma once
#include <QString>
#include <string>
#include <unordered_map>

#include "platform/DirEntry.h"

namespace browser {

class ListModel;

// Adds directory entries to a list as file rows: type name and icon from a
// per-extension cache (the kinds whose icon is their own, "exe.lnk.ico.icl.
// cur.ani", are asked one by one), group mark by the directory bit.
class RowBuilder {
 public:
  explicit RowBuilder(ListModel* model);

  // `folder` ends in "/"; it is the row's Path and, with the name, its path.
  void add(const platform::DirEntry& entry, const QString& folder);

  // Type name and icon name of an entry (exposed for tests).
  struct TypeName {
    QString name;
    QString iconKey;
  };
  TypeName typeOf(const platform::DirEntry& entry);
  static bool AskedOneByOne(QStringView extension);
  static QStringView ExtensionOf(QStringView name);

 private:
  quint16 typeIndex(const platform::DirEntry& entry);

  ListModel* model_;
  std::unordered_map<std::u16string, quint16> cache_;  // "d" / "f" + folded extension
  std::u16string key_;
};

}  // namespace browser
