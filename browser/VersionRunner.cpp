#include "browser/VersionRunner.h"

#include <QApplication>
#include <QClipboard>
#include <QScrollArea>

#include "browser/CTabCtrl.h"
#include "browser/StatusLine.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "fileinfo/VersionTab.h"
#include "fileinfo/modVerStringInfo.h"
#include "report/FileInfoText.h"

namespace browser {

VersionRunner::VersionRunner(frmMain* window) : QObject(window), window_(window), tab_(new fileinfo::VersionTab) {
  // A low panel scrolls the page rather than grow to fit it.
  auto* scroll = new QScrollArea;
  scroll->setObjectName(QStringLiteral("scrVersion"));
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(tab_);
  window->tabs()->SetPage(CTabCtrl::kTabVersion, scroll);
  modVerStringInfo::SetErrorReport([window](const QString& tag, const QString& message) {
    window->statusLine()->ShowStatus(tag + QStringLiteral(": ") + message);
  });
  connect(window, &frmMain::InfoRefresh, this, [this](const QString& file, int tab) {
    pending_ = file;
    if (tab == CTabCtrl::kTabVersion) Refresh(file);
  });
  connect(window->tabs(), &CTabCtrl::TabSelected, this, [this](int tab) {
    if (tab == CTabCtrl::kTabVersion && !pending_.isEmpty() && pending_ != tab_->file()) Refresh(pending_);
  });
  connect(tab_, &fileinfo::VersionTab::CopyRequested, this, &VersionRunner::Copy);
}

void VersionRunner::Refresh(const QString& file) { tab_->ShowFile(file, window_->settings().report.optRepFver); }

// The report's file info texts for the file the tab shows.
void VersionRunner::Copy(int index) {
  const QStringList paths{tab_->file()};
  const bool fixed = window_->settings().report.optRepFver;
  const QString text = index == 1 ? report::FileInfoText::Extended(paths, fixed) : report::FileInfoText::Compact(paths, fixed);
  QClipboard* clipboard = QApplication::clipboard();
  clipboard->clear();
  clipboard->setText(text);
  window_->list()->setFocus();
}

}  // namespace browser
