#include "fileops/RenameLog.h"

#include <QList>
#include <algorithm>
#include <atomic>

#include "core/RowEscape.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

QString RenameLog::PathBeside(const QString& settingsFile) {
  const qsizetype cut = settingsFile.lastIndexOf(u'/');
  return (cut < 0 ? QStringLiteral(".") : settingsFile.left(cut)) + u'/' + QString::fromLatin1(kFileName);
}

namespace {

// A batch is the run of lines with one stamp, so two batches of one process
// started within the same millisecond (a rename, then its undo) must not
// share it: each stamp is later than the one before.
QString BatchStamp(const QDateTime& batchStart) {
  static std::atomic<qint64> last{0};
  qint64 ms = batchStart.toMSecsSinceEpoch();
  qint64 seen = last.load();
  do {
    ms = std::max(ms, seen + 1);
  } while (!last.compare_exchange_weak(seen, ms));
  return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC).toString(Qt::ISODateWithMs);
}

}  // namespace

RenameLog::RenameLog(const QString& path, const QDateTime& batchStart) : path_(path), stamp_(BatchStamp(batchStart)) {}

QString RenameLog::append(const QString& oldPath, const QString& newPath) {
  int error = file_.isOpen() ? 0 : file_.open(path_);
  if (error == 0) error = file_.append(Line(stamp_, oldPath, newPath));
  if (error == 0) return QString();
  return platform::DisplayText(path_) + QStringLiteral(": ") + platform::ErrorText(error);
}

QByteArray RenameLog::Line(const QString& stamp, const QString& oldPath, const QString& newPath) {
  QString line = core::RowField(stamp);
  line += u'\t';
  core::AppendRowField(&line, oldPath);
  line += u'\t';
  core::AppendRowField(&line, newPath);
  line += u'\n';
  return line.toUtf8();
}

std::vector<RenameItem> RenameLog::LastBatchOf(const QByteArray& text) {
  std::vector<RenameItem> batch;
  QString stamp;
  // Only lines that end in a line feed count: a torn last line is no record.
  qsizetype end = text.lastIndexOf('\n');
  while (end >= 0) {
    const qsizetype start = end == 0 ? 0 : text.lastIndexOf('\n', end - 1) + 1;
    const QString line = QString::fromUtf8(text.constData() + start, end - start);
    end = start - 1;
    const QList<QStringView> fields = QStringView(line).split(u'\t');
    QString time, from, to;
    if (fields.size() != 3 || !core::ParseRowField(fields[0], &time) || !core::ParseRowField(fields[1], &from) ||
        !core::ParseRowField(fields[2], &to) || time.isEmpty())
      continue;
    const qsizetype cutFrom = from.lastIndexOf(u'/'), cutTo = to.lastIndexOf(u'/');
    // An undo only ever renames within one folder.
    if (cutFrom < 0 || cutFrom != cutTo || QStringView(from).left(cutFrom) != QStringView(to).left(cutTo) ||
        cutFrom + 1 == from.size() || cutTo + 1 == to.size())
      continue;
    if (stamp.isEmpty()) stamp = time;
    else if (time != stamp) break;
    RenameItem item;
    item.folder = from.left(cutFrom);
    item.oldName = from.mid(cutFrom + 1);
    item.newName = to.mid(cutTo + 1);
    item.done = true;
    batch.push_back(std::move(item));
  }
  std::reverse(batch.begin(), batch.end());
  return batch;
}

bool RenameLog::LastBatch(const QString& path, std::vector<RenameItem>* batch, QString* error) {
  QByteArray text;
  const int e = platform::AppendFile::ReadAll(path, &text);
  if (e != 0) {
    *error = platform::DisplayText(path) + QStringLiteral(": ") + platform::ErrorText(e);
    return false;
  }
  *batch = LastBatchOf(text);
  if (batch->empty()) {
    *error = platform::DisplayText(path) + QStringLiteral(": no renamed entries in this log");
    return false;
  }
  return true;
}

}  // namespace fileops
