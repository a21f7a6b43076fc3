#include "browser/FileViewRunner.h"

#include "browser/CTabCtrl.h"
#include "browser/frmMain.h"
#include "preview/FileViewTab.h"

namespace browser {

FileViewRunner::FileViewRunner(frmMain* window)
    : QObject(window), window_(window), tab_(new preview::FileViewTab(&window->settings().fileView)) {
  window->tabs()->SetPage(CTabCtrl::kTabFileView, tab_);
  auto show = [this] {
    if (current_.isEmpty() || current_ == shown_) return;
    shown_ = current_;
    tab_->showFile(current_);
  };
  connect(window, &frmMain::InfoRefresh, this, [this, show](const QString& file, int tab) {
    current_ = file;
    if (tab == CTabCtrl::kTabFileView) show();
  });
  connect(window->tabs(), &CTabCtrl::TabSelected, this, [show](int tab) {
    if (tab == CTabCtrl::kTabFileView) show();
  });
}

}  // namespace browser
