#pragma once
#include <QString>

class QPrinter;
class QWidget;

namespace report {

// Prints a report's text in a fixed-pitch font, line for line. Ask shows the
// print dialog first (print to PDF works with no printer installed).
class ReportPrinter {
 public:
  // False when the user cancelled the dialog.
  static bool Ask(QPrinter* printer, QWidget* parent);
  static void Print(const QString& text, const QString& title, QPrinter* printer);
};

}  // namespace report
