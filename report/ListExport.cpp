#include "report/ListExport.h"

#include <vector>

#include "browser/list/ListModel.h"
#include "core/DateStyles.h"
#include "core/JobFlags.h"
#include "core/RowEscape.h"

namespace report {

namespace {

constexpr qsizetype kChunk = 1 << 16;
constexpr int kYieldEvery = 512;
constexpr QStringView kFixedGap = u"  ";

// A field holding any character of the separator is quoted too: with a
// separator of several characters ("::") a field ":" would otherwise run
// into its neighbour.
bool NeedsQuotes(QStringView field, QStringView separator) {
  for (QChar c : field)
    if (c == u'"' || c == u'\r' || c == u'\n' || separator.contains(c)) return true;
  return false;
}

// Head lines come as the criteria text gives them (CR LF); each becomes one line.
QStringList HeadLines(const ListExportOptions& o) {
  QStringList lines;
  if (!o.dateLine.isEmpty()) lines << o.dateLine;
  if (!o.specs.isEmpty()) {
    QString specs = o.specs;
    specs.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (specs.endsWith(u'\n')) specs.chop(1);
    lines << specs.split(u'\n');
  }
  return lines;
}

}  // namespace

bool ListExport::OwnSeparatorUsable(const QString& own) {
  return !own.isEmpty() && !own.contains(u'"') && !own.contains(u'\r') && !own.contains(u'\n');
}

QString ListExport::SeparatorText(int separator, const QString& own) {
  switch (separator) {
    case ListExportOptions::kSemicolon: return QStringLiteral(";");
    case ListExportOptions::kComma: return QStringLiteral(",");
    case ListExportOptions::kFixed: return kFixedGap.toString();
    case ListExportOptions::kOwn: return OwnSeparatorUsable(own) ? own : QStringLiteral("\t");
    default: return QStringLiteral("\t");
  }
}

void ListExport::AppendQuoted(QString* out, QStringView field, QStringView separator) {
  if (!NeedsQuotes(field, separator)) {
    out->append(field);
    return;
  }
  out->append(u'"');
  qsizetype plain = 0;
  for (qsizetype i = 0; i < field.size(); ++i) {
    if (field[i] != u'"') continue;
    out->append(field.mid(plain, i + 1 - plain));
    out->append(u'"');
    plain = i + 1;
  }
  out->append(field.mid(plain));
  out->append(u'"');
}

QString ListExport::DateLine(qint64 fileTimeNow) {
  return QStringLiteral("Date: ") + core::FileTimeText(fileTimeNow, core::ShortDate4(), u"hh:mm:ss", false);
}

ReportResult ListExport::Run(const browser::ListModel& model, const ListExportOptions& o, ReportSink& sink) {
  core::JobFlags::ClearAbort();
  // Busy, so that a folder picked meanwhile waits instead of refilling the list under us.
  core::JobFlags::SetBusy(true);
  const ReportResult result = Write(model, o, sink);
  core::JobFlags::SetBusy(false);
  return result;
}

ReportResult ListExport::Write(const browser::ListModel& model, const ListExportOptions& o, ReportSink& sink) {
  const bool fixed = o.separator == ListExportOptions::kFixed;
  const QString separator = SeparatorText(o.separator, o.ownSeparator);
  const std::vector<int> columns = model.columns().visibleInOrder();
  std::vector<int> data;
  std::vector<bool> right;
  for (int c : columns) {
    data.push_back(model.columns().column(c).dataIndex);
    right.push_back(model.columns().column(c).rightAligned);
  }
  auto wanted = [&](int position) { return !o.onlySelected || model.isSelectedAt(position); };
  QString cell, escaped;
  // A fixed-width cell: raw text with control characters and stray bytes escaped.
  auto fixedCell = [&](browser::RowId id, int slot) -> const QString& {
    cell.clear();
    model.appendDataText(&cell, id, slot, true);
    escaped.clear();
    core::AppendRowField(&escaped, cell);
    return escaped;
  };

  std::vector<qsizetype> widths(columns.size(), 0);
  if (fixed) {
    if (o.headers)
      for (size_t i = 0; i < columns.size(); ++i)
        widths[i] = core::RowField(model.columns().column(columns[i]).caption).size();
    for (int p = 0; p < model.rowCount(); ++p) {
      if (!wanted(p)) continue;
      const browser::RowId id = model.rowAt(p);
      for (size_t i = 0; i < data.size(); ++i) widths[i] = std::max(widths[i], fixedCell(id, data[i]).size());
    }
  }

  QString buffer;
  buffer.reserve(kChunk + 4096);
  bool failed = false;
  auto flush = [&](bool always) {
    if (failed || (!always && buffer.size() < kChunk)) return;
    if (!buffer.isEmpty() && !sink.write(buffer)) failed = true;
    buffer.resize(0);
  };
  auto appendField = [&](size_t i, const QString& text, bool escapedAlready) {
    if (i) buffer.append(separator);
    if (!fixed) {
      AppendQuoted(&buffer, text, separator);
      return;
    }
    const QString shown = escapedAlready ? text : core::RowField(text);
    const qsizetype pad = widths[i] - shown.size();
    const bool lastColumn = i + 1 == columns.size();
    if (right[i]) buffer.append(QString(pad, u' '));
    buffer.append(shown);
    if (!right[i] && !lastColumn) buffer.append(QString(pad, u' '));
  };

  const QStringList head = HeadLines(o);
  for (const QString& line : head) {
    if (fixed) core::AppendRowField(&buffer, line);
    else AppendQuoted(&buffer, line, separator);
    buffer.append(u'\n');
  }
  if (!head.isEmpty()) buffer.append(u'\n');
  if (o.headers) {
    for (size_t i = 0; i < columns.size(); ++i) appendField(i, model.columns().column(columns[i]).caption, false);
    buffer.append(u'\n');
  }
  bool aborted = false;
  int sinceYield = 0;
  for (int p = 0; p < model.rowCount() && !failed; ++p) {
    if (++sinceYield >= kYieldEvery) {
      sinceYield = 0;
      sink.yield();
    }
    if (core::JobFlags::AbortRequested()) {
      aborted = true;
      break;
    }
    if (!wanted(p)) continue;
    const browser::RowId id = model.rowAt(p);
    for (size_t i = 0; i < data.size(); ++i) {
      if (fixed) {
        appendField(i, fixedCell(id, data[i]), true);
      } else {
        cell.clear();
        model.appendDataText(&cell, id, data[i], false);
        appendField(i, cell, true);
      }
    }
    buffer.append(u'\n');
    flush(false);
  }
  if (aborted) {
    buffer.append(QStringLiteral("  ABORTED\n"));
  }
  flush(true);
  if (failed) return ReportResult::kWriteFailed;
  return aborted ? ReportResult::kAborted : ReportResult::kDone;
}

}  // namespace report
