#pragma once
#include <QString>

#include "report/ReportSink.h"

namespace report {

// Collects the whole text: the clipboard and the printer take it at once.
class TextReportSink : public ReportSink {
 public:
  bool write(QStringView text) override {
    text_.append(text);
    return true;
  }
  const QString& text() const { return text_; }
  QString take() { return std::move(text_); }

 private:
  QString text_;
};

}  // namespace report
