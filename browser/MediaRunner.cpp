#include "browser/MediaRunner.h"

#include "browser/CTabCtrl.h"
#include "browser/frmMain.h"
#include "preview/MediaController.h"
#include "preview/MediaPane.h"

namespace browser {

MediaRunner::MediaRunner(frmMain* window)
    : QObject(window), window_(window), controller_(new preview::MediaController(this)) {
  window->tabs()->SetPage(CTabCtrl::kTabPreview, controller_->pane());
  // The Windows folder whose "Win.ini"/"System.ini" map extensions to devices
  // (a compatibility layer's prefix, say); without one the stock table serves.
  controller_->session().setWindowsFolder(qEnvironmentVariable("QUORVANE_WINDOWS_DIR"));
  connect(window, &frmMain::InfoRefresh, this, &MediaRunner::refresh);
  connect(window->tabs(), &CTabCtrl::TabSelected, this, [this](int tab) { refresh(file_, tab); });
}

void MediaRunner::refresh(const QString& file, int tab) {
  file_ = file;
  if (tab != CTabCtrl::kTabPreview || file == shown_) return;
  shown_ = file;
  const auto& options = window_->settings().settings;
  controller_->session().setNoPrevAV(options.noPrevAV);
  controller_->session().setNoVid(options.noVid.on());
  controller_->Preview(file);
}

}  // namespace browser
