#include "browser/VersionRunner.h"

#include <QApplication>
#include <QClipboard>
#include <QFileInfo>
#include <QLocale>
#include <QScrollArea>

#include "browser/CTabCtrl.h"
#include "browser/StatusLine.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "core/NumberFormat.h"
#include "fileinfo/VersionTab.h"
#include "fileinfo/modVerStringInfo.h"

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

// Until the report's file info texts exist: name, size, modified time and
// file version; the extended text adds every line of the tab.
void VersionRunner::Copy(int index) {
  const fileinfo::VersionDisplay& d = tab_->display();
  const QFileInfo info(tab_->file());
  QString text = info.fileName() + u'\t' + core::LocaleNumber(double(info.size())) + QStringLiteral(" bytes\t") +
                 QLocale().toString(info.lastModified(), QLocale::ShortFormat);
  const QString version = d.version(window_->settings().report.optRepFver);
  if (!version.isEmpty()) text += QStringLiteral("\tver ") + version;
  text += u'\n';
  if (index == 1) {
    for (int label = 10; label < 18; ++label)
      text += fileinfo::VersionDisplay::Caption(label) + u' ' + d.label(label) + u'\n';
    for (const auto& item : d.items) text += item.text + QStringLiteral(" = ") + d.values.value(item.index) + u'\n';
  }
  QClipboard* clipboard = QApplication::clipboard();
  clipboard->clear();
  clipboard->setText(text);
  window_->list()->setFocus();
}

}  // namespace browser
