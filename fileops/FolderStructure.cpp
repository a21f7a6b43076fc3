#include "fileops/FolderStructure.h"

#include <cerrno>

#include "fileops/FileOperation.h"
#include "platform/FileCopier.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

using platform::FileCopier;
using platform::NodeInfo;

namespace {

void Walk(const QString& source, const QString& target, FileOpSink* sink, const std::function<void()>& yield,
          const std::atomic<bool>& abort, FolderStructure::Result* result) {
  if (yield) yield();
  if (abort.load(std::memory_order_relaxed)) {
    result->stopped = true;
    return;
  }
  const int made = FileCopier::MakeFolder(target);
  if (made == 0) {
    ++result->created;
    if (sink) sink->item(ItemOutcome::kCreated, source, target, QString());
  } else if (made == EEXIST && FileCopier::Stat(target).kind == NodeInfo::kFolder) {
    ++result->existing;
  } else {
    ++result->failed;
    if (sink) sink->item(ItemOutcome::kFailed, source, target, platform::ErrorText(made));
    return;
  }
  QStringList names;
  if (const int error = FileCopier::ListNames(source, &names)) {
    ++result->failed;
    if (sink) sink->item(ItemOutcome::kFailed, source, target, platform::ErrorText(error));
    return;
  }
  for (const QString& name : names) {
    if (result->stopped) return;
    const QString child = platform::WithSeparator(source) + name;
    if (FileCopier::Stat(child).kind != NodeInfo::kFolder) continue;  // links to folders are not walked
    Walk(child, platform::WithSeparator(target) + name, sink, yield, abort, result);
  }
}

}  // namespace

QString FolderStructure::Result::status() const {
  if (!refusal.isEmpty()) return refusal;
  QString text = QStringLiteral("%1 folder%2 created, %3 already there, %4 failed.")
                     .arg(created)
                     .arg(created == 1 ? "" : "s")
                     .arg(existing)
                     .arg(failed);
  if (stopped) text += QStringLiteral(" Stopped by the user.");
  return text;
}

FolderStructure::Result FolderStructure::Recreate(const QString& source, const QString& targetFolder,
                                                  FileOpSink* sink, const std::function<void()>& yield,
                                                  const std::atomic<bool>& abort) {
  Result result;
  if (FileCopier::Stat(source).kind != NodeInfo::kFolder) {
    result.refusal = QStringLiteral("The source is not a folder: %1").arg(platform::DisplayText(source));
    return result;
  }
  result.refusal = FileOperation::CheckRequest({source}, targetFolder, false);
  if (!result.refusal.isEmpty()) return result;
  QString name = source;
  while (name.size() > 1 && name.endsWith(platform::kSeparator)) name.chop(1);
  name = name.mid(name.lastIndexOf(platform::kSeparator) + 1);
  result.top = platform::WithSeparator(targetFolder) + name;
  Walk(source, result.top, sink, yield, abort, &result);
  return result;
}

}  // namespace fileops
