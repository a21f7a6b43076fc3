#include "find/FolderPrefetcher.h"

#include <sched.h>

#include <vector>

#include "core/JobFlags.h"

namespace find {

namespace {
bool IsDotName(const QString& name) {
  return name.size() <= 2 && (name.isEmpty() || name == u"." || name == u"..");
}
}  // namespace

FolderPrefetcher::FolderPrefetcher(const QString& location, bool excludeOn, const QStringList& excludes)
    : excludeOn_(excludeOn), excludes_(excludes), thread_(&FolderPrefetcher::run, this, location) {}

FolderPrefetcher::~FolderPrefetcher() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  notFull_.notify_all();
  thread_.join();
}

// Each side wakes the other only when it sleeps, and the reader, once ahead
// by kAhead folders, sleeps until the walk has taken half of them: a wake-up
// costs far more than a folder.
bool FolderPrefetcher::put(Item item) {
  std::unique_lock lock(mutex_);
  if (queue_.size() >= kAhead) {
    producerWaiting_ = true;
    notFull_.wait(lock, [this] { return stop_ || queue_.size() <= kAhead / 2; });
    producerWaiting_ = false;
  }
  if (stop_) return false;
  queue_.push_back(std::move(item));
  ready_.store(queue_.size(), std::memory_order_release);
  // A waiting walk is woken when a few folders are ready, not for each one.
  const bool wake = consumerWaiting_ && queue_.size() >= kWakeBatch;
  lock.unlock();
  if (wake) notEmpty_.notify_one();
  return true;
}

FolderPrefetcher::Reader FolderPrefetcher::take(const QString& path) {
  // The next folder is often a few microseconds away: let the reader run a
  // few times before going to sleep.
  for (int i = 0; i < 16 && ready_.load(std::memory_order_acquire) == 0 &&
                  !finished_.load(std::memory_order_acquire);
       ++i)
    sched_yield();
  std::unique_lock lock(mutex_);
  if (off_) return nullptr;
  if (queue_.empty() && !done_) {
    consumerWaiting_ = true;
    notEmpty_.wait(lock, [this] { return queue_.size() >= kWakeBatch || done_; });
    consumerWaiting_ = false;
  }
  if (queue_.empty() || queue_.front().path != path) {
    off_ = stop_ = true;  // out of step with the walk: stop reading ahead
    queue_.clear();
    ready_.store(0, std::memory_order_release);
    lock.unlock();
    notFull_.notify_all();
    return nullptr;
  }
  Reader reader = std::move(queue_.front().reader);
  queue_.pop_front();
  ready_.store(queue_.size(), std::memory_order_release);
  const bool wake = producerWaiting_ && queue_.size() <= kAhead / 2;
  lock.unlock();
  if (wake) notFull_.notify_one();
  return reader;
}

void FolderPrefetcher::run(QString location) {
  struct Frame {
    Reader reader;
    QString path;
    qsizetype next = 0;
  };
  auto excluded = [this](const QString& path) {
    if (!excludeOn_) return false;
    for (const QString& e : excludes_)
      if (path.contains(e, Qt::CaseInsensitive)) return true;
    return false;
  };

  std::vector<Frame> stack;
  Reader root = std::make_shared<const platform::FolderReader>(location);
  if (put({location, root}) && root->isOpen()) stack.push_back({root, location, 0});
  while (!stack.empty()) {
    if (core::JobFlags::AbortRequested()) break;
    Reader parent = stack.back().reader;
    const QString folder = stack.back().path;
    qsizetype i = stack.back().next;
    while (i < parent->count() && (IsDotName(parent->name(i)) || !parent->isWalkableFolder(i))) ++i;
    if (i >= parent->count()) {
      stack.pop_back();
      continue;
    }
    stack.back().next = i + 1;
    QString sub = folder + parent->name(i) + u'/';
    if (excluded(sub)) continue;
    Reader child = std::make_shared<const platform::FolderReader>(*parent, i);
    if (!put({sub, child})) break;
    if (child->isOpen()) stack.push_back({std::move(child), std::move(sub), 0});
  }
  {
    std::lock_guard lock(mutex_);
    done_ = true;
    finished_.store(true, std::memory_order_release);
  }
  notEmpty_.notify_all();
}

}  // namespace find
