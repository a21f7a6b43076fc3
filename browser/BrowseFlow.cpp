#include "browser/BrowseFlow.h"

#include <QTimer>

#include "core/JobFlags.h"
#include "core/ListModes.h"

namespace browser {

BrowseFlow::BrowseFlow(QObject* parent)
    : QObject(parent), tmrBrowse(new QTimer(this)), tmrVersionDelay(new QTimer(this)) {
  setObjectName(QStringLiteral("browseFlow"));
  tmrBrowse->setObjectName(QStringLiteral("tmrBrowse"));
  tmrVersionDelay->setObjectName(QStringLiteral("tmrVersionDelay"));
  // Both timers fire repeatedly until their tick finds the keys released.
  tmrBrowse->setInterval(kDelayMs);
  tmrVersionDelay->setInterval(kDelayMs);
  connect(tmrBrowse, &QTimer::timeout, this, &BrowseFlow::BrowseTick);
  connect(tmrVersionDelay, &QTimer::timeout, this, &BrowseFlow::VersionTick);
}

int BrowseFlow::Mode() const { return mode_ ? mode_() : core::kModeBrowse; }

void BrowseFlow::FolderSelected(const QString& folder, bool byKeyboard) {
  sameAsPrevious_ = folder == previous_;
  current_ = folder;
  // In Find mode the list keeps its results unless browsing runs the find.
  if (!autoFind_ && Mode() == core::kModeFind) return;
  tmrBrowse->stop();
  const bool running = core::JobFlags::Busy();
  if (!byKeyboard && !running) {
    if (fillOnSelect_) FillCurrent();
    return;
  }
  if (running) core::JobFlags::RequestStop();
  tmrBrowse->start(kDelayMs);
}

void BrowseFlow::BrowseTick() {
  if (core::JobFlags::Busy() || KeyHeld()) return;
  tmrBrowse->stop();
  FillCurrent();
}

void BrowseFlow::FillCurrent() {
  previous_ = current_;
  // A copy: the fill yields, and a selection made meanwhile changes current_.
  const QString folder = current_;
  Q_EMIT FillRequested(folder);
}

void BrowseFlow::DeferFill() {
  core::JobFlags::RequestStop();
  tmrBrowse->start(kDelayMs);
}

void BrowseFlow::FileSelected(const QString& path, bool immediate) {
  if (Mode() == core::kModeDrives) {
    drive_ = path;
    return;
  }
  if (path == file_) return;
  file_ = path;
  fileImmediate_ = immediate;
  tmrVersionDelay->stop();
  if (immediate)
    Q_EMIT RefreshInfo(path);
  else
    tmrVersionDelay->start(kDelayMs);
}

void BrowseFlow::VersionTick() {
  if (KeyHeld()) return;
  tmrVersionDelay->stop();
  const QString file = file_;
  Q_EMIT RefreshInfo(file);
}

}  // namespace browser
