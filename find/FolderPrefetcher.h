#pragma once
#include <QString>
#include <QStringList>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/FolderReader.h"
#include "platform/WildcardPattern.h"

namespace find {

// Reads the folders of one location ahead of the walk on helper threads, so
// that the walk finds each folder's names (and the data of the entries it
// will test) already in memory. The walk takes the folders one by one by
// path, strictly in its own order (depth first, pre-order, subfolders in
// file-system order, excluded folders left out), whichever thread read them.
// A folder it does not expect next (the tree changed meanwhile) switches the
// read-ahead off and the walk reads for itself from then on. Rows, their
// order and the abort behaviour do not depend on it.
class FolderPrefetcher {
 public:
  using Reader = std::shared_ptr<const platform::FolderReader>;

  // `readers` threads read ahead. With `screen`, the entries whose names
  // match one of its patterns are statted ahead as well (see
  // FolderReader::statAhead).
  FolderPrefetcher(const QString& location, bool excludeOn, const QStringList& excludes, int readers = 1,
                   const std::vector<platform::WildcardPattern>* screen = nullptr);
  ~FolderPrefetcher();
  FolderPrefetcher(const FolderPrefetcher&) = delete;
  FolderPrefetcher& operator=(const FolderPrefetcher&) = delete;

  // The next folder in the walk's order, if it is `path`; null when the walk
  // went another way (the read-ahead is then off for good).
  Reader take(const QString& path);

 private:
  // One folder of the tree: read by a helper (or by the walk when it gets
  // there first), then taken by the walk.
  struct Node {
    enum State { kPending, kReading, kReady } state = kPending;
    QString path;
    Reader parent;  // open folder the name is looked up in; null for the location
    qsizetype index = 0;
    Reader reader;
    std::vector<std::shared_ptr<Node>> children;  // subfolders in walk order, once read
    std::vector<quint32> order;  // place among its parent's subfolders, from the location down
    bool counted = false;  // holds a place of the read-ahead window
  };
  struct Frame {
    std::shared_ptr<Node> node;
    size_t next = 0;
  };

  void work();
  // Reads the node's folder and finds its subfolders; no lock held.
  void read(Node& node);
  // Puts a read node's subfolders up for reading (lock held).
  void publish(const std::shared_ptr<Node>& node);
  bool excluded(const QString& path) const;

  static constexpr size_t kAheadPerReader = 48;  // folders (and descriptors) read and not yet taken

  const bool excludeOn_;
  const QStringList excludes_;
  std::vector<platform::WildcardPattern> screen_;
  bool screening_ = false;
  size_t ahead_ = kAheadPerReader;

  std::mutex mutex_;
  std::condition_variable work_;   // helpers wait for a folder to read or for room
  std::condition_variable ready_;  // the walk waits for the folder it needs
  std::vector<std::shared_ptr<Node>> todo_;  // folders to read: a heap, the first in walk order on top
  std::vector<Frame> frames_;                // the walk's position in the tree
  std::shared_ptr<Node> root_;
  std::shared_ptr<Node> waitingFor_;  // the node the walk sleeps on
  size_t inFlight_ = 0;              // read or being read by helpers, not yet taken
  size_t idle_ = 0;                  // helpers asleep on work_
  bool throttled_ = false;           // the window filled up and has not drained to half yet
  bool started_ = false;
  bool stop_ = false;
  bool off_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace find
