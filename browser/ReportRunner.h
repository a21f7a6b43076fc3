#pragma once
#include <QObject>
#include <QString>
#include <functional>

#include "report/ReportSink.h"

namespace report {
class ReportFolderPage;
class ReportListPage;
}

namespace browser {

class frmMain;

// Puts the "Report" tab's pages ("Current List", "Current Folder") into the
// main window and runs their reports: the list export of what the list
// shows, the folder report of the folder it shows, to the clipboard, a file
// or the printer. Adds "Copy &Info" and "Copy E&xtended Info" for the list's
// selection to the File menu and serves the Version tab's copy buttons.
class ReportRunner : public QObject {
  Q_OBJECT
 public:
  explicit ReportRunner(frmMain* window);

  report::ReportListPage* listPage() const { return listPage_; }
  report::ReportFolderPage* folderPage() const { return folderPage_; }

  // Asks for the output file, given the proposed one; "" cancels. A file
  // dialog unless replaced (tests).
  void SetFileChooser(std::function<QString(const QString& proposed, bool append)> chooser) {
    chooseFile_ = std::move(chooser);
  }
  // The last report written to a file (for the status line and tests).
  const QString& lastFile() const { return lastFile_; }

  // Runs a report into the chosen output; `list` picks the list export.
  void Output(bool list, int target);
  void CopyInfo(const QStringList& paths, bool extended);

 private:
  using Job = std::function<report::ReportResult(report::ReportSink&)>;
  Job MakeJob(bool list, QString* title);
  void ToFile(const Job& job);
  QString ChooseFile(const QString& proposed, bool append);

  frmMain* window_;
  report::ReportListPage* listPage_;
  report::ReportFolderPage* folderPage_;
  std::function<QString(const QString&, bool)> chooseFile_;
  QString lastFile_;
};

}  // namespace browser
