#include "find/FindJob.h"

#include <fcntl.h>
#include <unistd.h>

#include <deque>
#include <memory>
#include <vector>

#include "core/JobFlags.h"
#include "core/NumberFormat.h"
#include "find/ContentPool.h"
#include "find/FindFilters.h"
#include "find/FolderPrefetcher.h"
#include "platform/Clock.h"
#include "platform/FolderReader.h"
#include "platform/WildcardPattern.h"

namespace find {

namespace {

// "." and ".." (and an empty name): every name that is a piece of "..".
bool IsDotName(const QString& name) {
  return name.size() <= 2 && (name.isEmpty() || name == u"." || name == u"..");
}

// Entries between two yields inside one folder.
constexpr unsigned kYieldEvery = 256;
// Files handed to the content workers and not yet published, at most. Each
// may hold its folder open, so the window stays well below the fd limit.
constexpr size_t kContentWindow = 128;
// How long the walk waits for a worker before it yields to the window.
constexpr int kWaitSliceMs = 20;

using Reader = FolderPrefetcher::Reader;

class Walker {
 public:
  Walker(FindCriteria& criteria, FindSink& sink) : c_(criteria), sink_(sink) {
    for (const QString& p : criteria.patterns) patterns_.emplace_back(p);
    yieldHook_ = [this] { sink_.yield(); };
    // File contents set the pace of a text find: read them on every core.
    if (c_.textOn && ContentPool::WorkersFor(c_.threads) > 1)
      pool_ = std::make_unique<ContentPool>(c_.search, ContentPool::WorkersFor(c_.threads), kContentWindow);
  }

  bool aborted() const { return aborted_; }

  void walkLocations() {
    walkAll();
    publish(true, 0);
  }

 private:
  // What the walk tells the sink, kept in the walk's order while content
  // jobs ahead of it are still running.
  struct Event {
    enum Kind { kRow, kStatus } kind = kRow;
    std::shared_ptr<ContentPool::Job> job;  // null: the row is known already
    platform::DirEntry entry;
    QString folder, display;  // a row's folders, or a status text
    int mode = 0;
  };

  void abortNow() {
    aborted_ = true;
    // The ring points into these jobs: every one must be done before they
    // go. After the flag a job only marks itself done; none opens a file.
    if (pool_)
      for (const Event& e : events_)
        while (e.job && !ContentPool::Done(*e.job))
          if (!pool_->helpOne()) pool_->waitAny(1);
    events_.clear();
    pending_ = 0;
    sink_.showJobStatus(kStatusAborted, QString());
  }

  void emitRow(const platform::DirEntry& entry, const QString& folder, const QString& display) {
    if (events_.empty()) sink_.addRow(entry, folder, display);
    else events_.push_back({Event::kRow, nullptr, entry, folder, display, 0});
  }
  void emitStatus(int mode, const QString& text) {
    if (events_.empty()) sink_.showJobStatus(mode, text);
    else events_.push_back({Event::kStatus, nullptr, {}, text, QString(), mode});
  }
  void submit(std::shared_ptr<ContentPool::Job> job, const QString& display) {
    // Room in the ring first: it holds only jobs not yet published.
    if (pending_ >= kContentWindow) publish(true, kContentWindow - 1);
    ContentPool::Job* raw = job.get();
    events_.push_back({Event::kRow, std::move(job), {}, raw->folder, display, 0});
    ++pending_;
    pool_->submit(raw);
    publish(false, 0);
  }

  // Hands the finished head of the queue to the sink. With `wait`, waits
  // (yielding to the window) until no more than `keep` events are left.
  void publish(bool wait, size_t keep) {
    while (!events_.empty()) {
      // What the walk had not reached when Escape came is not shown, as it
      // would not have been found.
      if (core::JobFlags::AbortRequested()) {
        if (!aborted_) abortNow();
        return;
      }
      Event& e = events_.front();
      if (e.job && !ContentPool::Done(*e.job)) {
        if (!wait || pending_ <= keep) return;
        // Work on what nobody has taken rather than wait.
        if (!pool_->helpOne()) pool_->waitAny(kWaitSliceMs);
        sink_.yield();
        continue;
      }
      if (e.job) --pending_;
      if (e.kind == Event::kStatus) sink_.showJobStatus(e.mode, e.folder);
      else if (!e.job) sink_.addRow(e.entry, e.folder, e.display);
      else if (e.job->hit) sink_.addRow(e.job->entry, e.folder, e.display);
      events_.pop_front();
    }
  }

  void walkAll() {
    const bool everything = c_.patterns.value(0) == u"*.*";
    for (const QString& location : c_.locations) {
      if (stopNow()) return;
      // A location the user names explicitly is searched even when an
      // exclusion matches it; it then does not count as scanned.
      const bool excludeOn = c_.excludeOn;
      if (!FolderAccepted(c_, location)) c_.excludeOn = false;
      // A helper thread reads the folders of a deep walk ahead of it, unless
      // file contents are read: then files, not folders, set the pace, and a
      // second thread only makes every file operation of the process dearer
      // (the kernel's single-threaded shortcuts end).
      // The helpers also look up the entries whose names match, so that the
      // walk itself only tests and reports them.
      // By default one reader more than cores: the walk itself mostly waits
      // for the folder it needs next, and its core would idle meanwhile.
      if (c_.includeSubfolders && !c_.textOn)
        prefetcher_ = std::make_unique<FolderPrefetcher>(
            location, c_.excludeOn, c_.excludes, ContentPool::WorkersFor(c_.threads) + (c_.threads > 0 ? 0 : 1),
            &patterns_);
      if (!everything && c_.includeSubfolders) scanThenRecurse(nullptr, 0, location, location);
      else scanByPattern(nullptr, 0, location, location);
      prefetcher_.reset();
      c_.excludeOn = excludeOn;
    }
  }

 private:
  bool stopNow() {
    if (aborted_) return true;
    if (++sinceYield_ >= kYieldEvery) {
      sinceYield_ = 0;
      sink_.yield();
    }
    if (!core::JobFlags::AbortRequested()) return false;
    abortNow();
    return true;
  }

  // Yields, shows the folder and reads it: a location by its path, a
  // subfolder relative to its parent (entry `index` of it).
  Reader enterFolder(const platform::FolderReader* parent, qsizetype index, const QString& folder,
                     const QString& display) {
    sinceYield_ = 0;
    sink_.yield();
    emitStatus(kStatusProgress, display);
    if (pool_) publish(false, kContentWindow);
    if (prefetcher_) {
      if (Reader ahead = prefetcher_->take(folder)) return ahead;
    }
    if (parent) return std::make_shared<const platform::FolderReader>(*parent, index);
    return std::make_shared<const platform::FolderReader>(folder);
  }

  bool nameMatches(const platform::FolderReader& reader, qsizetype i, const platform::WildcardPattern& p) const {
    if (reader.isScreened()) {
      // Read ahead: only names that match some pattern were kept.
      if (!reader.passedScreen(i)) return false;
      if (patterns_.size() == 1) return true;
    }
    if (p.matchesEverything() || p.matches(reader.name(i))) return true;
    const QString& alias = reader.alias(i);
    return !alias.isEmpty() && p.matches(alias);
  }

  // Tests entry i against the filters and adds it as a row; false if it vanished.
  bool testEntry(const Reader& owner, const platform::FolderReader& reader, qsizetype i, const QString& folder, const QString& display,
                 platform::DirEntry* entry) {
    if (textOnly_ && pool_ && !reader.isVfat() && reader.isRegularFile(i)) {
      ++c_.nameHits;
      auto job = std::make_shared<ContentPool::Job>();
      job->reader = owner;
      job->folder = folder;
      job->index = i;
      job->openFirst = true;
      submit(std::move(job), display);
      *entry = platform::DirEntry();  // a plain file: nothing to recurse into
      return true;
    }
    if (textOnly_ && reader.isRegularFile(i)) {
      // The text is the only test: read the plain file first and stat only
      // the hits, from the open file. Length 0 still holds nothing: a file
      // that reads as more (a pseudo file) is no hit. (Where the system
      // refuses O_NOATIME, the usual way below guards the times.)
      const int fd = reader.openEntry(i, O_RDONLY | O_NOCTTY | O_NONBLOCK | O_NOATIME);
      if (fd >= 0) {
        bool hit = PassesFilters(c_, platform::DirEntry(), QString(), yieldHook_, {&reader, &folder, i, true, -1, fd});
        hit = hit && reader.statOpened(i, fd, entry) && entry->size > 0;
        close(fd);
        if (hit) emitRow(*entry, folder, display);
        else *entry = platform::DirEntry();  // nothing to recurse into
        return true;
      }
    }
    if (!reader.stat(i, entry)) return false;
    // The file opens relative to its folder; its whole path is made only if needed.
    const bool regular = !(entry->attributes & (platform::kAttrSystem | platform::kAttrDirectory));
    if (pool_) {
      // The cheap filters here, the contents on a worker.
      if (!PassesFiltersButText(c_, *entry) || !regular) return true;
      auto job = std::make_shared<ContentPool::Job>();
      job->reader = owner;
      job->folder = folder;
      job->index = i;
      job->size = qint64(entry->size);
      job->entry = *entry;
      submit(std::move(job), display);
      return true;
    }
    if (PassesFilters(c_, *entry, QString(), yieldHook_, {&reader, &folder, i, regular, qint64(entry->size)}))
      emitRow(*entry, folder, display);
    return true;
  }

  // The subfolder's path for the walk (real name) and for the list (tidied).
  static void subfolder(const QString& folder, const QString& display, const QString& name, QString* sub,
                        QString* subDisplay) {
    *sub = folder + name + u'/';
    const QString tidy = FindJob::TidyFolderName(name);
    if (display.size() == folder.size() && tidy == name && display == folder) *subDisplay = *sub;
    else *subDisplay = display + tidy + u'/';
  }

  // Depth first, pre-order: a folder entry is tested before its contents.
  void scanByPattern(const platform::FolderReader* parent, qsizetype index, const QString& folder,
                     const QString& display) {
    const Reader opened = enterFolder(parent, index, folder, display);
    const platform::FolderReader& reader = *opened;
    if (!reader.isOpen()) return;
    platform::DirEntry entry;
    for (const platform::WildcardPattern& pattern : patterns_) {
      for (qsizetype i = 0; i < reader.count(); ++i) {
        if (stopNow()) return;
        if (IsDotName(reader.name(i)) || !nameMatches(reader, i, pattern)) continue;
        if (!testEntry(opened, reader, i, folder, display, &entry)) continue;
        if (c_.includeSubfolders && entry.isDirectory() && !entry.isLink) {
          QString sub, subDisplay;
          subfolder(folder, display, reader.name(i), &sub, &subDisplay);
          if (FolderAccepted(c_, sub)) scanByPattern(&reader, i, sub, subDisplay);
        }
      }
    }
  }

  // The folder's own hits first (pattern by pattern), then its subfolders in
  // file-system order. The names are read once and serve both passes.
  void scanThenRecurse(const platform::FolderReader* parent, qsizetype index, const QString& folder,
                       const QString& display) {
    const Reader opened = enterFolder(parent, index, folder, display);
    const platform::FolderReader& reader = *opened;
    if (!reader.isOpen()) return;
    platform::DirEntry entry;
    for (const platform::WildcardPattern& pattern : patterns_) {
      for (qsizetype i = 0; i < reader.count(); ++i) {
        if (stopNow()) return;
        if (IsDotName(reader.name(i)) || !nameMatches(reader, i, pattern)) continue;
        testEntry(opened, reader, i, folder, display, &entry);
      }
    }
    for (qsizetype i = 0; i < reader.count(); ++i) {
      if (stopNow()) return;
      if (IsDotName(reader.name(i)) || !reader.isWalkableFolder(i)) continue;
      QString sub, subDisplay;
      subfolder(folder, display, reader.name(i), &sub, &subDisplay);
      if (FolderAccepted(c_, sub)) scanThenRecurse(&reader, i, sub, subDisplay);
    }
  }

  FindCriteria& c_;
  FindSink& sink_;
  std::vector<platform::WildcardPattern> patterns_;
  YieldHook yieldHook_;
  const bool textOnly_ = c_.textOn && !c_.sizeOn && !c_.attrOn && !c_.dateOn;
  std::unique_ptr<FolderPrefetcher> prefetcher_;
  std::deque<Event> events_;
  size_t pending_ = 0;  // content jobs among the events
  std::unique_ptr<ContentPool> pool_;  // after the jobs: it goes (and joins) first
  unsigned sinceYield_ = 0;
  bool aborted_ = false;
};

}  // namespace

QString FindJob::SummaryText(double seconds, qint64 foldersScanned, qint64 nameHits, bool aborted) {
  QString s = core::FormatNumber(seconds, u"0.000");
  s += QStringLiteral(" sec (");
  s += core::FormatNumber(double(foldersScanned), u"#,0");
  s += QStringLiteral(" folders scanned, ");
  s += core::FormatNumber(double(nameHits), u"#,0");
  s += QStringLiteral(" name hits)");
  if (aborted) s += QStringLiteral("  ABORTED");
  return s;
}

QString FindJob::TidyFolderName(const QString& name) {
  if (name.size() >= 13 || name != name.toUpper()) return name;
  QString out = name;
  bool wordStart = true;
  for (QChar& ch : out) {
    ch = wordStart ? ch.toUpper() : ch.toLower();
    wordStart = ch.isSpace();
  }
  return out;
}

bool FindJob::Run(FindCriteria& criteria, FindSink& sink, bool sortAfterwards) {
  core::JobFlags::ClearAbort();
  criteria.foldersScanned = 0;
  criteria.nameHits = 0;
  core::JobFlags::SetBusy(true);
  sink.startFill();
  sink.showJobStatus(kStatusStart, QString());
  const qint64 start = platform::MonotonicMs();

  Walker walker(criteria, sink);
  walker.walkLocations();

  if (sortAfterwards && sink.rowCount() > 0) {
    if (sink.rowCount() > kSilentSortRows) sink.showJobStatus(kStatusProgress, QStringLiteral("Sorting..."));
    sink.sortRows();
  }
  const double seconds = double(platform::MonotonicMs() - start) / 1000.0;
  sink.showJobStatus(kStatusFindEnd,
                     SummaryText(seconds, criteria.foldersScanned, criteria.nameHits, walker.aborted()));
  core::JobFlags::SetBusy(false);
  return !walker.aborted();
}

}  // namespace find
