#include "browser/PreviewRunner.h"

#include "browser/CTabCtrl.h"
#include "browser/frmMain.h"
#include "preview/ImagePane.h"
#include "preview/MediaController.h"
#include "preview/MediaPane.h"
#include "preview/PreviewTab.h"
#include "preview/modImgInfo.h"

namespace browser {

PreviewRunner::PreviewRunner(frmMain* window)
    : QObject(window), window_(window), controller_(new preview::MediaController(this)) {
  auto* image = new preview::ImagePane(&window->settings().settings);
  tab_ = new preview::PreviewTab(image, controller_->pane());
  window->tabs()->SetPage(CTabCtrl::kTabPreview, tab_);
  controller_->setStatusHandler([tab = tab_](int code) { tab->showStatus(code, modImgInfo::StatusText(code)); });
  // The Windows folder whose "Win.ini"/"System.ini" map extensions to devices
  // (a compatibility layer's prefix, say); without one the stock table serves.
  controller_->session().setWindowsFolder(qEnvironmentVariable("QUORVANE_WINDOWS_DIR"));
  connect(window, &frmMain::InfoRefresh, this, &PreviewRunner::refresh);
  connect(window->tabs(), &CTabCtrl::TabSelected, this, [this](int tab) { refresh(file_, tab); });
}

preview::ImagePane* PreviewRunner::image() const { return tab_->image(); }

void PreviewRunner::refresh(const QString& file, int tab) {
  file_ = file;
  if (tab != CTabCtrl::kTabPreview || file == shown_) return;
  shown_ = file;
  const auto& options = window_->settings().settings;
  // Media extensions go to the player; asking the player about any other
  // file would start the media framework for nothing.
  if (modMCIsnd::MediaClassOf(modImgInfo::ExtensionOf(file)) != modMCIsnd::kNoMedia) {
    tab_->image()->clear();
    tab_->showStatus(0, QString());
    tab_->showMediaPage();
    controller_->session().setNoPrevAV(options.noPrevAV);
    controller_->session().setNoVid(options.noVid.on());
    controller_->Preview(file);
    return;
  }
  controller_->Stop();
  tab_->showImagePage();
  tab_->image()->ShowImagePreview(file);
}

}  // namespace browser
