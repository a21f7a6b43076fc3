#include "cli/FindRowPrinter.h"

#include <QFileDevice>

#include "browser/list/ListModel.h"
#include "browser/list/ListPrinter.h"

namespace cli {

FindRowPrinter::FindRowPrinter(browser::ListModel* model, QTextStream& out, bool header)
    : model_(model),
      builder_(model),
      out_(out),
      header_(header),
      thread_([this](std::vector<Hit>& batch) { print(batch); }) {}

FindRowPrinter::~FindRowPrinter() { finish(); }

void FindRowPrinter::start() {
  data_ = browser::ListPrinter::VisibleData(*model_);
  buffer_.reserve(kChunk + 4096);
  if (header_) browser::ListPrinter::AppendHeader(*model_, &buffer_);
  out_.flush();
  started_ = true;
  thread_.start();
}

void FindRowPrinter::add(const platform::DirEntry& entry, const QString& folder) { thread_.add({entry, folder}); }

void FindRowPrinter::finish() {
  if (!started_) return;
  started_ = false;
  thread_.finish();
  write();
  out_.flush();
  if (auto* file = qobject_cast<QFileDevice*>(out_.device())) file->flush();
}

void FindRowPrinter::print(const std::vector<Hit>& batch) {
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
