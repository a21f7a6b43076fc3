#include "preview/ImagePane.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

#include "preview/PictureView.h"
#include "preview/modImgInfo.h"

namespace preview {

namespace {

QLabel* FactLabel(const char* name, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setObjectName(QString::fromLatin1(name));
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

QCheckBox* Check(const char* name, const QString& caption, QWidget* parent) {
  auto* box = new QCheckBox(caption, parent);
  box->setObjectName(QString::fromLatin1(name));
  return box;
}

}  // namespace

ImagePane::ImagePane(core::AppSettings::Options* options, QWidget* parent) : QWidget(parent), options_(options) {
  setObjectName(QStringLiteral("ImagePane"));
  picPreview = new PictureView(this);
  lblPrevType = FactLabel("lblPrevType", this);
  lblPrevColors = FactLabel("lblPrevColors", this);
  lblPrevArea = FactLabel("lblPrevArea", this);
  lblPrevFileSize = FactLabel("lblPrevFileSize", this);
  lblPrevRatio = FactLabel("lblPrevRatio", this);
  lblPrevSize = FactLabel("lblPrevSize", this);
  lblPrevSize->setWordWrap(true);
  lblPrevNote = FactLabel("lblPrevNote", this);
  chkZoom = Check("chkZoom", QStringLiteral("&Zoom to fit"), this);
  chkGrid = Check("chkGrid", QStringLiteral("&Grid"), this);
  chkBord = Check("chkBord", QStringLiteral("&Border"), this);
  cmdSnapShot = new QPushButton(QStringLiteral("S&napshot"), this);
  cmdSnapShot->setObjectName(QStringLiteral("cmdSnapShot"));
  cmdSnapShot->setToolTip(QStringLiteral("Capture the whole screen"));
  applyOptions();

  menPrevCopy = new QMenu(QStringLiteral("&Copy"), this);
  menPrevCopy->setObjectName(QStringLiteral("menPrevCopy"));
  QAction* copyRead = menPrevCopy->addAction(QStringLiteral("Copy Picture as &Read"), this, &ImagePane::CopyAsRead);
  copyRead->setObjectName(QStringLiteral("menPrevCopyRead"));
  QAction* copyShown = menPrevCopy->addAction(QStringLiteral("Copy Picture as &Shown"), this, &ImagePane::CopyAsShown);
  copyShown->setObjectName(QStringLiteral("menPrevCopyShown"));
  connect(picPreview, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
    if (!picPreview->picture().isNull()) menPrevCopy->popup(picPreview->mapToGlobal(at));
  });

  tmrPrevDelay = new QTimer(this);
  tmrPrevDelay->setObjectName(QStringLiteral("tmrPrevDelay"));
  tmrPrevDelay->setSingleShot(true);
  tmrPrevDelay->setInterval(kDelayMs);
  connect(tmrPrevDelay, &QTimer::timeout, this, &ImagePane::startDecode);
  connect(&watcher_, &QFutureWatcherBase::finished, this, &ImagePane::decoded);
  connect(picPreview, &PictureView::Resized, this, &ImagePane::refit);

  connect(chkZoom, &QCheckBox::toggled, this, [this](bool on) {
    options_->zoom = on;
    refit();
  });
  connect(chkGrid, &QCheckBox::toggled, this, [this](bool on) {
    options_->grid = on;
    picPreview->setGrid(on);
  });
  connect(chkBord, &QCheckBox::toggled, this, [this](bool on) {
    options_->bord = on;
    picPreview->setBorder(on);
  });
  connect(cmdSnapShot, &QPushButton::clicked, this, &ImagePane::SnapShot);

  // The facts scroll inside a low info panel rather than holding it open.
  auto* factsPage = new QWidget;
  auto* facts = new QVBoxLayout(factsPage);
  facts->setContentsMargins(0, 0, 0, 0);
  for (QLabel* l : {lblPrevType, lblPrevColors, lblPrevArea, lblPrevFileSize, lblPrevRatio, lblPrevSize, lblPrevNote})
    facts->addWidget(l);
  facts->addStretch(1);
  auto* switches = new QHBoxLayout;
  switches->addWidget(chkZoom);
  switches->addWidget(chkGrid);
  switches->addWidget(chkBord);
  switches->addStretch(1);
  switches->addWidget(cmdSnapShot);
  facts->addLayout(switches);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  layout->addWidget(picPreview, 3);
  auto* factsScroll = new QScrollArea(this);
  factsScroll->setFrameShape(QFrame::NoFrame);
  factsScroll->setWidgetResizable(true);
  factsScroll->setWidget(factsPage);
  factsScroll->viewport()->setAutoFillBackground(false);
  factsPage->setAutoFillBackground(false);
  layout->addWidget(factsScroll, 2);
}

ImagePane::~ImagePane() { watcher_.waitForFinished(); }

void ImagePane::setStatus(int code, const QString& text) {
  Q_EMIT StatusChanged(code, text.isEmpty() ? modImgInfo::StatusText(code) : text);
}

void ImagePane::setFacts(const QStringList& lines, const QString& note) {
  QLabel* labels[] = {lblPrevType, lblPrevColors, lblPrevArea, lblPrevFileSize, lblPrevRatio};
  for (int i = 0; i < 5; ++i) labels[i]->setText(lines.value(i));
  lblPrevNote->setText(note);
}

void ImagePane::showFacts(const modImgInfo::ImageHeader& header) {
  setFacts(modImgInfo::FactsLines(header, modImgInfo::FileLength(file_), screenBits()), header.note);
}

int ImagePane::screenBits() const {
  const QScreen* s = screen() ? screen() : QGuiApplication::primaryScreen();
  return s ? s->depth() : 24;
}

void ImagePane::clear() {
  ++generation_;
  tmrPrevDelay->stop();
  decodeWanted_ = false;
  factsPending_ = false;
  file_.clear();
  shown_ = LoadedPicture();
  snapshot_ = QImage();
  picPreview->clear();
  setFacts({}, QString());
  lblPrevSize->clear();
}

// The settings are read after the window is built, and may be reset.
void ImagePane::applyOptions() {
  for (auto [box, flag] : {std::pair{chkZoom, options_->zoom}, {chkGrid, options_->grid}, {chkBord, options_->bord}}) {
    const QSignalBlocker quiet(box);
    box->setChecked(flag.on());
  }
  picPreview->setGrid(options_->grid.on());
  picPreview->setBorder(options_->bord.on());
}

void ImagePane::ShowImagePreview(const QString& path) {
  clear();
  applyOptions();
  const QString ext = modImgInfo::ExtensionOf(path);
  const int code = modImgInfo::StatusFor(ext, options_->noPrevI);
  if (code != modImgInfo::kStatusLoading) {
    setStatus(code);
    return;
  }
  file_ = path;
  // Our own header reading takes a few bytes; the decoder's facts (SVG, say)
  // may take the whole file and come with the picture.
  factsPending_ = modImgInfo::KindOf(ext) == modImgInfo::Kind::kDecoder;
  if (!factsPending_) {
    modImgInfo::ImageHeader header;
    modImgInfo::ReadImageHeader(path, header);
    showFacts(header);
  }
  setStatus(modImgInfo::kStatusLoading);
  tmrPrevDelay->start();
}

void ImagePane::startDecode() {
  if (file_.isEmpty()) return;
  if (inFlight_) {
    decodeWanted_ = true;  // decoded() starts it
    return;
  }
  decodeWanted_ = false;
  inFlight_ = true;
  decodingGeneration_ = generation_;
  ++decodeCount_;
  const QString path = file_;
  const QSize area = picPreview->fitArea();
  const bool zoom = options_->zoom.on();
  const bool facts = factsPending_;
  watcher_.setFuture(QtConcurrent::run([path, area, zoom, facts] {
    Decoded d;
    if (facts) {
      ReadPictureFacts(path, d.header);
      d.factsRead = true;
    }
    d.picture = LoadPicture(path, area, zoom);
    return d;
  }));
}

void ImagePane::decoded() {
  inFlight_ = false;
  const Decoded result = watcher_.result();
  const LoadedPicture& picture = result.picture;
  if (decodingGeneration_ != generation_) {
    // The selection moved on meanwhile: its own picture is next.
    if (decodeWanted_) startDecode();
    return;
  }
  if (decodeWanted_) {
    startDecode();
    return;
  }
  if (factsPending_ && result.factsRead) {
    factsPending_ = false;
    showFacts(result.header);
  }
  shown_ = picture;
  if (!picture.ok) {
    picPreview->clear();
    lblPrevSize->clear();
    setStatus(modImgInfo::kStatusCannotDecode);
    return;
  }
  picPreview->setPicture(picture.image);
  lblPrevSize->setText(modImgInfo::FormatPreviewSize(picture.size.width(), picture.size.height(), picture.fit.scaled,
                                                     picture.fit.shown.width(), picture.fit.shown.height()));
  setStatus(modImgInfo::kStatusHidden);
  Q_EMIT PictureShown();
  refit();  // the area may have changed while it decoded
}

// A new area or zoom setting: decoded again when the picture would be shown
// at another size.
void ImagePane::refit() {
  if (!snapshot_.isNull()) {
    const modImgInfo::Fit fit = modImgInfo::FitPreviewSize(snapshot_.size(), picPreview->fitArea(), options_->zoom.on());
    picPreview->setPicture(snapshot_.scaled(fit.shown, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    lblPrevSize->setText(modImgInfo::FormatPreviewSize(snapshot_.width(), snapshot_.height(), fit.scaled,
                                                       fit.shown.width(), fit.shown.height()));
    return;
  }
  if (file_.isEmpty() || !shown_.ok) return;
  const modImgInfo::Fit fit = modImgInfo::FitPreviewSize(shown_.size, picPreview->fitArea(), options_->zoom.on());
  if (fit.shown != shown_.image.size() || fit.scaled != shown_.fit.scaled) {
    ++generation_;
    tmrPrevDelay->start();
  }
}

void ImagePane::SnapShot() {
  QScreen* s = QGuiApplication::primaryScreen();
  const QPixmap grabbed = s ? s->grabWindow(0) : QPixmap();
  if (grabbed.isNull()) {
    setStatus(modImgInfo::kStatusCannotDecode, QStringLiteral("The screen cannot be captured here."));
    return;
  }
  clear();
  snapshot_ = grabbed.toImage();
  refit();
  setStatus(modImgInfo::kStatusHidden);
}

void ImagePane::CopyAsRead() {
  QImage image = snapshot_;
  if (image.isNull() && !file_.isEmpty()) image = LoadPicture(file_, QSize(), false).image;
  if (image.isNull()) {
    setStatus(modImgInfo::kStatusCannotDecode);
    return;
  }
  QGuiApplication::clipboard()->setImage(image);
}

void ImagePane::CopyAsShown() {
  const QImage image = picPreview->shownImage();
  if (!image.isNull()) QGuiApplication::clipboard()->setImage(image);
}

}  // namespace preview
