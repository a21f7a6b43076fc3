#include "fileops/FileOperation.h"

#include <QElapsedTimer>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <string_view>
#include <thread>
#include <unistd.h>

#include "fileops/SourcePrefetcher.h"
#include "fileops/TransferStatus.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

using platform::FileCopier;
using platform::NodeInfo;

namespace {

// One allocation per path: this runs for every item of a walk.
QString Join(const QString& folder, const QString& name) {
  const bool slash = folder.endsWith(platform::kSeparator);
  QString path;
  path.reserve(folder.size() + !slash + name.size());
  path += folder;
  if (!slash) path += platform::kSeparator;
  path += name;
  return path;
}

// The last name of a path and the folder it is in, as views into the path
// (trailing separators left out): no copy for the look-ups done per item.
QStringView Trimmed(QStringView path) {
  while (path.size() > 1 && path.endsWith(platform::kSeparator)) path.chop(1);
  return path;
}

// The last separator's index, or -1; a plain loop, as names are short.
qsizetype LastSeparator(QStringView path) {
  const char16_t* u = reinterpret_cast<const char16_t*>(path.utf16());
  for (qsizetype i = path.size() - 1; i >= 0; --i)
    if (u[i] == u'/') return i;
  return -1;
}

// The folder a path is in and its last name, in one look.
void Split(QStringView path, QStringView* parent, QStringView* name) {
  path = Trimmed(path);
  const qsizetype cut = LastSeparator(path);
  *name = path.mid(cut + 1);
  *parent = cut < 0 ? QStringView(u".") : cut == 0 ? QStringView(u"/") : path.left(cut);
}

QStringView NameView(QStringView path) {
  path = Trimmed(path);
  return path.mid(LastSeparator(path) + 1);
}

QStringView ParentView(QStringView path) {
  QStringView parent, name;
  Split(path, &parent, &name);
  return parent;
}

QString NameOf(const QString& path) { return NameView(path).toString(); }
QString ParentOf(const QString& path) { return ParentView(path).toString(); }

// A name that the *at calls take as it is: not "/", "." or "..", and no
// trailing separator (which would follow a link).
bool PlainName(const QString& path, QStringView name) {
  return !path.endsWith(platform::kSeparator) && !name.isEmpty() && name != u"." && name != u"..";
}

bool Inside(const QString& path, const QString& folder) {
  return path == folder || path.startsWith(platform::WithSeparator(folder));
}

// The descriptor of `folder`, reusing the one held when it is the same folder.
int HeldFolder(QString* held, int* fd, QStringView folder) {
  if (*fd >= 0 && *held == folder) return *fd;
  FileCopier::CloseFolder(*fd);
  *held = folder.toString();
  *fd = FileCopier::OpenFolder(*held);
  return *fd;
}

// From this many sources on, other threads help look at them, or one read
// of their folder does.
constexpr qsizetype kParallelLookFrom = 512;

// A large selection from one folder, when only the kinds of its names are
// needed: one read of the folder instead of a look per name. Only for a
// folder on the target's file system: files going elsewhere are copied and
// verified against their size.
bool KindsFromFolder(const QStringList& sources, quint64 targetDevice, std::vector<NodeInfo>* found) {
  if (sources.size() < kParallelLookFrom) return false;
  QStringView parent, name;
  Split(sources.front(), &parent, &name);
  // All the names in one buffer: a selection of thousands makes no string each.
  QByteArray bytes, native;
  std::vector<std::pair<qsizetype, qsizetype>> spans;
  spans.reserve(size_t(sources.size()));
  for (const QString& source : sources) {
    QStringView p, n;
    Split(source, &p, &n);
    if (p != parent || !PlainName(source, n)) return false;
    platform::ToNative(n, &native);
    spans.emplace_back(bytes.size(), native.size());
    bytes += native;
  }
  std::vector<std::string_view> names;
  names.reserve(spans.size());
  for (const auto& [at, size] : spans) names.emplace_back(bytes.constData() + at, size_t(size));
  const QString folder = parent.toString();
  return FileCopier::DeviceOf(folder) == targetDevice && FileCopier::KindsIn(folder, names, found);
}

// Fills `found` with what each source is; a large selection is shared out
// over the cores, one slice of at least kParallelLookFrom / 2 each. A
// selection comes from one folder: its names are looked up relative to it.
void StatAll(const QStringList& sources, std::vector<NodeInfo>* found) {
  const auto statRange = [&sources, found](qsizetype from, qsizetype to) {
    QString held;
    int heldFd = -1;
    QByteArray native;
    for (qsizetype i = from; i < to; ++i) {
      const QString& source = sources[i];
      QStringView parent, name;
      Split(source, &parent, &name);
      const int parentFd = PlainName(source, name) ? HeldFolder(&held, &heldFd, parent) : -1;
      if (parentFd >= 0) platform::ToNative(name, &native);
      (*found)[size_t(i)] = parentFd >= 0 ? FileCopier::StatAt(parentFd, native) : FileCopier::Stat(source);
    }
    FileCopier::CloseFolder(heldFd);
  };
  const qsizetype n = sources.size();
  found->assign(size_t(n), NodeInfo());
  const qsizetype parts = n < kParallelLookFrom ? 1
                          : std::clamp<qsizetype>(n / (kParallelLookFrom / 2), 1,
                                                  qsizetype(std::max(1u, std::thread::hardware_concurrency())));
  std::vector<std::thread> helpers;
  for (qsizetype part = 1; part < parts; ++part) {
    const qsizetype from = n * part / parts, to = n * (part + 1) / parts;
    try {
      helpers.emplace_back(statRange, from, to);
    } catch (const std::system_error&) {
      statRange(from, to);
    }
  }
  statRange(0, n / parts);
  for (std::thread& helper : helpers) helper.join();
}

qint64 Now() {
  static QElapsedTimer timer;
  if (!timer.isValid()) timer.start();
  return timer.elapsed();
}

}  // namespace

QString FileOpResult::status(bool move) const {
  if (!refusal.isEmpty()) return refusal;
  return QString::fromStdString(TransferStatus({copied, moved, created, skipped, failed, notDone, stopped}, move));
}

FileOperation::FileOperation(FileOpSink* sink, std::function<void()> yield, const std::atomic<bool>& abort,
                             FileOpOptions options)
    : sink_(sink), yield_(std::move(yield)), abort_(abort), options_(options) {
  switch (options_.onConflict) {
    case ConflictPolicy::kAsk: break;
    case ConflictPolicy::kSkip: haveAll_ = true, all_ = ConflictChoice::kSkip; break;
    case ConflictPolicy::kKeepBoth: haveAll_ = true, all_ = ConflictChoice::kKeepBoth; break;
    case ConflictPolicy::kOverwrite: haveAll_ = true, all_ = ConflictChoice::kOverwrite; break;
  }
}

FileOperation::~FileOperation() {
  FileCopier::CloseFolder(fromFd_);
  FileCopier::CloseFolder(toFd_);
}

QString FileOperation::KeepBothName(const QString& folder, const QString& name) {
  // The extension stays at the end; a leading dot is part of the name.
  qsizetype dot = name.lastIndexOf(u'.');
  if (dot <= 0) dot = name.size();
  const QString base = name.left(dot);
  const QString ext = name.mid(dot);
  for (int n = 2;; ++n) {
    const QString candidate = QStringLiteral("%1 (%2)%3").arg(base).arg(n).arg(ext);
    if (FileCopier::Stat(Join(folder, candidate)).kind == NodeInfo::kMissing) return candidate;
  }
}

QString FileOperation::CheckRequest(const QStringList& sources, const QString& targetFolder, bool move,
                                   std::vector<NodeInfo>* infos, bool kindsOnly, bool missingRefuses) {
  const QString target = FileCopier::RealPath(targetFolder);
  const NodeInfo targetInfo = target.isEmpty() ? NodeInfo() : FileCopier::Stat(target);
  if (targetInfo.kind != NodeInfo::kFolder)
    return QStringLiteral("The target folder does not exist: %1").arg(platform::DisplayText(targetFolder));
  std::vector<NodeInfo> own;
  std::vector<NodeInfo>& found = infos ? *infos : own;
  // Every source is looked at before anything is done.
  const qsizetype n = sources.size();
  if (!(kindsOnly && KindsFromFolder(sources, targetInfo.device, &found))) StatAll(sources, &found);
  for (qsizetype i = 0; i < n; ++i) {
    const NodeInfo& info = found[size_t(i)];
    if (info.kind == NodeInfo::kMissing && missingRefuses)
      return QStringLiteral("The source does not exist: %1").arg(platform::DisplayText(sources[i]));
    if (info.kind != NodeInfo::kFolder) continue;
    // The source itself is not resolved: a link to a folder is copied as a link.
    const QString real = FileCopier::RealPath(sources[i]);
    if (Inside(target, real)) {
      return QStringLiteral("Cannot %1 a folder into itself: %2")
          .arg(move ? "move" : "copy", platform::DisplayText(sources[i]));
    }
  }
  return QString();
}

FileOpResult FileOperation::run(const QStringList& sources, const QString& targetFolder) {
  result_ = FileOpResult();
  progress_ = OpProgress();
  std::vector<NodeInfo> infos;
  // A move that renames needs only what each source is; progress by bytes
  // and dry runs need sizes.
  const bool kindsOnly = options_.move && !options_.countFirst && !options_.dryRun;
  result_.refusal =
      CheckRequest(sources, targetFolder, options_.move, &infos, kindsOnly, !options_.sourcesMayBeGone);
  if (!result_.refusal.isEmpty()) return result_;
  if (options_.countFirst) {
    progress_.bytesTotal = progress_.filesTotal = 0;
    for (const QString& source : sources) count(source);
  }
  QStringList folders;
  for (qsizetype i = 0; i < sources.size(); ++i)
    if (infos[size_t(i)].kind == NodeInfo::kFolder) folders.append(sources[i]);
  // A backup lists every source folder it meets and copies little, so a
  // helper thread reading the sources ahead halves its walk; a plain copy
  // spends its time on the data, and a move renames whole folders.
  if (options_.onlyNewer && options_.recurse && !folders.isEmpty()) {
    try {
      prefetch_ = std::make_unique<SourcePrefetcher>(folders, abort_);
    } catch (const std::system_error&) {
      // No thread to be had: the job reads for itself.
    }
  }
  for (qsizetype i = 0; i < sources.size(); ++i) {
    if (stopNow()) break;
    node(sources[i], targetFolder, NameOf(sources[i]), infos[size_t(i)], true, Folders());
  }
  prefetch_.reset();
  FileCopier::CloseFolder(fromFd_);
  FileCopier::CloseFolder(toFd_);
  fromFd_ = toFd_ = -1;
  if (result_.stopped && progress_.filesTotal >= 0) result_.notDone = progress_.filesTotal - progress_.filesDone;
  tick(QString());
  return result_;
}

void FileOperation::count(const QString& path) {
  const NodeInfo info = FileCopier::Stat(path);
  if (info.kind != NodeInfo::kFolder) {
    progress_.filesTotal += 1;
    if (info.kind == NodeInfo::kFile) progress_.bytesTotal += info.size;
    return;
  }
  QStringList names;
  FileCopier::ListNames(path, &names);
  for (const QString& name : names) count(Join(path, name));
}

bool FileOperation::stopNow() {
  if (yield_) yield_();
  if (abort_.load(std::memory_order_relaxed)) result_.stopped = true;
  return result_.stopped;
}

void FileOperation::tick(const QString& current) {
  const qint64 now = Now();
  if (!current.isEmpty() && now - lastTick_ < 50) return;
  lastTick_ = now;
  if (!current.isEmpty()) progress_.current = current;
  if (sink_) sink_->progress(progress_);
}

void FileOperation::report(ItemOutcome outcome, const QString& source, const QString& target, const QString& detail) {
  switch (outcome) {
    case ItemOutcome::kCopied: ++result_.copied; break;
    case ItemOutcome::kMoved: ++result_.moved; break;
    case ItemOutcome::kCreated: ++result_.created; break;
    case ItemOutcome::kSkipped: ++result_.skipped; break;
    case ItemOutcome::kFailed: ++result_.failed; break;
  }
  if (sink_) sink_->item(outcome, source, target, detail);
}

void FileOperation::fail(const QString& source, const QString& target, int error) {
  report(ItemOutcome::kFailed, source, target, platform::ErrorText(error));
}

ConflictChoice FileOperation::resolve(const QString& source, const QString& target) {
  if (haveAll_) return all_;
  const ConflictAnswer answer = sink_ ? sink_->askConflict(source, target) : ConflictAnswer();
  if (answer.applyToAll) haveAll_ = true, all_ = answer.choice;
  return answer.choice;
}

QString FileOperation::TempLeafName() {
  // Short and fixed in length, so that it fits wherever a 255-byte name does.
  static std::atomic<quint64> counter{0};
  static const long long pid = ::getpid();
  char name[64];
  const int n = std::snprintf(name, sizeof name, ".quorvane-%lld-%llu.part", pid, (unsigned long long)++counter);
  return QString::fromLatin1(name, n);
}

bool FileOperation::sameFileSystem(const NodeInfo& info, QStringView targetFolder) {
  if (deviceFolder_.isNull() || deviceFolder_ != targetFolder) {
    deviceFolder_ = targetFolder.toString();
    folderDevice_ = FileCopier::DeviceOf(deviceFolder_);
  }
  return folderDevice_ != 0 && info.kind != NodeInfo::kMissing && info.device == folderDevice_;
}

bool FileOperation::renameInto(const QString& source, const QString& target, bool overwrite, int* error) {
  if (overwrite) {
    *error = FileCopier::RenameReplace(source, target);
    return *error == 0;
  }
  // Relative to the two folders held open; a change of case only, and names
  // that are not plain, take the path route that knows about them.
  // Names first: they settle it in one look for a copy's temporary name, and
  // folders differ early for a move; the case-blind look at whole paths is slow.
  QStringView fromParent, fromName, toParent, toName;
  Split(source, &fromParent, &fromName);
  Split(target, &toParent, &toName);
  // Texts of different lengths never match case-blind: most moves end there.
  const bool caseOnly = fromName.size() == toName.size() && fromParent.size() == toParent.size() &&
                        fromName.compare(toName, Qt::CaseInsensitive) == 0 &&
                        fromParent.compare(toParent, Qt::CaseInsensitive) == 0;
  if (!caseOnly && PlainName(source, fromName) && PlainName(target, toName)) {
    const int fromFd = HeldFolder(&fromFolder_, &fromFd_, fromParent);
    const int toFd = fromFd >= 0 ? HeldFolder(&toFolder_, &toFd_, toParent) : -1;
    if (toFd >= 0) {
      platform::ToNative(fromName, &fromName_);
      // A move keeps the name: its bytes are made once.
      const bool sameName = toName == fromName;
      if (!sameName) platform::ToNative(toName, &toName_);
      *error = platform::RenameNoReplaceAt(fromFd, fromName_, toFd, sameName ? fromName_ : toName_);
      return *error == 0;
    }
  }
  *error = platform::RenameNoReplace(source, target);
  return *error == 0;
}

FileOperation::Step FileOperation::settle(const QString& source, const QString& targetFolder, const NodeInfo& info,
                                          const NodeInfo& there, QString* name, QString* target, bool* overwrite,
                                          bool* merge) {
  if (there.device == info.device && there.inode == info.inode) {
    // The item onto itself: a copy becomes a second one beside it, a move has nothing to do.
    if (options_.move) {
      if (info.kind != NodeInfo::kFolder) ++progress_.filesDone;
      report(ItemOutcome::kSkipped, source, *target, QStringLiteral("It is already there."));
      return Step::kSkip;
    }
    *name = KeepBothName(targetFolder, *name);
    *target = Join(targetFolder, *name);
  } else if (info.kind == NodeInfo::kFolder && there.kind == NodeInfo::kFolder) {
    *merge = true;
  } else if (options_.onlyNewer) {
    if (there.kind == NodeInfo::kFolder || info.kind == NodeInfo::kFolder) {
      if (info.kind != NodeInfo::kFolder) ++progress_.filesDone;
      report(ItemOutcome::kFailed, source, *target, QStringLiteral("A file and a folder have the same name."));
      return Step::kSkip;
    }
    if (info.mtimeNs <= there.mtimeNs) {
      ++progress_.filesDone;
      fileBytesBase_ += info.size;
      progress_.bytesDone = fileBytesBase_;
      report(ItemOutcome::kSkipped, source, *target, QStringLiteral("Not newer."));
      return Step::kSkip;
    }
    *overwrite = true;
  } else {
    switch (resolve(source, *target)) {
      case ConflictChoice::kStop: result_.stopped = true; return Step::kStop;
      case ConflictChoice::kSkip:
        if (info.kind != NodeInfo::kFolder) {
          ++progress_.filesDone;
          fileBytesBase_ += info.size;
      progress_.bytesDone = fileBytesBase_;
        }
        report(ItemOutcome::kSkipped, source, *target, QStringLiteral("The name is taken."));
        return Step::kSkip;
      case ConflictChoice::kKeepBoth:
        *name = KeepBothName(targetFolder, *name);
        *target = Join(targetFolder, *name);
        break;
      case ConflictChoice::kOverwrite:
        if ((there.kind == NodeInfo::kFolder) != (info.kind == NodeInfo::kFolder)) {
          if (info.kind != NodeInfo::kFolder) ++progress_.filesDone;
          report(ItemOutcome::kFailed, source, *target, QStringLiteral("A file and a folder have the same name."));
          return Step::kSkip;
        }
        *overwrite = true;
        break;
    }
  }
  return Step::kGo;
}

void FileOperation::node(const QString& source, const QString& targetFolder, const QString& givenName,
                         const NodeInfo& info, bool top, const Folders& at) {
  if (stopNow()) return;
  if (!top && !options_.recurse && info.kind == NodeInfo::kFolder) return;
  QString name = givenName;
  QString target = Join(targetFolder, name);
  if (info.kind == NodeInfo::kMissing) {
    ++progress_.filesDone;
    fail(source, target, info.error ? info.error : ENOENT);
    return;
  }
  bool overwrite = false;
  bool merge = false;
  // A file's name is checked by the no-replace rename that puts it in place,
  // which saves a look per file; folders, backups and dry runs look first.
  const bool lookFirst = info.kind == NodeInfo::kFolder || options_.onlyNewer || options_.dryRun;
  if (lookFirst) {
    const NodeInfo there =
        at.target >= 0 && at.native ? FileCopier::StatAt(at.target, *at.native) : FileCopier::Stat(target);
    if (there.kind != NodeInfo::kMissing) {
      if (settle(source, targetFolder, info, there, &name, &target, &overwrite, &merge) != Step::kGo) return;
    }
  }
  bool done;
  if (info.kind == NodeInfo::kFolder) done = folder(source, target, info, merge);
  else done = leaf(source, &target, info, overwrite, at);
  if (top && done && result_.firstTarget.isNull()) result_.firstTarget = target;
}

bool FileOperation::folder(const QString& source, const QString& target, const NodeInfo& info, bool exists) {
  if (options_.move && !exists && sameFileSystem(info, ParentView(target))) {
    int error = 0;
    if (!options_.dryRun && !renameInto(source, target, false, &error)) {
      fail(source, target, error);
      return false;
    }
    if (progress_.filesTotal >= 0) {
      // The whole subtree is done at once.
      const OpProgress before = progress_;
      progress_.filesTotal = progress_.bytesTotal = 0;
      count(options_.dryRun ? source : target);
      const qint64 files = progress_.filesTotal, bytes = progress_.bytesTotal;
      progress_ = before;
      progress_.filesDone += files;
      progress_.bytesDone += bytes;
    }
    report(ItemOutcome::kMoved, source, target);
    return true;
  }
  SourcePrefetcher::Entries entries;
  int listError = 0;
  if (!prefetch_ || !prefetch_->take(source, &entries, &listError)) {
    auto own = std::make_shared<std::vector<platform::FolderEntry>>();
    listError = FileCopier::ListEntries(source, own.get());
    entries = std::move(own);
  }
  if (listError) {
    fail(source, target, listError);
    return false;
  }
  if (!exists) {
    // Writable by us until its contents are in; its own permissions come last.
    if (!options_.dryRun) {
      if (const int error = FileCopier::MakeFolder(target, 0700)) {
        fail(source, target, error);
        return false;
      }
    }
    report(ItemOutcome::kCreated, source, target);
  }
  const qint64 failedBefore = result_.failed + result_.skipped;
  // Names in the target are looked up relative to it; a dry run may have no target yet.
  Folders at;
  at.target = options_.dryRun && !exists ? -1 : FileCopier::OpenFolder(target);
  at.source = options_.dryRun ? -1 : FileCopier::OpenFolder(source);
  for (const platform::FolderEntry& e : *entries) {
    if (stopNow()) break;
    at.native = &e.native;
    node(Join(source, e.name), target, e.name, e.info, false, at);
  }
  FileCopier::CloseFolder(at.target);
  FileCopier::CloseFolder(at.source);
  if (options_.dryRun) return true;
  if (!exists) {
    if (const int error = FileCopier::CopyFolderMeta(source, target)) fail(source, target, error);
  }
  // A moved folder goes only when everything in it went.
  if (options_.move && !result_.stopped && result_.failed + result_.skipped == failedBefore) {
    if (const int error = FileCopier::RemoveFolder(source)) fail(source, target, error);
  }
  return true;
}

bool FileOperation::leaf(const QString& source, QString* targetPath, const NodeInfo& info, bool overwrite,
                         const Folders& at) {
  QString& target = *targetPath;
  tick(source);
  const qint64 size = info.kind == NodeInfo::kFile ? info.size : 0;
  auto finish = [&] {
    ++progress_.filesDone;
    fileBytesBase_ += size;
    progress_.bytesDone = fileBytesBase_;
  };
  if (info.kind == NodeInfo::kDevice || info.kind == NodeInfo::kSocket) {
    finish();
    report(ItemOutcome::kSkipped, source, target,
           info.kind == NodeInfo::kDevice ? QStringLiteral("A device is not copied.")
                                          : QStringLiteral("A socket is not copied."));
    return false;
  }
  // Made when needed (a taken name, a copy's temporary name), not for each rename.
  QString targetFolder, name;
  auto names = [&] {
    if (!targetFolder.isNull()) return;
    targetFolder = ParentOf(target);
    name = NameOf(target);
  };
  // Puts `from` under the target name without replacing anything the user
  // did not choose to replace; a taken name is settled then. 0 placed, -1
  // skipped or stopped (already reported), else an errno value.
  // `put` puts it there once (0 or an errno value), replacing only when told to.
  auto placeBy = [&](const auto& put) -> int {
    for (int round = 0; round < 4; ++round) {
      const int error = put(overwrite);
      if (error == 0) return 0;
      if (error != EEXIST || overwrite) return error;
      const NodeInfo there = FileCopier::Stat(target);
      if (there.kind == NodeInfo::kMissing) continue;
      bool merge = false;
      names();
      if (settle(source, targetFolder, info, there, &name, &target, &overwrite, &merge) != Step::kGo) return -1;
    }
    return EEXIST;
  };
  auto place = [&](const QString& from) {
    return placeBy([&](bool replace) {
      int error = 0;
      renameInto(from, target, replace, &error);
      return error;
    });
  };
  const bool sameFs = options_.move && sameFileSystem(info, ParentView(target));
  if (options_.dryRun) {
    finish();
    if (!sameFs) result_.bytes += size;
    report(options_.move ? ItemOutcome::kMoved : ItemOutcome::kCopied, source, target);
    return true;
  }
  if (sameFs) {
    if (source == target) {
      finish();
      report(ItemOutcome::kSkipped, source, target, QStringLiteral("It is already there."));
      return false;
    }
    const int error = place(source);
    if (error < 0) return false;
    finish();
    if (error) {
      fail(source, target, error);
      return false;
    }
    report(ItemOutcome::kMoved, source, target);
    return true;
  }

  names();
  const qint64 base = fileBytesBase_;
  const FileCopier::BlockHook hook = [&](qint64 done) {
    progress_.bytesDone = base + done;
    tick(source);
    return !stopNow();
  };
  // Within a folder walk both folders are open: no path walk per file. The
  // copy goes to an unnamed file that is given its name when complete: one
  // name made instead of a temporary one made and renamed.
  const bool walked = at.source >= 0 && at.target >= 0 && at.native;
  int error = EOPNOTSUPP;
  if (info.kind == NodeInfo::kFile && walked && !noUnnamed_) {
    int unnamed = -1;
    error = FileCopier::CopyFileUnnamed(at.source, *at.native, at.target, options_.blockSize, hook, &unnamed);
    if (error == EOPNOTSUPP) noUnnamed_ = true;
    if (error == 0) {
      error = placeBy([&](bool replace) {
        if (!replace) return FileCopier::LinkUnnamed(unnamed, at.target, platform::ToNative(NameOf(target)));
        // Replacing goes through a temporary name, as links cannot replace.
        const QString temp = Join(targetFolder, TempLeafName());
        int e = FileCopier::LinkUnnamed(unnamed, at.target, platform::ToNative(NameOf(temp)));
        if (e == 0 && !renameInto(temp, target, true, &e)) FileCopier::RemoveFile(temp);
        return e;
      });
      ::close(unnamed);
      if (error < 0) return false;
    }
  }
  if (error == EOPNOTSUPP) {
    const QString tempLeaf = TempLeafName();
    const QString temp = Join(targetFolder, tempLeaf);
    if (info.kind == NodeInfo::kFile) {
      error = walked ? FileCopier::CopyFileAt(at.source, *at.native, at.target, platform::ToNative(tempLeaf),
                                              options_.blockSize, hook)
                     : FileCopier::CopyFile(source, temp, options_.blockSize, hook);
    } else if (info.kind == NodeInfo::kLink) {
      error = FileCopier::CopyLink(source, temp);
    } else {
      error = FileCopier::CopyFifo(source, temp);
    }
    if (error == 0) {
      error = place(temp);
      if (error != 0) FileCopier::RemoveFile(temp);
      if (error < 0) return false;
    }
  }
  if (error == ECANCELED) return false;  // stopped inside the file: it was never there
  finish();
  if (error == ESTALE) {
    report(ItemOutcome::kFailed, source, target, QStringLiteral("The file changed while it was copied."));
    return false;
  }
  if (error) {
    fail(source, target, error);
    return false;
  }
  result_.bytes += size;
  if (!options_.move) {
    report(ItemOutcome::kCopied, source, target);
    return true;
  }
  // Across file systems the source goes only when the copy is there in full.
  const NodeInfo copy = FileCopier::Stat(target);
  if (copy.kind != info.kind || copy.size != info.size) {
    report(ItemOutcome::kFailed, source, target, QStringLiteral("The copy could not be verified; the source is kept."));
    return false;
  }
  if ((error = FileCopier::RemoveFile(source))) {
    report(ItemOutcome::kFailed, source, target,
           QStringLiteral("Copied, but the source could not be removed: %1").arg(platform::ErrorText(error)));
    return true;
  }
  report(ItemOutcome::kMoved, source, target);
  return true;
}

}  // namespace fileops
