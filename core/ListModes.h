#pragma once
#include <QString>
#include <array>

namespace core {

// The three list modes, in index order.
enum ListMode : int { kModeBrowse = 0, kModeFind = 1, kModeDrives = 2 };
inline constexpr int kModeCount = 3;

// What a mode shows: its column definition (caption[.kind][/dataIndex], comma
// separated), the captions the size format applies to (also the right-align
// list), the default visibility mask and the default column-order string.
struct ListModeDef {
  const char* name;
  const char* columns;
  const char* sizeColumns;
  const char* defaultVisible;
  const char* defaultOrder;
};

inline constexpr std::array<ListModeDef, kModeCount> kListModes = {{
    {"Browse", "Name,Ext,Size.n10,Type,Created.d,Modified.d,Accessed.d,Attr", "Size", "11111111",
     "Name.100,Ext.38,Size.50,Type.80,Created.100,Modified.100,Accessed.64,Attr.43"},
    {"Find", "Name,Ext,Size.n10,Type,Created.d,Modified.d,Accessed.d,Attr,Path", "Size", "111111111",
     "Name.100,Ext.38,Path.100,Size.50,Type.50,Created.100,Modified.100,Accessed.64,Attr.43"},
    {"Drives", "Name,Type/3,Total Size.n12/9,Free Space.n10/10,Per Cluster.n8/11,Vol Serial/12,File System/13",
     "Total Size,Free Space,Per Cluster", "11111111", ".130,.110,.70,.70,.76,.68,.70"},
}};

// Key slots (= data indices) of a file row's texts and sort keys.
enum FileSlot : int {
  kSlotName = 0,
  kSlotExt = 1,
  kSlotSize = 2,
  kSlotType = 3,
  kSlotCreated = 4,
  kSlotModified = 5,
  kSlotAccessed = 6,
  kSlotAttr = 7,
  kSlotPath = 8,
};

// One mode's display record; the settings keep it in section "List" + name.
struct ModeRecord {
  qint32 sortOrder = 0;   // column in the low 31 bits, top bit set = descending
  qint32 sizeFormat = 0;  // 0..8
  qint16 dateStyle = 0;   // 0..3
  qint16 timeStyle = 0;   // 0..3
  bool age = false;
  bool altColor = false;
  QString defaultVisible;
  QString visible;    // "VisList"
  QString positions;  // "PosList"
  QString name;
};

// The records with their defaults ("Find" alone has the alternate colour on).
inline ModeRecord DefaultModeRecord(int mode) {
  ModeRecord r;
  const ListModeDef& def = kListModes[size_t(mode)];
  r.name = QString::fromLatin1(def.name);
  r.defaultVisible = QString::fromLatin1(def.defaultVisible);
  r.visible = r.defaultVisible;
  r.altColor = mode == kModeFind;
  return r;
}

}  // namespace core
