#include "browser/list/ListFill.h"

#include "browser/list/ListModel.h"
#include "browser/list/RowBuilder.h"
#include "core/DriveText.h"
#include "core/ListModes.h"
#include "platform/DirEnumerator.h"
#include "platform/NativePath.h"
#include "platform/Volumes.h"

namespace browser {

namespace {

bool Aborted(const FillContext& context) { return context.abort && context.abort->load(std::memory_order_relaxed); }

// Hex halves of a byte count, the key form of numeric columns.
QString ByteKey(double bytes) {
  QString key;
  const quint64 v = bytes > 0 ? quint64(bytes) : 0;
  key.append(QStringLiteral("%1").arg(quint32(v >> 32), 8, 16, QChar(u' ')).toUpper());
  key.append(QStringLiteral("%1").arg(quint32(v), 8, 16, QChar(u' ')).toUpper());
  return key;
}

}  // namespace

FillResult ListFill::Browse(ListModel* model, const QString& folder, const FillContext& context) {
  if (context.abort) context.abort->store(false);
  const QString base = platform::WithSeparator(folder);
  model->setClusterSize(platform::ClusterSizeOf(base));
  platform::DirEnumerator entries(base, u"*.*");
  if (!entries.isValid()) return FillResult::kUnreadable;
  RowBuilder builder(model);
  platform::DirEntry entry;
  static const QString kDots = QStringLiteral("..");
  while (entries.next(&entry)) {
    // The name up to a first zero character; "." and ".." occur inside "..".
    const qsizetype zero = entry.name.indexOf(QChar(0));
    if (zero >= 0) entry.name.truncate(zero);
    if (!kDots.contains(entry.name)) builder.add(entry, base);
    if (context.yield) context.yield();
    if (Aborted(context)) return FillResult::kAborted;
  }
  return FillResult::kDone;
}

FillResult ListFill::Drives(ListModel* model, const FillContext& context) {
  if (context.abort) context.abort->store(false);
  for (const platform::Volume& v : platform::MountedVolumes()) {
    TextRowData row;
    row.texts.resize(14);
    row.keys.resize(14);
    row.texts[0] = platform::DisplayText(v.root);
    row.keys[0] = v.root;
    row.texts[3] = core::DriveTypeName(v.driveType, v.floppy, v.root);
    row.keys[3] = row.texts[3];
    row.sizes.insert(9, v.totalBytes);
    row.sizes.insert(10, v.freeBytes);
    row.sizes.insert(11, double(v.clusterSize));
    row.keys[9] = ByteKey(v.totalBytes);
    row.keys[10] = ByteKey(v.freeBytes);
    row.keys[11] = ByteKey(double(v.clusterSize));
    row.texts[12] = core::VolumeSerialText(v.serial);
    row.keys[12] = row.texts[12];
    row.texts[13] = v.fileSystem;
    row.keys[13] = v.fileSystem;
    row.bytesTotal = v.totalBytes;
    row.bytesFree = v.freeBytes;
    row.iconKey = v.driveType == platform::kDriveRemote    ? QStringLiteral("folder-remote")
                  : v.driveType == platform::kDriveCdRom   ? QStringLiteral("media-optical")
                  : v.driveType == platform::kDriveRemovable ? QStringLiteral("drive-removable-media")
                                                             : QStringLiteral("drive-harddisk");
    row.path = v.root;
    model->addTextRow(std::move(row));
    if (context.yield) context.yield();
    if (Aborted(context)) return FillResult::kAborted;
  }
  return FillResult::kDone;
}

}  // namespace browser
