#include "browser/ReportRunner.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPrinter>

#include "browser/CTabCtrl.h"
#include "browser/FindRunner.h"
#include "browser/MainMenus.h"
#include "browser/StatusLine.h"
#include "browser/UiYield.h"
#include "browser/VersionRunner.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "core/JobFlags.h"
#include "core/ListModes.h"
#include "find/DescribeCriteria.h"
#include "find/FindFilesTab.h"
#include "platform/FileTime.h"
#include "platform/NativePath.h"
#include "report/FileInfoText.h"
#include "report/FolderReport.h"
#include "report/ListExport.h"
#include "report/ReportFile.h"
#include "report/ReportFolderPage.h"
#include "report/ReportListPage.h"
#include "report/ReportOutputBar.h"
#include "report/ReportPrinter.h"
#include "report/TextReportSink.h"

namespace browser {

namespace {

// Passes the report on to its output, shows the folder a long report is in
// and lets the window breathe, which is how Escape reaches the abort flag.
class WindowSink : public report::ReportSink {
 public:
  WindowSink(StatusLine* status, report::ReportSink* out) : status_(status), out_(out) {}
  bool write(QStringView text) override { return out_->write(text); }
  void progress(const QString& folder) override {
    if (yield_.due()) status_->ShowStatus(platform::DisplayText(folder));
  }
  void yield() override { yield_(); }

 private:
  StatusLine* status_;
  report::ReportSink* out_;
  UiYield yield_;
};

void PutOnClipboard(const QString& text) {
  QClipboard* clipboard = QApplication::clipboard();
  clipboard->clear();
  clipboard->setText(text);
}

}  // namespace

ReportRunner::ReportRunner(frmMain* window)
    : QObject(window),
      window_(window),
      listPage_(new report::ReportListPage(&window->settings().report, &window->settings().settings)),
      folderPage_(new report::ReportFolderPage(&window->settings().report, &window->settings().settings)) {
  window->tabs()->SetReportPage(CTabCtrl::kRepList, listPage_);
  window->tabs()->SetReportPage(CTabCtrl::kRepFolder, folderPage_);
  connect(listPage_->output, &report::ReportOutputBar::OutputRequested, this, [this](int t) { Output(true, t); });
  connect(folderPage_->output, &report::ReportOutputBar::OutputRequested, this, [this](int t) { Output(false, t); });

  MainMenus* m = window->menus();
  auto add = [this, m](const QString& text, const char* name, bool extended) {
    auto* a = new QAction(text, m->menFile);
    a->setObjectName(QLatin1String(name));
    m->menFile->insertAction(m->menExit, a);
    connect(a, &QAction::triggered, this, [this, extended] {
      QStringList paths = window_->list()->selectedPaths();
      if (paths.isEmpty() && !window_->list()->focusPath().isEmpty()) paths << window_->list()->focusPath();
      CopyInfo(paths, extended);
    });
  };
  add(tr("Copy &Info"), "menCopyInfo", false);
  add(tr("Copy E&xtended Info"), "menCopyExtInfo", true);
  m->menFile->insertSeparator(m->menExit);
}

void ReportRunner::CopyInfo(const QStringList& paths, bool extended) {
  if (paths.isEmpty()) {
    window_->statusLine()->ShowStatus(QStringLiteral("Nothing to do"));
    return;
  }
  const bool fixed = window_->settings().report.optRepFver;
  PutOnClipboard(extended ? report::FileInfoText::Extended(paths, fixed) : report::FileInfoText::Compact(paths, fixed));
  window_->statusLine()->ShowStatus(QStringLiteral("Done."));
}

ReportRunner::Job ReportRunner::MakeJob(bool list, QString* title) {
  const core::AppSettings& s = window_->settings();
  if (list) {
    const ListModel* model = &window_->list()->model();
    report::ListExportOptions o;
    o.separator = s.report.optSep;
    o.ownSeparator = s.report.sep;
    o.headers = s.report.includeHeaders;
    o.onlySelected = s.report.copyOnlySel;
    if (s.report.inclDate) o.dateLine = report::ListExport::DateLine(platform::FileTimeNow());
    if (s.report.inclSpecs && window_->mode() == core::kModeFind) {
      const core::FindTabValues values = window_->finder()->tab()->values();
      o.specs = find::DescribeCriteria(values, {values.lookIn}, model->statusText());
    }
    *title = QStringLiteral("Current List");
    return [model, o](report::ReportSink& sink) { return report::ListExport::Run(*model, o, sink); };
  }
  const QString folder = window_->listFolder();
  if (folder.isEmpty()) return {};
  report::FolderReportOptions o;
  o.kind = folderPage_->kind();
  o.recurse = s.report.copyRecurse;
  o.versions = folderPage_->versions();
  o.fixedVersion = s.report.optRepFver;
  *title = platform::DisplayText(folder);
  return [folder, o](report::ReportSink& sink) { return report::FolderReport::Run(folder, o, sink); };
}

void ReportRunner::Output(bool list, int target) {
  StatusLine* status = window_->statusLine();
  if (core::JobFlags::Busy()) {
    status->ShowStatus(QStringLiteral("Wait until the running job has ended."));
    return;
  }
  QString title;
  const Job job = MakeJob(list, &title);
  if (!job) {
    status->ShowStatus(QStringLiteral("Select a folder first."));
    return;
  }
  if (target == report::ReportOutputBar::kFile) {
    ToFile(job);
    return;
  }
  std::unique_ptr<QPrinter> printer;
  if (target == report::ReportOutputBar::kPrinter) {
    printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
    if (!report::ReportPrinter::Ask(printer.get(), window_)) return;
  }
  status->ShowStatus(QStringLiteral("Report..."));
  report::TextReportSink text;
  WindowSink sink(status, &text);
  const report::ReportResult result = job(sink);
  if (result == report::ReportResult::kUnreadable) {
    QMessageBox::warning(window_, QStringLiteral("Report"), QStringLiteral("Cannot read the folder."));
    status->ShowStatus(QStringLiteral("Failed."));
    return;
  }
  if (printer) report::ReportPrinter::Print(text.text(), title, printer.get());
  else PutOnClipboard(text.text());
  status->ShowStatus(result == report::ReportResult::kAborted ? QStringLiteral("  ABORTED") : QStringLiteral("Done."));
}

QString ReportRunner::ChooseFile(const QString& proposed, bool append) {
  if (chooseFile_) return chooseFile_(proposed, append);
  return QFileDialog::getSaveFileName(window_, QStringLiteral("Report to File"), proposed,
                                      QStringLiteral("Text files (*.txt *.csv);;All files (*)"), nullptr,
                                      append ? QFileDialog::DontConfirmOverwrite : QFileDialog::Options());
}

void ReportRunner::ToFile(const Job& job) {
  core::AppSettings& s = window_->settings();
  const bool stamped = s.settings.repOFDate.on();
  const bool append = s.settings.repOFAppend.on() && !stamped;  // a stamped name is always a new file
  const QString folder = s.settings.repOFCur.on() && !window_->listFolder().isEmpty() ? window_->listFolder() : s.report.path;
  QString path = report::ReportFile::ProposedPath(folder, s.report.file, stamped, QDateTime::currentDateTime());
  if (!stamped) {
    path = ChooseFile(path, append);
    if (path.isEmpty()) return;
  }
  const QFileInfo chosen(path);
  s.report.path = platform::WithSeparator(chosen.absolutePath());
  if (!stamped) s.report.file = chosen.fileName();

  StatusLine* status = window_->statusLine();
  report::ReportFile file;
  if (!file.open(path, append)) {
    QMessageBox::warning(window_, QStringLiteral("Report"), file.error());
    status->ShowStatus(QStringLiteral("Failed."));
    return;
  }
  status->ShowStatus(QStringLiteral("Report..."));
  WindowSink sink(status, &file);
  const report::ReportResult result = job(sink);
  if (result == report::ReportResult::kUnreadable) {
    file.cancel();
    QMessageBox::warning(window_, QStringLiteral("Report"), QStringLiteral("Cannot read the folder."));
    status->ShowStatus(QStringLiteral("Failed."));
    return;
  }
  if (!file.commit()) {
    QMessageBox::warning(window_, QStringLiteral("Report"),
                         file.error() + QStringLiteral("\n\nThe earlier file, if any, is unchanged."));
    status->ShowStatus(QStringLiteral("Failed."));
    return;
  }
  lastFile_ = path;
  status->ShowStatus(QStringLiteral("Report written to ") + platform::DisplayText(path) +
                     (result == report::ReportResult::kAborted ? QStringLiteral("  ABORTED") : QString()));
}

}  // namespace browser
