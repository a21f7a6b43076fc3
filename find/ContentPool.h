#pragma once
#include <QString>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "find/TextSearch.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/ThreadFiles.h"

namespace find {

// Reads and searches files for the contained-text test on worker threads,
// while the walk goes on. The walk hands over jobs in its own order and
// publishes their results in that same order, so what a find shows does not
// depend on which worker finished first. A worker that sees the abort flag
// opens no further file; one inside a file stops between blocks.
//
// Files are small and many: a job costs a few microseconds, so the hand-over
// is a ring of claimed indexes, and threads sleep only when there is nothing
// to do. The walk itself takes jobs while it waits for the oldest one.
class ContentPool {
 public:
  struct Job {
    std::shared_ptr<const platform::FolderReader> reader;  // keeps the folder open
    QString folder;
    qsizetype index = 0;
    // True: the text is the only filter; the file is opened, searched and
    // statted from the open file only on a hit (not for FAT folders). False:
    // the walk has statted it and applied the other filters; `size` is its
    // length.
    bool openFirst = false;
    qint64 size = -1;
    bool regular = true;
    // Results, valid once done.
    bool hit = false;
    platform::DirEntry entry;
    std::atomic<bool> done{false};
  };

  // At most `capacity` jobs may be submitted and not yet done.
  ContentPool(const TextSearch& search, int threads, size_t capacity);
  ~ContentPool();
  ContentPool(const ContentPool&) = delete;
  ContentPool& operator=(const ContentPool&) = delete;

  void submit(Job* job);
  static bool Done(const Job& job) { return job.done.load(std::memory_order_acquire); }
  // Runs one job nobody has taken yet on the calling thread; false if none.
  bool helpOne();
  // Sleeps until a job finishes or `ms` pass.
  void waitAny(int ms);

  // Worker threads for a thread setting: 0 means one per core.
  static int WorkersFor(int setting);

 private:
  void work();
  bool claim(Job** job);
  // `own`: the folder handle of a worker with its own file table; null on
  // the walk's thread, which uses the folder's descriptor.
  void finish(Job& job, platform::FolderHandle* own);
  void run(Job& job, platform::FolderHandle* own) const;

  const TextSearch& search_;
  std::vector<Job*> ring_;
  std::atomic<quint64> submitted_{0};
  std::atomic<quint64> claimed_{0};
  std::atomic<quint64> finished_{0};
  std::atomic<int> sleepers_{0};
  std::atomic<bool> walkerWaiting_{false};
  std::atomic<bool> stop_{false};
  std::mutex lock_;
  std::condition_variable work_;      // workers: a job came, or stop
  std::condition_variable finished_cv_;  // the walk: a job finished
  std::vector<std::thread> threads_;
};

}  // namespace find
