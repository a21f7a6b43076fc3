#pragma once
#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QString>
#include <memory>

#include "report/ReportSink.h"

namespace report {

// A report written to a file. A new or replaced file is written beside its
// place under a temporary name and renamed over it only when the report is
// complete, so a failed write (disk full, Escape) leaves the earlier file as
// it was. Appending writes to the file itself and, on failure, cuts it back to
// its earlier length. Text leaves as UTF-8 in large pieces.
//
//   report::ReportFile file;
//   if (!file.open(path, append)) show file.error();
//   ... FolderReport::Run(folder, options, file) ...
//   if (result is kDone or kAborted) ok = file.commit(); else file.cancel();
class ReportFile : public ReportSink {
 public:
  ReportFile();
  ~ReportFile() override;  // an uncommitted file is dropped

  bool open(const QString& path, bool append);
  bool write(QStringView text) override;
  bool commit();
  void cancel();
  const QString& error() const { return error_; }
  const QString& path() const { return path_; }

  // "Report.txt" and 2026-11-24 08:30:05 -> "Report_2026-11-24_08-30-05.txt".
  static QString StampedName(const QString& fileName, const QDateTime& when);
  // The file a report proposes: `fileName` (default "Report.txt") in
  // `folder`, date-stamped when asked. A stamped name that is taken gets
  // " (2)", " (3)" ... so that no earlier report is replaced.
  static QString ProposedPath(const QString& folder, const QString& fileName, bool stamped, const QDateTime& when);
  static QString DefaultFileName() { return QStringLiteral("Report.txt"); }

 private:
  bool flushBuffer();
  void fail(const QString& message);

  std::unique_ptr<QSaveFile> save_;
  std::unique_ptr<QFile> append_;
  qint64 appendStart_ = 0;
  QByteArray buffer_;
  QString path_;
  QString error_;
  bool failed_ = false;
};

}  // namespace report
