#pragma once
#include <QString>
#include <QTextStream>
#include <vector>

#include "browser/list/RowBuilder.h"
#include "cli/BatchThread.h"
#include "platform/DirEntry.h"

namespace browser {
class ListModel;
}

namespace cli {

// Turns a find's hits into list rows and prints them on a thread of its own,
// so that the walk only hands entries over: type lookup, formatting,
// escaping and encoding overlap the walk. Rows keep the order they were
// handed in. The model belongs to this thread from start() to finish().
class FindRowPrinter {
 public:
  FindRowPrinter(browser::ListModel* model, QTextStream& out, bool header);
  ~FindRowPrinter();
  FindRowPrinter(const FindRowPrinter&) = delete;
  FindRowPrinter& operator=(const FindRowPrinter&) = delete;

  void start();
  void add(const platform::DirEntry& entry, const QString& folder);
  // Prints what is left and waits for the thread; the model is whole after it.
  void finish();

 private:
  struct Hit {
    platform::DirEntry entry;
    QString folder;
  };

  void print(const std::vector<Hit>& batch);
  void write();
  // Small enough to stay in the cache between two writes.
  static constexpr qsizetype kChunk = 1 << 14;

  browser::ListModel* model_;
  browser::RowBuilder builder_;
  QTextStream& out_;
  const bool header_;
  std::vector<int> data_;
  QString buffer_;
  QString cell_;
  bool started_ = false;
  BatchThread<Hit> thread_;
};

}  // namespace cli
