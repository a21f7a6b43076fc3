#include "browser/list/RowStore.h"

#include <cstring>

#include "browser/list/FoldCase.h"
#include "browser/list/SortKeys.h"

namespace browser {

namespace {
constexpr quint32 kChunkBits = 16;
constexpr quint32 kChunkUnits = 1u << kChunkBits;
constexpr qsizetype kMaxName = kChunkUnits - 1;
}  // namespace

RowStore::RowStore() = default;
RowStore::~RowStore() = default;

void RowStore::clear() {
  files_.clear();
  files_.shrink_to_fit();
  texts_.clear();
  chunks_.clear();
  used_ = 0;
  folders_.clear();
  folderIndex_.clear();
  types_.clear();
  typeIndex_.clear();
}

const QChar* RowStore::chars(quint32 offset) const {
  return reinterpret_cast<const QChar*>(chunks_[offset >> kChunkBits].get() + (offset & (kChunkUnits - 1)));
}

quint32 RowStore::store(QStringView text) {
  const quint32 n = quint32(text.size());
  if (chunks_.empty() || used_ + n > kChunkUnits) {
    chunks_.push_back(std::make_unique<char16_t[]>(kChunkUnits));
    used_ = 0;
  }
  const quint32 offset = quint32((chunks_.size() - 1) << kChunkBits) + used_;
  std::memcpy(chunks_.back().get() + used_, text.utf16(), n * sizeof(char16_t));
  used_ += n;
  return offset;
}

void RowStore::setName(FileRow* r, QStringView fullName) {
  // Names come from a directory entry and are short; the cap only guards the arena.
  const QStringView name = fullName.left(kMaxName);
  r->length = quint16(name.size());
  r->name = store(name);
  char16_t buffer[kMaxName];
  FoldInto(name, buffer);
  r->folded = std::memcmp(buffer, name.utf16(), size_t(name.size()) * sizeof(char16_t)) == 0
                  ? r->name
                  : store(QStringView(buffer, name.size()));
  const qsizetype dot = name.lastIndexOf(u'.');
  r->extStart = quint16(dot < 0 ? name.size() : dot + 1);
  bool escaped = false;  // bytes that were not UTF-8, shown as U+FFFD
  for (QChar c : name) escaped = escaped || (c.unicode() >= 0xDC80 && c.unicode() <= 0xDCFF);
  r->flags = quint8((r->flags & ~kEscaped) | (escaped ? kEscaped : 0));
}

RowId RowStore::addFile(const platform::DirEntry& entry, quint32 folder, quint16 type, bool marked) {
  FileRow r{};
  r.flags = (entry.isDirectory() ? kFolder : 0) | (marked ? kMarked : 0) | (entry.isLink ? kLink : 0);
  setName(&r, entry.name);
  r.size = entry.size;
  r.created = entry.creationTime;
  r.modified = entry.lastWriteTime;
  r.accessed = entry.lastAccessTime;
  r.folder = folder;
  r.attributes = quint16(entry.attributes);
  r.type = type;
  files_.push_back(r);
  return RowId(files_.size() - 1);
}

void RowStore::renameFile(RowId id, QStringView name) {
  if (!IsTextRow(id) && id < files_.size()) setName(&files_[id], name);
}

RowId RowStore::addText(TextRowData data) {
  TextRow row;
  row.foldedKeys.reserve(data.keys.size());
  for (qsizetype slot = 0; slot < data.keys.size(); ++slot)
    row.foldedKeys.append(IsCaseInsensitiveSlot(int(slot)) ? FoldCase(data.keys[slot]) : QString());
  row.data = std::move(data);
  texts_.push_back(std::move(row));
  return RowId(texts_.size() - 1) | kTextRowBit;
}

quint32 RowStore::internFolder(const QString& folder) {
  if (!folders_.empty() && folders_.back() == folder) return quint32(folders_.size() - 1);
  const auto key = [](const QString& text) {
    return std::u16string_view(QStringView(text).utf16(), size_t(text.size()));
  };
  const auto it = folderIndex_.find(key(folder));
  if (it != folderIndex_.end()) return it->second;
  folders_.push_back(folder);
  // The key views the stored copy's text, which lives as long as the store.
  folderIndex_.emplace(key(folders_.back()), quint32(folders_.size() - 1));
  return quint32(folders_.size() - 1);
}

quint16 RowStore::internType(const QString& typeName, const QString& iconKey) {
  const QString key = typeName + QChar(0) + iconKey;
  const auto it = typeIndex_.constFind(key);
  if (it != typeIndex_.constEnd()) return *it;
  if (types_.size() >= 0xffff) return 0xffff - 1;  // table full: share the last type
  types_.push_back({typeName, FoldCase(typeName), iconKey});
  typeIndex_.insert(key, quint16(types_.size() - 1));
  return quint16(types_.size() - 1);
}

QStringView RowStore::textKey(RowId id, int slot) const {
  const TextRow& r = texts_[id & ~kTextRowBit];
  return slot >= 0 && slot < r.data.keys.size() ? QStringView(r.data.keys[slot]) : QStringView();
}

QStringView RowStore::foldedTextKey(RowId id, int slot) const {
  const TextRow& r = texts_[id & ~kTextRowBit];
  if (slot < 0 || slot >= r.data.keys.size()) return {};
  return IsCaseInsensitiveSlot(slot) ? QStringView(r.foldedKeys[slot]) : QStringView(r.data.keys[slot]);
}

bool RowStore::isSelected(RowId id) const {
  return IsTextRow(id) ? texts_[id & ~kTextRowBit].selected : (files_[id].flags & kSelected);
}

void RowStore::setSelected(RowId id, bool on) {
  if (IsTextRow(id)) {
    texts_[id & ~kTextRowBit].selected = on;
  } else if (on) {
    files_[id].flags |= kSelected;
  } else {
    files_[id].flags &= quint8(~kSelected);
  }
}

bool RowStore::isFolder(RowId id) const { return !IsTextRow(id) && (files_[id].flags & kFolder); }

size_t RowStore::memoryBytes() const {
  size_t bytes = files_.capacity() * sizeof(FileRow) + chunks_.size() * kChunkUnits * sizeof(char16_t) +
                 chunks_.capacity() * sizeof(void*);
  for (const QString& f : folders_) bytes += sizeof(QString) + size_t(f.capacity()) * 2 + 40;
  bytes += folderIndex_.bucket_count() * sizeof(void*) + folderIndex_.size() * 40;
  for (const TypeInfo& t : types_) bytes += sizeof(TypeInfo) + size_t(t.name.capacity() + t.folded.capacity()) * 2;
  for (const TextRow& t : texts_) {
    bytes += sizeof(TextRow);
    for (const QString& s : t.data.texts) bytes += size_t(s.capacity()) * 2 + 24;
    for (const QString& s : t.data.keys) bytes += size_t(s.capacity()) * 2 + 24;
  }
  return bytes;
}

}  // namespace browser
