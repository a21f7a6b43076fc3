#include "find/ContentPool.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>

#include "core/JobFlags.h"
#include "find/FileContains.h"

namespace find {

ContentPool::ContentPool(const TextSearch& search, int threads) : search_(search) {
  for (int i = 0; i < threads; ++i) threads_.emplace_back([this] { work(); });
}

ContentPool::~ContentPool() {
  {
    std::lock_guard<std::mutex> guard(lock_);
    stop_ = true;
  }
  wake_.notify_all();
  for (std::thread& t : threads_) t.join();
}

int ContentPool::WorkersFor(int setting) {
  if (setting > 0) return setting;
  const unsigned cores = std::thread::hardware_concurrency();
  return cores ? int(cores) : 1;
}

void ContentPool::submit(JobPtr job) {
  {
    std::lock_guard<std::mutex> guard(lock_);
    queue_.push_back(std::move(job));
  }
  wake_.notify_one();
}

bool ContentPool::waitFor(const Job& job, int ms) {
  std::unique_lock<std::mutex> guard(lock_);
  return done_.wait_for(guard, std::chrono::milliseconds(ms), [&] { return job.done; });
}

void ContentPool::work() {
  for (;;) {
    JobPtr job;
    {
      std::unique_lock<std::mutex> guard(lock_);
      wake_.wait(guard, [this] { return stop_ || !queue_.empty(); });
      if (queue_.empty()) return;  // stopping
      job = std::move(queue_.front());
      queue_.pop_front();
    }
    // After an abort no file is opened; the walk drops what is left.
    if (!core::JobFlags::AbortRequested()) run(*job);
    {
      std::lock_guard<std::mutex> guard(lock_);
      job->done = true;
    }
    done_.notify_all();
  }
}

void ContentPool::run(Job& job) const {
  const platform::FolderReader& reader = *job.reader;
  if (job.openFirst) {
    // As the single-threaded walk does: the plain file is read first and
    // statted from the open file only when it holds the text.
    const int fd = reader.openEntry(job.index, O_RDONLY | O_NOCTTY | O_NONBLOCK | O_NOATIME);
    if (fd >= 0) {
      job.hit = FileContains(search_, QString(), {}, {&reader, &job.folder, job.index, true, -1, fd}) &&
                reader.statOpened(job.index, fd, &job.entry) && job.entry.size > 0;
      close(fd);
      return;
    }
    // O_NOATIME refused: stat first, and let the search guard the access time.
    if (!reader.stat(job.index, &job.entry)) return;
    job.size = qint64(job.entry.size);
    job.regular = !(job.entry.attributes & (platform::kAttrSystem | platform::kAttrDirectory));
  }
  job.hit = FileContains(search_, QString(), {}, {&reader, &job.folder, job.index, job.regular, job.size});
}

}  // namespace find
