#include "browser/FindRunner.h"

#include <QMessageBox>
#include <QScrollArea>

#include "browser/CRellTree.h"
#include "browser/CTabCtrl.h"
#include "browser/CRellTree.h"
#include "browser/UiYield.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "browser/list/RowBuilder.h"
#include "core/JobFlags.h"
#include "core/ListModes.h"
#include "find/BuildCriteria.h"
#include "find/FindFilesTab.h"
#include "find/FindJob.h"
#include "find/LookInChoices.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"
#include "platform/Volumes.h"

namespace browser {

namespace {

// Hits go straight into the list; the list shows the rows found so far each
// time the walk yields, and the status line follows the walk.
class WindowFindSink : public find::FindSink {
 public:
  explicit WindowFindSink(frmMain* window) : window_(window), list_(window->list()), builder_(&list_->model()) {}

  // The fill clears the found noun, so it is set after it.
  void startFill() override {
    list_->beginFill();
    list_->model().setFoundNoun(QStringLiteral("file"));
  }
  void addRow(const platform::DirEntry& entry, const QString& folder, const QString&) override {
    builder_.add(entry, folder);
  }
  qsizetype rowCount() const override { return list_->model().rowCount(); }
  void sortRows() override {
    list_->finishFill();
    finished_ = true;
  }
  void showJobStatus(int mode, const QString& text) override {
    // The list's own end-of-fill status comes first: the summary must stand.
    if (mode == find::kStatusFindEnd) finish();
    window_->ShowJobStatus(mode, text);
  }
  void yield() override {
    if (yield_.due()) list_->refresh();
    yield_();
  }

  void finish() {
    if (!finished_) list_->finishFill();
    finished_ = true;
  }

 private:
  frmMain* window_;
  CRellList* list_;
  RowBuilder builder_;
  UiYield yield_;
  bool finished_ = false;
};

// The tree's root; as "Look in" it stands for every volume.
const QString kRootName = QStringLiteral("Computer");

QStringList DriveRoots() {
  QStringList roots;
  for (const platform::Volume& v : platform::MountedVolumes()) roots << v.root;
  return roots;
}

}  // namespace

FindRunner::FindRunner(frmMain* window) : QObject(window), window_(window), tab_(new find::FindFilesTab) {
  // The tab has many controls; it scrolls rather than widen the window.
  auto* scroll = new QScrollArea;
  scroll->setObjectName(QStringLiteral("scrFindFiles"));
  scroll->setWidgetResizable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setWidget(tab_);
  window->tabs()->SetPage(CTabCtrl::kTabFind, scroll);
  connect(tab_, &find::FindFilesTab::findRequested, this, [this] { RunFind(); });
  connect(window->tree(), &CRellTree::FolderSelected, tab_,
          [this](const QString& folder) { tab_->followFolder(folder.isEmpty() ? kRootName : folder); });
  window->SetAutoFindHandler([this](const QString& folder) { RunFind(folder); });
  connect(window, &frmMain::ListFilled, this, &FindRunner::UpdateLookIn);
  connect(window->list(), &CRellList::FileSelected, this, [this](const QString& path, bool) {
    platform::DirEntry e;
    if (window_->mode() != core::kModeDrives && platform::StatPath(path, &e))
      tab_->setCurrentEntry(e.name, e.creationTime, e.lastWriteTime, e.lastAccessTime);
  });
}

void FindRunner::LoadValues() {
  tab_->setValues(window_->settings().find);
  UpdateLookIn();
}

void FindRunner::UpdateLookIn() {
  // Recent: the finds of this run, then the folders browsed, newest first.
  QStringList recent = recent_;
  const QStringList visited = window_->history().entries();
  for (auto it = visited.crbegin(); it != visited.crend(); ++it) recent.append(*it);
  tab_->setLookInItems(find::LookInChoices(QStringLiteral("Computer"), window_->listFolder(),
                                           window_->tree()->VolumeRoots(), recent));
}

void FindRunner::StoreValues() { window_->settings().find = tab_->values(); }

bool FindRunner::RunFind(const QString& folder) {
  if (core::JobFlags::Busy()) return false;
  core::FindTabValues values = tab_->values();
  if (!folder.isEmpty()) values.lookIn = folder;
  find::FindCriteria criteria;
  find::CriteriaMessage message;
  // The drives are asked only when "Look in" names the tree's root: a volume
  // that does not answer must not hold up every other find.
  const find::LookInRoot root{kRootName, values.lookIn == kRootName ? DriveRoots() : QStringList()};
  if (!find::BuildCriteria(values, {values.lookIn}, root, &criteria, &message)) {
    if (message.icon == find::CriteriaMessage::kInformation)
      QMessageBox::information(window_, QStringLiteral("Quorvane"), message.text);
    else
      QMessageBox::critical(window_, QStringLiteral("Quorvane"), message.text);
    return false;
  }
  const QString findText = values.named.isEmpty() ? QStringLiteral("*.*") : values.named;
  window_->setWindowTitle(QStringLiteral("Quorvane - ") + platform::DisplayText(values.lookIn) +
                          QStringLiteral(" - Find: ") + findText);
  tab_->lookInUsed();
  window_->SwitchMode(core::kModeFind);
  window_->list()->model().setPathBases(criteria.locations);
  WindowFindSink sink(window_);
  find::FindJob::Run(criteria, sink, true);
  sink.finish();
  find::RememberLocation(&recent_, values.lookIn);
  UpdateLookIn();
  return true;
}

}  // namespace browser
