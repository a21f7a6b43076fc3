#pragma once
#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <vector>

#include "fileops/RenameSpecial.h"
#include "platform/AppendFile.h"

namespace fileops {

// The undo log of the batch renamer: one line per entry renamed,
// "TIME<tab>OLD PATH<tab>NEW PATH", fields escaped as command rows are, TIME
// the batch's start in UTC with milliseconds, shared by every line of one
// batch. Each line is one write, so a crash never leaves half a line in the
// middle; a torn last line is ignored when the log is read.
class RenameLog {
 public:
  static constexpr const char* kFileName = "RenameSpecial.log";
  // The log beside the settings file.
  static QString PathBeside(const QString& settingsFile);

  RenameLog(const QString& path, const QDateTime& batchStart);
  const QString& path() const { return path_; }
  // Appends one line (opening the log at the first); empty or why not.
  QString append(const QString& oldPath, const QString& newPath);

  static QByteArray Line(const QString& stamp, const QString& oldPath, const QString& newPath);
  // The last whole batch of a log's text, in the order it was done (done set).
  static std::vector<RenameItem> LastBatchOf(const QByteArray& text);
  // The same read from the file at `path`; false with `error` set when it cannot be read.
  static bool LastBatch(const QString& path, std::vector<RenameItem>* batch, QString* error);

 private:
  QString path_;
  QString stamp_;
  platform::AppendFile file_;
};

}  // namespace fileops
