#include "report/FolderReport.h"

#include <algorithm>
#include <vector>

#include "core/DateStyles.h"
#include "core/JobFlags.h"
#include "core/NumberFormat.h"
#include "core/RowEscape.h"
#include "fileinfo/modVerStringInfo.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"

namespace report {

namespace {

// Output leaves in pieces of about this many characters.
constexpr qsizetype kChunk = 1 << 16;
// Entries between two yields inside one folder.
constexpr int kYieldEvery = 256;

bool IsDotName(const QString& name) { return name == u"." || name == u".."; }

bool NameLess(const QString& a, const QString& b) {
  const int c = a.compare(b, Qt::CaseInsensitive);
  return c != 0 ? c < 0 : a < b;  // a stable order for names that differ in case only
}

QString ChildPath(const QString& folder, const QString& name) {
  return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

class Walker {
 public:
  Walker(const FolderReportOptions& o, ReportSink& sink) : o_(o), sink_(sink) { buffer_.reserve(kChunk + 4096); }

  ReportResult run(const QString& folder) {
    platform::FolderReader root(folder);
    if (!root.isOpen()) return ReportResult::kUnreadable;
    if (o_.kind == FolderReportOptions::kTree) {
      core::AppendRowField(&buffer_, folder);
      buffer_.append(u'\n');
      QString prefix;
      tree(root, folder, &prefix);
      if (!stopped()) {
        buffer_.append(u'\n');
        buffer_.append(core::CountPhrase(double(folders_), u"folder"));
        buffer_.append(u'\n');
      }
    } else {
      dump(root, folder);
      if (!stopped()) {
        buffer_.append(QStringLiteral("Total: "));
        appendCounts(files_, bytes_, folders_);
      }
    }
    if (aborted_ && !failed_) {
      buffer_.append(FolderReport::AbortedLine());
      buffer_.append(u'\n');
    }
    flush(true);
    if (failed_) return ReportResult::kWriteFailed;
    return aborted_ ? ReportResult::kAborted : ReportResult::kDone;
  }

 private:
  bool stopped() const { return aborted_ || failed_; }

  // Polls the abort flag and lets the window breathe now and then.
  bool tick() {
    if (++sinceYield_ >= kYieldEvery) {
      sinceYield_ = 0;
      sink_.yield();
    }
    if (core::JobFlags::AbortRequested()) aborted_ = true;
    return !stopped();
  }

  void flush(bool always = false) {
    if (failed_ || (!always && buffer_.size() < kChunk)) return;
    if (!buffer_.isEmpty() && !sink_.write(buffer_)) failed_ = true;
    buffer_.resize(0);  // keeps its capacity
  }

  void enter(const QString& path) {
    sink_.progress(path);
    sink_.yield();
    sinceYield_ = 0;
    if (core::JobFlags::AbortRequested()) aborted_ = true;
  }

  void appendCounts(qint64 files, double bytes, qint64 folders) {
    buffer_.append(core::CountPhrase(double(files), u"file"));
    buffer_.append(QStringLiteral(", "));
    buffer_.append(core::FormatNumber(bytes, u"#,0"));
    buffer_.append(QStringLiteral(" bytes, "));
    buffer_.append(core::CountPhrase(double(folders), u"folder"));
    buffer_.append(u'\n');
  }

  void tree(const platform::FolderReader& reader, const QString& path, QString* prefix) {
    enter(path);
    if (stopped()) return;
    std::vector<qsizetype> subs;
    for (qsizetype i = 0; i < reader.count(); ++i) {
      if (!tick()) return;
      if (!IsDotName(reader.name(i)) && reader.isWalkableFolder(i)) subs.push_back(i);
    }
    std::sort(subs.begin(), subs.end(), [&reader](qsizetype a, qsizetype b) { return NameLess(reader.name(a), reader.name(b)); });
    for (size_t k = 0; k < subs.size(); ++k) {
      if (!tick()) return;
      const bool last = k + 1 == subs.size();
      const QString& name = reader.name(subs[k]);
      buffer_.append(*prefix);
      buffer_.append(last ? u"\u2514\u2500\u2500 " : u"\u251C\u2500\u2500 ");
      core::AppendRowField(&buffer_, name);
      ++folders_;
      if (!o_.recurse) {
        buffer_.append(u'\n');
        flush();
        continue;
      }
      platform::FolderReader child(reader, subs[k]);
      if (!child.isOpen()) {
        buffer_.append(QStringLiteral("  [cannot be read]\n"));
        flush();
        continue;
      }
      buffer_.append(u'\n');
      flush();
      prefix->append(last ? u"    " : u"\u2502   ");
      tree(child, ChildPath(path, name), prefix);
      prefix->chop(4);
      if (stopped()) return;
    }
  }

  struct Item {
    qsizetype index;
    platform::DirEntry entry;
  };

  void dump(const platform::FolderReader& reader, const QString& path) {
    enter(path);
    if (stopped()) return;
    buffer_.append(QStringLiteral(" Folder of "));
    core::AppendRowField(&buffer_, path);
    buffer_.append(QStringLiteral("\n\n"));
    if (!reader.isOpen()) {
      buffer_.append(QStringLiteral("    [cannot be read]\n\n"));
      flush();
      return;
    }
    std::vector<Item> items;
    items.reserve(size_t(reader.count()));
    for (qsizetype i = 0; i < reader.count(); ++i) {
      if (!tick()) return;
      if (IsDotName(reader.name(i))) continue;
      Item item{i, {}};
      if (reader.stat(i, &item.entry)) items.push_back(std::move(item));  // else it vanished meanwhile
    }
    std::sort(items.begin(), items.end(), [&reader](const Item& a, const Item& b) {
      if (a.entry.isDirectory() != b.entry.isDirectory()) return a.entry.isDirectory();
      return NameLess(reader.name(a.index), reader.name(b.index));
    });
    qint64 files = 0, folders = 0;
    double bytes = 0;
    for (const Item& item : items) {
      if (!tick()) return;
      const QString& name = reader.name(item.index);
      const bool isFolder = item.entry.isDirectory();
      appendDumpLine(core::FileTimeText(item.entry.lastWriteTime, core::ShortDate4(), u"hh:mm:ss", false), isFolder,
                     double(item.entry.size), name);
      if (isFolder) {
        ++folders;
      } else {
        ++files;
        bytes += double(item.entry.size);
        if (o_.versions) {
          const QString version = modVerStringInfo::GetFileVersionText(o_.fixedVersion, ChildPath(path, name),
                                                                       QStringLiteral("ver "));
          if (!version.isEmpty()) {
            buffer_.append(QStringLiteral("  "));
            core::AppendRowField(&buffer_, version);
          }
        }
      }
      buffer_.append(u'\n');
      flush();
    }
    buffer_.append(QStringLiteral("     "));
    appendCounts(files, bytes, folders);
    buffer_.append(u'\n');
    files_ += files;
    folders_ += folders;
    bytes_ += bytes;
    flush();
    if (!o_.recurse) return;
    for (const Item& item : items) {
      if (!item.entry.isDirectory() || !reader.isWalkableFolder(item.index)) continue;
      platform::FolderReader child(reader, item.index);
      dump(child, ChildPath(path, reader.name(item.index)));
      if (stopped()) return;
    }
  }

  void appendDumpLine(const QString& dateTime, bool isFolder, double size, const QString& name) {
    buffer_.append(dateTime);
    for (qsizetype pad = dateTime.size(); pad < 19; ++pad) buffer_.append(u' ');
    if (isFolder) {
      buffer_.append(QStringLiteral("  <DIR>          "));
    } else {
      const QString number = core::FormatNumber(size, u"#,0");
      buffer_.append(u"  ");
      for (qsizetype pad = number.size(); pad < 15; ++pad) buffer_.append(u' ');
      buffer_.append(number);
    }
    buffer_.append(u"  ");
    core::AppendRowField(&buffer_, name);
  }

  const FolderReportOptions& o_;
  ReportSink& sink_;
  QString buffer_;
  int sinceYield_ = 0;
  bool aborted_ = false;
  bool failed_ = false;
  qint64 files_ = 0;
  qint64 folders_ = 0;
  double bytes_ = 0;
};

}  // namespace

ReportResult FolderReport::Run(const QString& folder, const FolderReportOptions& options, ReportSink& sink) {
  core::JobFlags::ClearAbort();
  core::JobFlags::SetBusy(true);
  Walker walker(options, sink);
  const ReportResult result = walker.run(folder);
  core::JobFlags::SetBusy(false);
  return result;
}

}  // namespace report
