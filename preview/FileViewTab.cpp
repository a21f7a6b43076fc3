#include "preview/FileViewTab.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QSaveFile>
#include <QScrollBar>
#include <QTimer>

#include "core/JobFlags.h"
#include "preview/FileViewArea.h"
#include "preview/FileViewDocument.h"

namespace preview {

namespace {

const char* const kFonts[] = {"FixedSys", "Courier", "Courier New"};

// The installed monospace font nearest to the chosen name.
QFont MonospaceFont(const QString& family) {
  QFont f(family);
  f.setStyleHint(QFont::TypeWriter);
  f.setFixedPitch(true);
  if (!QFontInfo(f).fixedPitch()) f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  // Some systems' "monospace" has wide glyphs and counts as proportional.
  if (!QFontInfo(f).fixedPitch()) {
    const QStringList families = QFontDatabase::families();
    for (const QString& family : families)
      if (QFontDatabase::isFixedPitch(family)) {
        f.setFamily(family);
        break;
      }
  }
  return f;
}

// The Font flag keeps the choice: on is FixedSys, off Courier New, 1 Courier.
int FontIndex(core::Flag16 flag) { return flag.raw == 1 ? 1 : flag.on() ? 0 : 2; }
core::Flag16 FontFlag(int index) { return index == 0 ? core::Flag16(true) : index == 1 ? core::Flag16::FromRaw(1) : core::Flag16(false); }

}  // namespace

FileViewTab::FileViewTab(core::AppSettings::FileView* settings, QWidget* parent)
    : QWidget(parent), settings_(settings), doc_(std::make_unique<FileViewDocument>()) {
  setObjectName(QStringLiteral("FileViewTab"));
  tell = [this](const QString& text, bool critical) {
    if (critical) QMessageBox::critical(this, QStringLiteral("File View"), text);
    else QMessageBox::information(this, QStringLiteral("File View"), text);
  };
  auto check = [this](const char* name, const QString& caption, bool on) {
    auto* c = new QCheckBox(caption, this);
    c->setObjectName(QLatin1String(name));
    c->setChecked(on);
    return c;
  };
  chkLineNum = check("chkLineNum", QStringLiteral("Line#"), settings_->lineNum);
  chkWrap = check("chkWrap", QStringLiteral("Wrap"), settings_->wrap);
  chkHex = check("chkHex", QStringLiteral("Hex"), settings_->hex);
  chkExtract = check("chkExtract", QStringLiteral("Extract text"), settings_->extract);
  chkInter = check("chkInter", QStringLiteral("International"), settings_->inter);
  lblViewStatus = new QLabel(this);
  lblViewStatus->setObjectName(QStringLiteral("lblViewStatus"));
  lblViewStatus->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // never widens the window
  picFileView = new FileViewArea(this);
  picFileView->setContextMenuPolicy(Qt::CustomContextMenu);
  scrollViewX = new QScrollBar(Qt::Horizontal, this);
  scrollViewX->setObjectName(QStringLiteral("scrollViewX"));
  scrollViewY = new QScrollBar(Qt::Vertical, this);
  scrollViewY->setObjectName(QStringLiteral("scrollViewY"));
  prgScan = new QProgressBar(this);
  prgScan->setObjectName(QStringLiteral("prgScan"));
  prgScan->setFormat(QStringLiteral("Scan ...  press ESC to abort"));
  prgScan->setTextVisible(true);
  prgScan->hide();
  tmrDelay = new QTimer(this);
  tmrDelay->setObjectName(QStringLiteral("tmrDelay"));
  tmrDelay->setSingleShot(true);
  tmrDelay->setInterval(25);

  auto* options = new QHBoxLayout;
  for (QWidget* w : {static_cast<QWidget*>(chkLineNum), static_cast<QWidget*>(chkWrap), static_cast<QWidget*>(chkHex),
                     static_cast<QWidget*>(chkExtract), static_cast<QWidget*>(chkInter)})
    options->addWidget(w);
  options->addWidget(lblViewStatus, 1);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(2, 2, 2, 2);
  grid->setSpacing(0);
  grid->addLayout(options, 0, 0, 1, 2);
  grid->addWidget(prgScan, 1, 0, 1, 2);
  grid->addWidget(picFileView, 2, 0);
  grid->addWidget(scrollViewY, 2, 1);
  grid->addWidget(scrollViewX, 3, 0);
  grid->setRowStretch(2, 1);

  // The view's menu: copy (clipboard, file), select all, fonts.
  menFileView = new QMenu(this);
  menFVCopy = menFileView->addMenu(QStringLiteral("&Copy"));
  menFVCopy->setObjectName(QStringLiteral("menFVCopy"));
  menFVCopy->addAction(QStringLiteral("To &Clipboard"), this, [this] { copySelection(0); });
  menFVCopy->addAction(QStringLiteral("To &File..."), this, [this] { copySelection(1); });
  QAction* all = menFileView->addAction(QStringLiteral("Select &All"), picFileView, &FileViewArea::selectAll);
  all->setObjectName(QStringLiteral("menFVSel"));
  menFVFont = menFileView->addMenu(QStringLiteral("&Font"));
  menFVFont->setObjectName(QStringLiteral("menFVFont"));
  for (int i = 0; i < 3; ++i) {
    QAction* a = menFVFont->addAction(QLatin1String(kFonts[i]), this, [this, i] { chooseFont(i); });
    a->setCheckable(true);
  }
  chooseFont(FontIndex(settings_->font));

  connect(picFileView, &QWidget::customContextMenuRequested, this,
          [this](const QPoint& at) { menFileView->popup(picFileView->mapToGlobal(at)); });
  connect(picFileView, &FileViewArea::copyRequested, this, [this] { copySelection(0); });
  connect(picFileView, &FileViewArea::scrolled, this, &FileViewTab::updateScrollBars);
  connect(scrollViewY, &QScrollBar::valueChanged, picFileView, [this](int v) { picFileView->setTopLine(v); });
  connect(scrollViewX, &QScrollBar::valueChanged, picFileView, [this](int v) { picFileView->setFirstColumn(v); });
  connect(tmrDelay, &QTimer::timeout, this, &FileViewTab::load);
  connect(chkLineNum, &QCheckBox::toggled, this, [this](bool on) {
    settings_->lineNum = on;
    picFileView->setLineNumbers(on);
  });
  connect(chkWrap, &QCheckBox::toggled, this, [this](bool on) {
    settings_->wrap = on;
    picFileView->setWrap(on);
    updateScrollBars();
  });
  for (QCheckBox* c : {chkHex, chkExtract, chkInter})
    connect(c, &QCheckBox::toggled, this, [this] {
      applyOptions();
      if (!path_.isEmpty()) load();
    });
  picFileView->setLineNumbers(settings_->lineNum);
  picFileView->setWrap(settings_->wrap);
}

FileViewTab::~FileViewTab() = default;

void FileViewTab::applyOptions() {
  settings_->hex = chkHex->isChecked();
  settings_->extract = chkExtract->isChecked();
  settings_->inter = chkInter->isChecked();
}

void FileViewTab::chooseFont(int index) {
  const QList<QAction*> actions = menFVFont->actions();
  for (int i = 0; i < actions.size(); ++i) actions[i]->setChecked(i == index);
  settings_->font = FontFlag(index);
  picFileView->setFont(MonospaceFont(QLatin1String(kFonts[index])));
  updateScrollBars();
}

void FileViewTab::showFile(const QString& path) {
  path_ = path;
  tmrDelay->start();
}

void FileViewTab::load() {
  tmrDelay->stop();
  if (busy_) return;  // a second request while loading is dropped
  busy_ = true;
  picFileView->setDocument(nullptr);
  core::JobFlags::ClearAbort();
  FileViewDocument::Options o;
  o.hexForText = chkHex->isChecked();
  o.extractForBinary = chkExtract->isChecked();
  o.international = chkInter->isChecked();
  QElapsedTimer sinceYield;
  sinceYield.start();
  const FileKind kind = doc_->load(path_, o, [&](qint64 done, qint64 total) {
    if (total > (8 << 20)) {
      if (!prgScan->isVisible()) prgScan->show();
      prgScan->setRange(0, 1000);
      prgScan->setValue(int(done * 1000 / std::max<qint64>(1, total)));
    }
    if (sinceYield.elapsed() >= 30) {
      QCoreApplication::processEvents();
      sinceYield.restart();
    }
    return !core::JobFlags::AbortRequested();
  });
  prgScan->hide();
  busy_ = false;
  picFileView->setDocument(doc_.get());
  lblViewStatus->setText(statusText());
  updateScrollBars();
  if (kind == kKindUnreadable && !path_.isEmpty() && tell) tell(path_ + QStringLiteral("\n") + doc_->error(), true);
}

QString FileViewTab::statusText() const {
  if (doc_->kind() == kKindEmpty) return doc_->kindText();
  if (doc_->mode() == kViewNone) return QString();
  return doc_->loadTimeText() + QStringLiteral("    ") + doc_->fileText() + QStringLiteral("    ") + doc_->viewText();
}

void FileViewTab::updateScrollBars() {
  const qint64 lines = doc_->mode() == kViewNone ? 0 : doc_->lineCount();
  const QSignalBlocker by(scrollViewY), bx(scrollViewX);
  scrollViewY->setRange(0, int(std::min<qint64>(std::max<qint64>(0, lines - 1), INT_MAX)));
  scrollViewY->setPageStep(picFileView->pageLines());
  scrollViewY->setValue(int(std::min<qint64>(picFileView->topLine(), INT_MAX)));
  const qint64 width = doc_->mode() == kViewNone ? 0 : doc_->maxLineWidth();
  scrollViewX->setVisible(!chkWrap->isChecked());
  scrollViewX->setRange(0, int(std::clamp<qint64>(width - picFileView->pageColumns(), 0, INT_MAX)));
  scrollViewX->setPageStep(picFileView->pageColumns());
  scrollViewX->setValue(int(std::min<qint64>(picFileView->firstColumn(), INT_MAX)));
}

QString FileViewTab::proposedSaveName() const {
  return QFileInfo(path_).completeBaseName() + u'_' + doc_->viewName() + QStringLiteral(".txt");
}

bool FileViewTab::saveSelection(const QString& file, QString* error) {
  QSaveFile out(file);
  if (!out.open(QIODevice::WriteOnly)) {
    *error = out.errorString();
    return false;
  }
  QElapsedTimer sinceYield;
  sinceYield.start();
  core::JobFlags::ClearAbort();
  doc_->writeLines(
      picFileView->selectedLines(), [&](const QString& line) { out.write(line.toUtf8() + '\n'); },
      [&] {
        if (sinceYield.elapsed() >= 30) {
          QCoreApplication::processEvents();
          sinceYield.restart();
        }
        return core::JobFlags::AbortRequested();
      });
  if (!out.commit()) {
    *error = out.errorString();
    return false;
  }
  return true;
}

void FileViewTab::copySelection(int index) {
  if (picFileView->selectedLines().empty()) {
    if (tell) tell(QStringLiteral("Nothing to do") + QStringLiteral(" (no selections)"), false);
    return;
  }
  if (index == 0) {
    QString text;
    doc_->writeLines(picFileView->selectedLines(), [&](const QString& line) { text += line + u'\n'; });
    QGuiApplication::clipboard()->setText(text);
    return;
  }
  const QString dir = QFileInfo(path_).absolutePath();
  const QString file = QFileDialog::getSaveFileName(this, QStringLiteral("Save Lines"), dir + u'/' + proposedSaveName(),
                                                    QStringLiteral("Text files (*.txt);;All files (*)"));
  if (file.isEmpty()) return;
  QString error;
  if (!saveSelection(file, &error) && tell) tell(file + QStringLiteral("\n") + error, true);
}

}  // namespace preview
