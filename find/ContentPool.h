#pragma once
#include <QString>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "find/TextSearch.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"

namespace find {

// Reads and searches files for the contained-text test on worker threads,
// while the walk goes on. The walk hands over jobs in its own order and
// publishes their results in that same order, so what a find shows does not
// depend on which worker finished first. A worker that sees the abort flag
// opens no further file; one inside a file stops between blocks.
class ContentPool {
 public:
  struct Job {
    std::shared_ptr<const platform::FolderReader> reader;  // keeps the folder open
    QString folder;
    qsizetype index = 0;
    // True: the text is the only filter; the file is opened, searched and
    // statted from the open file only on a hit. False: the walk has statted
    // it and applied the other filters; `size` is its length.
    bool openFirst = false;
    qint64 size = -1;
    bool regular = true;
    // Results, valid once done.
    bool hit = false;
    platform::DirEntry entry;
    bool done = false;  // guarded by the pool's lock
  };
  using JobPtr = std::shared_ptr<Job>;

  ContentPool(const TextSearch& search, int threads);
  ~ContentPool();
  ContentPool(const ContentPool&) = delete;
  ContentPool& operator=(const ContentPool&) = delete;

  void submit(JobPtr job);
  // Waits at most `ms` for the job; true when it is done.
  bool waitFor(const Job& job, int ms);

  // Worker threads for a thread setting: 0 means one per core.
  static int WorkersFor(int setting);

 private:
  void work();
  void run(Job& job) const;

  const TextSearch& search_;
  std::mutex lock_;
  std::condition_variable wake_;  // workers: a job came, or stop
  std::condition_variable done_;  // the walk: a job finished
  std::deque<JobPtr> queue_;
  bool stop_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace find
