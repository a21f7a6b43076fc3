#include "browser/FileOpsRunner.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

#include "browser/CRellTree.h"
#include "browser/MainMenus.h"
#include "browser/StatusLine.h"
#include "browser/UiYield.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "core/JobFlags.h"
#include "fileops/BackupJob.h"
#include "fileops/FileOpDialog.h"
#include "fileops/FileOperation.h"
#include "fileops/FolderStructure.h"
#include "fileops/NewItems.h"
#include "fileops/Trash.h"
#include "platform/NativePath.h"

namespace browser {

namespace {

constexpr const char* kGnomeCopied = "x-special/gnome-copied-files";
constexpr const char* kKdeCut = "application/x-kde-cutselection";

QUrl UrlOf(const QString& path) {
  // Raw bytes of names that are not UTF-8 travel percent-encoded.
  return QUrl::fromEncoded("file://" + QUrl::toPercentEncoding(QString::fromLatin1(platform::ToNative(path)), "/"));
}

QString PathOf(const QUrl& url) {
  if (!url.isLocalFile()) return QString();
  return platform::FromNative(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

// A list of names for a question, cut after a screenful.
QString NameList(const QStringList& paths) {
  QStringList shown;
  for (qsizetype i = 0; i < paths.size() && i < 15; ++i) shown << platform::DisplayText(paths[i]);
  if (paths.size() > 15) shown << QStringLiteral("... and %1 more").arg(paths.size() - 15);
  return shown.join(u'\n');
}

void ShowFailures(QWidget* parent, const QString& title, const QStringList& failures) {
  if (failures.isEmpty()) return;
  QMessageBox::warning(parent, title, QStringLiteral("These were not done:\n\n") + NameList(failures));
}

// Clears the flags a job polls and restores the window's state afterwards.
struct JobScope {
  JobScope() {
    core::JobFlags::ClearAbort();
    core::JobFlags::ClearCancel();
    core::JobFlags::SetBusy(true);
  }
  ~JobScope() { core::JobFlags::SetBusy(false); }
};

}  // namespace

FileOpsRunner::FileOpsRunner(frmMain* window) : QObject(window), window_(window) {
  MainMenus* m = window->menus();
  for (QAction* a : m->menFile->actions())
    if (a->objectName() == u"sepFile") before_ = a;
  m->menFile->insertSeparator(before_);
  connect(Add(QStringLiteral("New &Folder"), "menNewFolder", QStringLiteral("Ctrl+Shift+N")), &QAction::triggered, this,
          &FileOpsRunner::NewFolder);
  connect(Add(QStringLiteral("New &Text File"), "menNewTextFile", QString()), &QAction::triggered, this,
          &FileOpsRunner::NewTextFile);
  m->menFile->insertSeparator(before_);
  connect(Add(QStringLiteral("&Copy"), "menCopy", QStringLiteral("Ctrl+C")), &QAction::triggered, this,
          [this] { CopyToClipboard(false); });
  connect(Add(QStringLiteral("Cu&t"), "menCut", QStringLiteral("Ctrl+X")), &QAction::triggered, this,
          [this] { CopyToClipboard(true); });
  connect(Add(QStringLiteral("&Paste"), "menPaste", QStringLiteral("Ctrl+V")), &QAction::triggered, this,
          &FileOpsRunner::Paste);
  connect(Add(QStringLiteral("&Delete"), "menDelete", QStringLiteral("Del")), &QAction::triggered, this,
          [this] { Delete(false); });
  connect(Add(QStringLiteral("Delete for &Good"), "menDeleteForGood", QStringLiteral("Shift+Del")),
          &QAction::triggered, this, [this] { Delete(true); });
  m->menFile->insertSeparator(before_);
  connect(Add(QStringLiteral("&Backup..."), "menBackup", QString()), &QAction::triggered, this,
          [this] { Backup(); });
  connect(Add(QStringLiteral("Create Folder &Structure Here"), "menFolderStructure", QString()), &QAction::triggered,
          this, [this] { CreateFolderStructure(); });
  // The favourites are read when the menu opens, so the stored lists stay the only copy.
  connect(m->menCopyTo, &QMenu::aboutToShow, this, [this] { FillFavouriteMenu(false); });
  connect(m->menMoveTo, &QMenu::aboutToShow, this, [this] { FillFavouriteMenu(true); });
  m->menCopyTo->menuAction()->setEnabled(true);
  m->menMoveTo->menuAction()->setEnabled(true);
  connect(window->list(), &CRellList::Drop, this, &FileOpsRunner::DropOnList);
}

QAction* FileOpsRunner::Add(const QString& text, const char* name, const QString& keys) {
  auto* a = new QAction(text, window_);
  a->setObjectName(QString::fromLatin1(name));
  if (!keys.isEmpty()) {
    a->setShortcut(QKeySequence(keys));
    a->setShortcutContext(Qt::WindowShortcut);
  }
  window_->menus()->menFile->insertAction(before_, a);
  window_->addAction(a);
  return a;
}

QString FileOpsRunner::folder() const { return window_->listFolder(); }

void FileOpsRunner::Refresh(const QString& focus) {
  // What was selected and is still there stays selected; what a job put
  // into this folder is shown instead.
  CRellList* list = window_->list();
  const QStringList selection = focus.isEmpty() ? list->selectedPaths() : QStringList{focus};
  window_->menus()->menRefresh->trigger();
  list->selectPaths(selection);
}

void FileOpsRunner::FillFavouriteMenu(bool move) {
  MainMenus* m = window_->menus();
  QMenu* menu = move ? m->menMoveTo : m->menCopyTo;
  QStringList& list = move ? window_->settings().moveTo : window_->settings().copyTo;
  const QString prefix = move ? QStringLiteral("menMoveTo") : QStringLiteral("menCopyTo");
  menu->clear();
  QMenu* remove = nullptr;
  for (qsizetype i = 0; i < list.size(); ++i) {
    const QString target = list[i];
    if (target.trimmed().isEmpty()) continue;
    QString text = platform::DisplayText(target);
    text.replace(u'&', QStringLiteral("&&"));
    QAction* a = menu->addAction(text);
    a->setObjectName(prefix + QString::number(i));
    connect(a, &QAction::triggered, this, [this, target, move] {
      Transfer(window_->list()->selectedPaths(), target, move);
    });
    if (!remove) remove = new QMenu(QStringLiteral("&Remove"), menu);
    QAction* r = remove->addAction(text);
    connect(r, &QAction::triggered, this, [&list, target] { list.removeAll(target); });
  }
  menu->addSeparator();
  QAction* add = menu->addAction(QStringLiteral("&Add..."));
  add->setObjectName(prefix + QStringLiteral("Add"));
  connect(add, &QAction::triggered, this, [this, &list, move] {
    const QString chosen = QFileDialog::getExistingDirectory(window_, move ? QStringLiteral("Move To") : QStringLiteral("Copy To"), folder());
    if (!chosen.isEmpty() && !list.contains(chosen)) list.append(chosen);
  });
  if (remove) {
    remove->menuAction()->setObjectName(prefix + QStringLiteral("Remove"));
    menu->addMenu(remove);
  }
}

bool FileOpsRunner::Transfer(const QStringList& sources, const QString& target, bool move) {
  const QString into = target.isEmpty() ? folder() : target;
  if (sources.isEmpty() || into.isEmpty() || core::JobFlags::Busy()) return false;
  const QString title = move ? QStringLiteral("Move") : QStringLiteral("Copy");
  const QString refusal = fileops::FileOperation::CheckRequest(sources, into, move);
  if (!refusal.isEmpty()) {
    QMessageBox::warning(window_, title, refusal);
    return false;
  }
  fileops::FileOpResult result;
  QStringList failures;
  {
    JobScope scope;
    fileops::FileOpDialog dialog(title, window_);
    fileops::FileOpOptions options;
    options.move = move;
    options.countFirst = true;
    UiYield yield;
    fileops::FileOperation op(&dialog, [&yield] { yield(); }, core::JobFlags::AbortFlag(), options);
    result = op.run(sources, into);
    failures = dialog.failures();
  }
  window_->statusLine()->ShowStatus(result.status(move));
  Refresh(into == folder() ? result.firstTarget : QString());
  window_->statusLine()->ShowStatus(result.status(move));
  ShowFailures(window_, title, failures);
  return true;
}

void FileOpsRunner::DropOnList(const QStringList& paths, Qt::DropAction action, int hit) {
  QString target = folder();
  CRellList* list = window_->list();
  if (hit >= 0 && hit < list->model().rowCount()) {
    const QString row = list->model().path(list->model().rowAt(hit));
    if (platform::FileCopier::Stat(row).kind == platform::NodeInfo::kFolder) target = row;
  }
  // A drag let go where it started is no request to duplicate everything.
  bool allThere = true;
  for (const QString& p : paths) allThere = allThere && p.left(p.lastIndexOf(platform::kSeparator)) == target;
  if (allThere) return;
  // Shift moves, as on the desktop; Ctrl or no key copies.
  Transfer(paths, target, action == Qt::MoveAction);
}

QMimeData* FileOpsRunner::FileListData(const QStringList& paths, bool cut) {
  auto* data = new QMimeData;
  QList<QUrl> urls;
  QByteArray gnome = cut ? "cut" : "copy";
  QStringList plain;
  for (const QString& p : paths) {
    const QUrl url = UrlOf(p);
    urls << url;
    gnome += '\n' + url.toEncoded();
    plain << platform::DisplayText(p);
  }
  data->setUrls(urls);
  data->setData(QString::fromLatin1(kGnomeCopied), gnome);
  data->setData(QString::fromLatin1(kKdeCut), cut ? "1" : "0");
  data->setText(plain.join(u'\n'));
  return data;
}

QStringList FileOpsRunner::PathsFromData(const QMimeData* data, bool* cut) {
  *cut = false;
  QStringList paths;
  if (!data) return paths;
  const QByteArray gnome = data->data(QString::fromLatin1(kGnomeCopied));
  if (!gnome.isEmpty()) *cut = gnome.startsWith("cut");
  else *cut = data->data(QString::fromLatin1(kKdeCut)) == "1";
  for (const QUrl& url : data->urls()) {
    const QString p = PathOf(url);
    if (!p.isEmpty()) paths << p;
  }
  if (paths.isEmpty()) {
    // Paths as text, one per line, from a terminal.
    for (const QString& line : data->text().split(u'\n', Qt::SkipEmptyParts))
      if (line.startsWith(u'/')) paths << line.trimmed();
  }
  return paths;
}

void FileOpsRunner::CopyToClipboard(bool cut) {
  const QStringList paths = window_->list()->selectedPaths();
  if (paths.isEmpty()) return;
  QApplication::clipboard()->setMimeData(FileListData(paths, cut));
  window_->statusLine()->ShowStatus(QStringLiteral("%1 %2 on the clipboard.")
                                        .arg(paths.size())
                                        .arg(paths.size() == 1 ? "item" : "items"));
}

void FileOpsRunner::Paste() {
  bool cut = false;
  const QStringList paths = PathsFromData(QApplication::clipboard()->mimeData(), &cut);
  if (paths.isEmpty()) return;
  // What was cut is gone from its place once pasted: the clipboard no longer offers it.
  if (Transfer(paths, folder(), cut) && cut) QApplication::clipboard()->clear();
}

void FileOpsRunner::Delete(bool forGood) {
  const QStringList paths = window_->list()->selectedPaths();
  if (paths.isEmpty() || core::JobFlags::Busy()) return;
  QStringList left = paths;
  int trashed = 0;
  if (!forGood) {
    left.clear();
    for (const QString& p : paths) {
      QString error;
      if (fileops::Trash::MoveToTrash(p, &error)) ++trashed;
      else left << p;
    }
  }
  QStringList failures;
  if (!left.isEmpty()) {
    const QString why = forGood ? QStringLiteral("Delete these for good? They do not go to the trash.\n\n")
                                : QStringLiteral("There is no trash for these. Delete them for good?\n\n");
    if (QMessageBox::question(window_, QStringLiteral("Delete"), why + NameList(left), QMessageBox::Yes | QMessageBox::No,
                              QMessageBox::No) == QMessageBox::Yes) {
      for (const QString& p : left) {
        QString error;
        if (!fileops::Trash::DeleteForGood(p, &error)) failures << p + QStringLiteral(": ") + error;
      }
    } else {
      left.clear();
    }
  }
  Refresh(QString());
  window_->statusLine()->ShowStatus(QStringLiteral("%1 moved to the trash, %2 deleted for good, %3 failed.")
                                        .arg(trashed)
                                        .arg(left.size() - failures.size())
                                        .arg(failures.size()));
  ShowFailures(window_, QStringLiteral("Delete"), failures);
}

void FileOpsRunner::NewFolder() {
  if (folder().isEmpty()) return;
  QString error;
  const QString made = fileops::NewItems::CreateFolder(folder(), &error);
  if (made.isEmpty()) {
    QMessageBox::warning(window_, QStringLiteral("New Folder"), error);
    return;
  }
  Refresh(made);
  window_->list()->startRename();
}

void FileOpsRunner::NewTextFile() {
  if (folder().isEmpty()) return;
  QString error;
  const QString made = fileops::NewItems::CreateTextFile(folder(), &error);
  if (made.isEmpty()) {
    QMessageBox::warning(window_, QStringLiteral("New Text File"), error);
    return;
  }
  Refresh(made);
  window_->list()->startRename();
}

void FileOpsRunner::Backup(const QString& given) {
  const auto& report = window_->settings().report;
  QStringList sources = report.copyOnlySel ? window_->list()->selectedPaths() : QStringList();
  if (sources.isEmpty() && !folder().isEmpty()) sources << folder();
  if (sources.isEmpty() || core::JobFlags::Busy()) return;
  const QString destination =
      given.isEmpty() ? QFileDialog::getExistingDirectory(window_, QStringLiteral("Backup To"), folder()) : given;
  if (destination.isEmpty()) return;
  fileops::BackupJob::Result result;
  QStringList failures;
  {
    JobScope scope;
    fileops::FileOpDialog dialog(QStringLiteral("Backup"), window_);
    UiYield yield;
    fileops::BackupJob job(&dialog, [&yield] { yield(); }, core::JobFlags::AbortFlag());
    result = job.run(sources, destination, report.copyRecurse || !report.copyOnlySel, QDateTime::currentDateTime());
    failures = dialog.failures();
  }
  if (!result.ops.refusal.isEmpty()) {
    QMessageBox::warning(window_, QStringLiteral("Backup"), result.ops.refusal);
    return;
  }
  QString status = result.ops.status(false);
  status += result.logPath.isEmpty() ? QStringLiteral(" The log could not be written: ") + result.logError
                                     : QStringLiteral(" Log: ") + platform::DisplayText(result.logPath);
  Refresh(QString());
  window_->statusLine()->ShowStatus(status);
  ShowFailures(window_, QStringLiteral("Backup"), failures);
}

void FileOpsRunner::CreateFolderStructure(const QString& given) {
  if (folder().isEmpty() || core::JobFlags::Busy()) return;
  const QString source = given.isEmpty() ? QFileDialog::getExistingDirectory(
                                               window_, QStringLiteral("Create Folder Structure Of"), folder())
                                         : given;
  if (source.isEmpty()) return;
  fileops::FolderStructure::Result result;
  {
    JobScope scope;
    UiYield yield;
    result = fileops::FolderStructure::Recreate(source, folder(), nullptr, [&yield] { yield(); },
                                                core::JobFlags::AbortFlag());
  }
  if (!result.refusal.isEmpty()) {
    QMessageBox::warning(window_, QStringLiteral("Create Folder Structure"), result.refusal);
    return;
  }
  Refresh(result.top);
  window_->statusLine()->ShowStatus(result.status());
}

}  // namespace browser
