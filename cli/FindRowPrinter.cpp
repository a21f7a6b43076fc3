#include "cli/FindRowPrinter.h"

#include <QFileDevice>

#include "browser/list/ListModel.h"
#include "browser/list/ListPrinter.h"

namespace cli {

FindRowPrinter::FindRowPrinter(browser::ListModel* model, QTextStream& out, bool header)
    : model_(model), builder_(model), out_(out), header_(header) {}

FindRowPrinter::~FindRowPrinter() { finish(); }

void FindRowPrinter::start() {
  data_ = browser::ListPrinter::VisibleData(*model_);
  buffer_.reserve(kChunk + 4096);
  if (header_) browser::ListPrinter::AppendHeader(*model_, &buffer_);
  batch_.reserve(kBatch);
  out_.flush();
  thread_ = std::thread(&FindRowPrinter::run, this);
}

void FindRowPrinter::add(const platform::DirEntry& entry, const QString& folder) {
  batch_.push_back({entry, folder});
  if (batch_.size() < kBatch) return;
  std::unique_lock lock(mutex_);
  // Far ahead of the printing: wait until half of it is done, so that
  // memory stays bounded and the two threads do not wake each other per batch.
  if (queue_.size() >= kMostBatches) {
    walkWaiting_ = true;
    toWalk_.wait(lock, [this] { return queue_.size() <= kMostBatches / 2; });
    walkWaiting_ = false;
  }
  queue_.push_back(std::move(batch_));
  const bool wake = printerWaiting_;
  lock.unlock();
  if (wake) toPrinter_.notify_one();
  batch_ = Batch();
  batch_.reserve(kBatch);
}

void FindRowPrinter::finish() {
  if (!thread_.joinable()) return;
  {
    std::lock_guard lock(mutex_);
    if (!batch_.empty()) queue_.push_back(std::move(batch_));
    batch_ = Batch();
    done_ = true;
  }
  toPrinter_.notify_one();
  thread_.join();
  write();
  out_.flush();
  if (auto* file = qobject_cast<QFileDevice*>(out_.device())) file->flush();
}

void FindRowPrinter::run() {
  for (;;) {
    Batch batch;
    {
      std::unique_lock lock(mutex_);
      if (queue_.empty() && !done_) {
        printerWaiting_ = true;
        toPrinter_.wait(lock, [this] { return !queue_.empty() || done_; });
        printerWaiting_ = false;
      }
      if (queue_.empty()) return;
      batch = std::move(queue_.front());
      queue_.pop_front();
      if (walkWaiting_ && queue_.size() <= kMostBatches / 2) toWalk_.notify_one();
    }
    print(batch);
  }
}

void FindRowPrinter::print(const Batch& batch) {
  for (const Hit& hit : batch) {
    builder_.add(hit.entry, hit.folder);
    const browser::RowId id = model_->rowAt(model_->rowCount() - 1);
    browser::ListPrinter::AppendRow(*model_, id, data_, &buffer_, &cell_);
    if (buffer_.size() >= kChunk) write();
  }
}

void FindRowPrinter::write() {
  if (buffer_.isEmpty()) return;
  // Straight to the device as UTF-8 when there is one: the stream would
  // copy the text into its own buffer first.
  if (QIODevice* device = out_.device()) device->write(buffer_.toUtf8());
  else out_ << buffer_;
  buffer_.resize(0);  // keeps its capacity
}

}  // namespace cli
