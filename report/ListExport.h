#pragma once
#include <QString>
#include <QStringView>

#include "report/ReportSink.h"

namespace browser {
class ListModel;
}

namespace report {

struct ListExportOptions {
  // "optSep": the field separator.
  enum Separator : int { kTab = 0, kSemicolon, kComma, kFixed, kOwn, kSeparatorCount };
  int separator = kTab;
  QString ownSeparator;    // "Sep" (txtSep), for kOwn
  bool headers = true;     // "IncludeHeaders": the column captions first
  bool onlySelected = false;  // "CopyOnlySel"
  QString dateLine;        // "InclDate": a first line with the report's date; empty for none
  QString specs;           // "InclSpecs": the find specs (DescribeCriteria) for find results
};

// Writes a list as it shows: the visible columns in display order, every row
// or only the selected ones. With a separator, a field that holds a
// character of the separator, a double quote, a carriage return or a line feed is enclosed in
// double quotes with its quotes doubled, so a spreadsheet reads it whole
// (comma-separated output follows RFC 4180). Fixed-width output pads each
// column to its widest cell, numbers to the right, and escapes control
// characters so that a row stays on one line. Head lines (date, specs) come
// first and are quoted the same way, then a blank line.
class ListExport {
 public:
  static ReportResult Run(const browser::ListModel& model, const ListExportOptions& options, ReportSink& sink);

  // An own separator must not be empty nor hold a quote or a line end, which
  // quoting could not tell apart.
  static bool OwnSeparatorUsable(const QString& own);
  // The separator text of a choice; an unusable own one falls back to a tab.
  static QString SeparatorText(int separator, const QString& own);
  // Appends one field, quoted when it needs it.
  static void AppendQuoted(QString* out, QStringView field, QStringView separator);
  // The date line: "Date: " and the date and time as the folder report writes them.
  static QString DateLine(qint64 fileTimeNow);

 private:
  static ReportResult Write(const browser::ListModel& model, const ListExportOptions& options, ReportSink& sink);
};

}  // namespace report
