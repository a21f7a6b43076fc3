#pragma once
#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/DirEntry.h"

namespace browser {

// A row's number: file rows count up from 0 in the order they were added;
// text rows (drives and the like) carry the top bit.
using RowId = quint32;
inline constexpr RowId kTextRowBit = 0x80000000u;
inline bool IsTextRow(RowId id) { return id & kTextRowBit; }

// A row given by its texts, for lists that are not files (the drives). Texts
// and keys are indexed by data index / key slot; a cell whose data index has
// a byte count in `sizes` is written in the list's size format when shown.
struct TextRowData {
  QStringList texts;
  QStringList keys;
  QHash<int, double> sizes;
  double bytesTotal = 0;  // for the status line (drives: capacity)
  double bytesFree = 0;
  QString iconKey;  // theme icon name
  QString path;     // what selecting the row reports
};

// The rows of the list, kept compact: a file row holds its name (and a folded
// copy for case-blind compares) in a shared arena, its size, three times,
// attributes and interned type and folder numbers; its cell texts are made
// only when shown.
class RowStore {
 public:
  struct FileRow {
    quint64 size;
    qint64 created;
    qint64 modified;
    qint64 accessed;
    quint32 name;      // arena offset of the name
    quint32 folded;    // arena offset of the folded name (== name when equal)
    quint32 folder;    // interned folder number
    quint16 length;    // name length in UTF-16 units
    quint16 extStart;  // start of the extension within the name (== length: none)
    quint16 attributes;
    quint16 type;      // interned type number
    quint8 flags;
  };
  enum FileFlag : quint8 { kSelected = 1, kFolder = 2, kMarked = 4, kLink = 8, kEscaped = 16 };

  struct TypeInfo {
    QString name;
    QString folded;
    QString iconKey;
  };

  RowStore();
  ~RowStore();
  RowStore(const RowStore&) = delete;
  RowStore& operator=(const RowStore&) = delete;

  void clear();

  // `marked`: the row carries a group mark (grouping was on when it was added).
  RowId addFile(const platform::DirEntry& entry, quint32 folder, quint16 type, bool marked);
  RowId addText(TextRowData data);
  // Gives a file row a new name (after a rename on disk).
  void renameFile(RowId id, QStringView name);

  quint32 internFolder(const QString& folder);
  quint16 internType(const QString& typeName, const QString& iconKey);

  quint32 fileCount() const { return quint32(files_.size()); }
  quint32 textCount() const { return quint32(texts_.size()); }
  const FileRow& file(RowId id) const { return files_[id]; }
  FileRow& file(RowId id) { return files_[id]; }
  const TextRowData& text(RowId id) const { return texts_[id & ~kTextRowBit].data; }

  QStringView name(const FileRow& r) const { return {chars(r.name), r.length}; }
  QStringView folded(const FileRow& r) const { return {chars(r.folded), r.length}; }
  QStringView extension(const FileRow& r) const {
    return {chars(r.name) + r.extStart, qsizetype(r.length - r.extStart)};
  }
  const QString& folder(quint32 index) const { return folders_[index]; }
  quint32 folderCount() const { return quint32(folders_.size()); }
  const TypeInfo& type(quint16 index) const { return types_[index]; }
  quint32 typeCount() const { return quint32(types_.size()); }

  // Case-folded key of a text row's slot (for the case-blind slots).
  QStringView textKey(RowId id, int slot) const;
  QStringView foldedTextKey(RowId id, int slot) const;

  bool isSelected(RowId id) const;
  void setSelected(RowId id, bool on);
  bool isFolder(RowId id) const;

  // Bytes held (rows, arena, tables), for the memory figure.
  size_t memoryBytes() const;

 private:
  struct TextRow {
    TextRowData data;
    QStringList foldedKeys;
    bool selected = false;
  };
  const QChar* chars(quint32 offset) const;
  quint32 store(QStringView text);
  void setName(FileRow* r, QStringView name);

  std::vector<FileRow> files_;
  std::vector<TextRow> texts_;
  // Names live in chunks so that growing never moves or doubles them.
  std::vector<std::unique_ptr<char16_t[]>> chunks_;
  quint32 used_ = 0;  // units used in the last chunk
  std::vector<QString> folders_;
  // Folders met in a find run to tens of thousands: std::hash is several
  // times quicker than QHash's on paths of this length.
  std::unordered_map<std::u16string_view, quint32> folderIndex_;
  std::vector<TypeInfo> types_;
  QHash<QString, quint16> typeIndex_;
};

}  // namespace browser
