#pragma once
#include <QString>
#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/FolderReader.h"

namespace find {

// Reads the folders of one location ahead of the walk on a helper thread, in
// the walk's own folder order (depth first, pre-order, subfolders in
// file-system order, excluded folders left out), so that the walk finds each
// folder's names already in memory. The walk takes them one by one by path;
// a folder it does not expect next (the tree changed meanwhile) switches the
// read-ahead off and the walk reads for itself from then on. Rows, their
// order and the abort behaviour do not depend on it.
class FolderPrefetcher {
 public:
  using Reader = std::shared_ptr<const platform::FolderReader>;

  FolderPrefetcher(const QString& location, bool excludeOn, const QStringList& excludes);
  ~FolderPrefetcher();
  FolderPrefetcher(const FolderPrefetcher&) = delete;
  FolderPrefetcher& operator=(const FolderPrefetcher&) = delete;

  // The next folder read ahead, if it is `path`; null when the read-ahead
  // went another way (it is then off for good).
  Reader take(const QString& path);

 private:
  struct Item {
    QString path;
    Reader reader;
  };
  void run(QString location);
  bool put(Item item);  // false when told to stop

  static constexpr size_t kAhead = 64;     // folders (and descriptors) held ahead
  static constexpr size_t kWakeBatch = 8;  // folders ready before a waiting walk is woken

  const bool excludeOn_;
  const QStringList excludes_;
  std::mutex mutex_;
  std::condition_variable notEmpty_;  // the walk waits for a folder
  std::condition_variable notFull_;   // the reader waits for room
  std::deque<Item> queue_;
  std::atomic<size_t> ready_{0};     // queue_.size(), readable without the lock
  std::atomic<bool> finished_{false};  // done_, likewise
  bool stop_ = false;
  bool done_ = false;
  bool consumerWaiting_ = false;
  bool producerWaiting_ = false;
  bool off_ = false;
  std::thread thread_;
};

}  // namespace find
