#include "find/ContentPool.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>

#include "core/JobFlags.h"
#include "find/FileContains.h"

namespace find {

ContentPool::ContentPool(const TextSearch& search, int threads, size_t capacity)
    : search_(search), ring_(capacity, nullptr) {
  for (int i = 0; i < threads; ++i) threads_.emplace_back([this] { work(); });
}

ContentPool::~ContentPool() {
  {
    std::lock_guard<std::mutex> guard(lock_);
    stop_ = true;
  }
  work_.notify_all();
  for (std::thread& t : threads_) t.join();
}

int ContentPool::WorkersFor(int setting) {
  if (setting > 0) return setting;
  const unsigned cores = std::thread::hardware_concurrency();
  return cores ? int(cores) : 1;
}

void ContentPool::submit(Job* job) {
  const quint64 n = submitted_.load();
  ring_[n % ring_.size()] = job;
  submitted_.store(n + 1);
  // Paired with the sleeper count a worker raises before its last look.
  if (sleepers_.load() > 0) {
    std::lock_guard<std::mutex> guard(lock_);
    work_.notify_one();
  }
}

bool ContentPool::claim(Job** job) {
  quint64 c = claimed_.load();
  while (c < submitted_.load()) {
    if (claimed_.compare_exchange_weak(c, c + 1)) {
      *job = ring_[c % ring_.size()];
      return true;
    }
  }
  return false;
}

void ContentPool::finish(Job& job, platform::FolderHandle* own) {
  // After an abort no file is opened; the walk drops what is left.
  if (!core::JobFlags::AbortRequested()) run(job, own);
  job.done.store(true, std::memory_order_release);
  finished_.fetch_add(1);
  if (walkerWaiting_.load()) {
    std::lock_guard<std::mutex> guard(lock_);
    finished_cv_.notify_all();
  }
}

bool ContentPool::helpOne() {
  Job* job = nullptr;
  if (!claim(&job)) return false;
  finish(*job, nullptr);
  return true;
}

void ContentPool::waitAny(int ms) {
  const quint64 seen = finished_.load();
  std::unique_lock<std::mutex> guard(lock_);
  walkerWaiting_ = true;
  finished_cv_.wait_for(guard, std::chrono::milliseconds(ms), [&] { return finished_.load() != seen; });
  walkerWaiting_ = false;
}

void ContentPool::work() {
  platform::FolderHandle handle;
  platform::FolderHandle* own = platform::UseOwnFileTable() ? &handle : nullptr;
  for (;;) {
    Job* job = nullptr;
    if (claim(&job)) {
      finish(*job, own);
      continue;
    }
    std::unique_lock<std::mutex> guard(lock_);
    ++sleepers_;
    work_.wait(guard, [this] { return stop_.load() || claimed_.load() < submitted_.load(); });
    --sleepers_;
    if (stop_ && claimed_.load() >= submitted_.load()) return;
  }
}

void ContentPool::run(Job& job, platform::FolderHandle* own) const {
  const platform::FolderReader& reader = *job.reader;
  const QString& name = reader.name(job.index);
  constexpr int kFlags = O_RDONLY | O_NOCTTY | O_NONBLOCK | O_NOATIME;
  auto open = [&] {
    if (!own) return reader.openEntry(job.index, kFlags);
    return own->open(job.folder) ? own->openEntry(name, kFlags) : -1;
  };
  if (job.openFirst) {
    // As the single-threaded walk does: the plain file is read first and
    // statted from the open file only when it holds the text.
    const int fd = open();
    if (fd >= 0) {
      job.hit = FileContains(search_, QString(), {}, {nullptr, nullptr, -1, true, -1, fd}) &&
                reader.statOpened(job.index, fd, &job.entry) && job.entry.size > 0;
      close(fd);
      return;
    }
    // O_NOATIME refused (or the file went): by path, which guards the
    // access time.
    if (!platform::StatPath(job.folder + name, &job.entry)) return;
    job.size = qint64(job.entry.size);
    job.regular = !(job.entry.attributes & (platform::kAttrSystem | platform::kAttrDirectory));
  } else if (job.regular) {
    const int fd = open();
    if (fd >= 0) {
      job.hit = FileContains(search_, QString(), {}, {nullptr, nullptr, -1, true, job.size, fd});
      close(fd);
      return;
    }
  }
  job.hit = FileContains(search_, job.folder + name, {}, {nullptr, nullptr, -1, job.regular, job.size});
}

}  // namespace find
