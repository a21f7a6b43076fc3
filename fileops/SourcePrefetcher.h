#pragma once
#include <QString>
#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/FileCopier.h"

namespace fileops {

// Lists the source folders of a copy ahead of it on a helper thread, each
// name with its lstat data, in the job's own order (the given folders one
// after the other, each depth first, pre-order, subfolders in listing
// order), so that the job finds each folder already read while it deals
// with the targets. A folder the job does not expect next (it left a
// subtree out, or the tree changed meanwhile) switches the read-ahead off
// and the job reads for itself from then on. What is copied, skipped and
// reported does not depend on it.
class SourcePrefetcher {
 public:
  using Entries = std::shared_ptr<const std::vector<platform::FolderEntry>>;

  SourcePrefetcher(QStringList folders, const std::atomic<bool>& abort);
  ~SourcePrefetcher();
  SourcePrefetcher(const SourcePrefetcher&) = delete;
  SourcePrefetcher& operator=(const SourcePrefetcher&) = delete;

  // The next folder read ahead, if it is `path`: its entries and the error
  // of its listing (0 or an errno value). False when the read-ahead went
  // another way (it is then off for good).
  bool take(const QString& path, Entries* entries, int* error);

 private:
  struct Item {
    QString path;
    Entries entries;
    int error = 0;
  };
  void run(QStringList folders);
  bool put(Item item);  // false when told to stop

  static constexpr size_t kAhead = 64;     // folders held ahead
  static constexpr size_t kWakeBatch = 8;  // folders ready before a waiting job is woken

  const std::atomic<bool>& abort_;
  std::mutex mutex_;
  std::condition_variable notEmpty_;
  std::condition_variable notFull_;
  std::deque<Item> queue_;
  std::atomic<size_t> ready_{0};
  std::atomic<bool> finished_{false};
  bool stop_ = false;
  bool done_ = false;
  bool consumerWaiting_ = false;
  bool producerWaiting_ = false;
  bool off_ = false;
  std::thread thread_;
};

}  // namespace fileops
