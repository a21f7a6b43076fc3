#pragma once
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace cli {

// Hands items to a thread of its own in batches, keeping their order: the
// producer only appends, `consume` runs on the thread once per batch. Memory
// stays bounded: a producer far ahead waits until half of the queue is done,
// so the two threads do not wake each other per batch.
template <typename Item>
class BatchThread {
 public:
  using Batch = std::vector<Item>;

  explicit BatchThread(std::function<void(Batch&)> consume, size_t batchSize = 512, size_t mostBatches = 64)
      : consume_(std::move(consume)), batchSize_(batchSize), mostBatches_(mostBatches) {
    batch_.reserve(batchSize_);
  }
  ~BatchThread() { finish(); }
  BatchThread(const BatchThread&) = delete;
  BatchThread& operator=(const BatchThread&) = delete;

  // Without start() the first full batch starts the thread; a job too small
  // to fill one never pays for a thread.
  void start() {
    if (!thread_.joinable()) thread_ = std::thread(&BatchThread::run, this);
  }

  void add(Item item) {
    batch_.push_back(std::move(item));
    if (batch_.size() < batchSize_) return;
    start();
    std::unique_lock lock(mutex_);
    if (queue_.size() >= mostBatches_) {
      producerWaiting_ = true;
      toProducer_.wait(lock, [this] { return queue_.size() <= mostBatches_ / 2; });
      producerWaiting_ = false;
    }
    queue_.push_back(std::move(batch_));
    const bool wake = consumerWaiting_;
    lock.unlock();
    if (wake) toConsumer_.notify_one();
    batch_ = Batch();
    batch_.reserve(batchSize_);
  }

  // Consumes what is left, on the thread if there is one, and waits for it.
  void finish() {
    if (!thread_.joinable()) {
      if (!batch_.empty()) consume_(batch_);
      batch_.clear();
      return;
    }
    {
      std::lock_guard lock(mutex_);
      if (!batch_.empty()) queue_.push_back(std::move(batch_));
      batch_ = Batch();
      done_ = true;
    }
    toConsumer_.notify_one();
    thread_.join();
    done_ = false;
  }

 private:
  void run() {
    for (;;) {
      Batch batch;
      {
        std::unique_lock lock(mutex_);
        if (queue_.empty() && !done_) {
          consumerWaiting_ = true;
          toConsumer_.wait(lock, [this] { return !queue_.empty() || done_; });
          consumerWaiting_ = false;
        }
        if (queue_.empty()) return;
        batch = std::move(queue_.front());
        queue_.pop_front();
        if (producerWaiting_ && queue_.size() <= mostBatches_ / 2) toProducer_.notify_one();
      }
      consume_(batch);
    }
  }

  const std::function<void(Batch&)> consume_;
  const size_t batchSize_;
  const size_t mostBatches_;
  Batch batch_;  // the producer's side

  std::mutex mutex_;
  std::condition_variable toConsumer_;
  std::condition_variable toProducer_;
  std::deque<Batch> queue_;
  bool consumerWaiting_ = false;
  bool producerWaiting_ = false;
  bool done_ = false;
  std::thread thread_;
};

}  // namespace cli
