#include "report/ReportPrinter.h"

#include <QFontDatabase>
#include <QPrintDialog>
#include <QPrinter>
#include <QTextDocument>
#include <QTextOption>

namespace report {

bool ReportPrinter::Ask(QPrinter* printer, QWidget* parent) {
  QPrintDialog dialog(printer, parent);
  dialog.setWindowTitle(QObject::tr("Print Report"));
  return dialog.exec() == QDialog::Accepted;
}

void ReportPrinter::Print(const QString& text, const QString& title, QPrinter* printer) {
  QTextDocument document;
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setPointSize(9);
  document.setDefaultFont(font);
  QTextOption option = document.defaultTextOption();
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);  // long paths wrap, nothing is cut
  document.setDefaultTextOption(option);
  document.setPlainText(text);
  document.setMetaInformation(QTextDocument::DocumentTitle, title);
  printer->setDocName(title);
  document.print(printer);
}

}  // namespace report
