#include "fileops/SourcePrefetcher.h"

#include <sched.h>

#include "platform/NativePath.h"

namespace fileops {

using platform::FileCopier;
using platform::FolderEntry;
using platform::NodeInfo;

SourcePrefetcher::SourcePrefetcher(QStringList folders, const std::atomic<bool>& abort)
    : abort_(abort), thread_(&SourcePrefetcher::run, this, std::move(folders)) {}

SourcePrefetcher::~SourcePrefetcher() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  notFull_.notify_all();
  thread_.join();
}

// Each side wakes the other only when it sleeps, and in batches: a wake-up
// costs far more than a folder.
bool SourcePrefetcher::put(Item item) {
  std::unique_lock lock(mutex_);
  if (queue_.size() >= kAhead) {
    producerWaiting_ = true;
    notFull_.wait(lock, [this] { return stop_ || queue_.size() <= kAhead / 2; });
    producerWaiting_ = false;
  }
  if (stop_) return false;
  queue_.push_back(std::move(item));
  ready_.store(queue_.size(), std::memory_order_release);
  const bool wake = consumerWaiting_ && queue_.size() >= kWakeBatch;
  lock.unlock();
  if (wake) notEmpty_.notify_one();
  return true;
}

bool SourcePrefetcher::take(const QString& path, Entries* entries, int* error) {
  for (int i = 0; i < 16 && ready_.load(std::memory_order_acquire) == 0 && !finished_.load(std::memory_order_acquire);
       ++i)
    sched_yield();
  std::unique_lock lock(mutex_);
  if (off_) return false;
  if (queue_.empty() && !done_) {
    consumerWaiting_ = true;
    notEmpty_.wait(lock, [this] { return queue_.size() >= kWakeBatch || done_; });
    consumerWaiting_ = false;
  }
  if (queue_.empty() || queue_.front().path != path) {
    off_ = stop_ = true;  // out of step with the job: stop reading ahead
    queue_.clear();
    ready_.store(0, std::memory_order_release);
    lock.unlock();
    notFull_.notify_all();
    return false;
  }
  *entries = std::move(queue_.front().entries);
  *error = queue_.front().error;
  queue_.pop_front();
  ready_.store(queue_.size(), std::memory_order_release);
  const bool wake = producerWaiting_ && queue_.size() <= kAhead / 2;
  lock.unlock();
  if (wake) notFull_.notify_one();
  return true;
}

void SourcePrefetcher::run(QStringList folders) {
  struct Frame {
    Entries entries;
    QString path;
    size_t next = 0;
  };
  auto list = [](const QString& path, Item* item) {
    auto entries = std::make_shared<std::vector<FolderEntry>>();
    item->path = path;
    item->error = FileCopier::ListEntries(path, entries.get());
    item->entries = std::move(entries);
  };
  std::vector<Frame> stack;
  for (const QString& top : folders) {
    Item item;
    list(top, &item);
    const bool walk = item.error == 0;
    Entries entries = item.entries;
    if (!put(std::move(item))) break;
    if (walk) stack.push_back({std::move(entries), top, 0});
    bool stopped = false;
    while (!stack.empty()) {
      if (abort_.load(std::memory_order_relaxed)) {
        stopped = true;
        break;
      }
      Frame& frame = stack.back();
      const std::vector<FolderEntry>& names = *frame.entries;
      size_t i = frame.next;
      while (i < names.size() && names[i].info.kind != NodeInfo::kFolder) ++i;
      if (i >= names.size()) {
        stack.pop_back();
        continue;
      }
      frame.next = i + 1;
      Item child;
      // The same path text the job builds for the folder.
      list(platform::WithSeparator(frame.path) + names[i].name, &child);
      const bool enter = child.error == 0;
      Entries childEntries = child.entries;
      QString childPath = child.path;
      if (!put(std::move(child))) {
        stopped = true;
        break;
      }
      if (enter) stack.push_back({std::move(childEntries), std::move(childPath), 0});
    }
    if (stopped) break;
  }
  {
    std::lock_guard lock(mutex_);
    done_ = true;
    finished_.store(true, std::memory_order_release);
  }
  notEmpty_.notify_all();
}

}  // namespace fileops
