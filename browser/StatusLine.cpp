#include "browser/StatusLine.h"

#include <QLabel>
#include <QPainter>
#include <QPixmap>

#include "browser/IconTheme.h"
#include "platform/Clock.h"

namespace browser {

StatusLine::StatusLine(QWidget* parent) : QStatusBar(parent) {
  setObjectName(QStringLiteral("StatusLine"));
  setSizeGripEnabled(true);
  picStatus = new QLabel(this);
  picStatus->setObjectName(QStringLiteral("picStatus"));
  picStatus->setFixedSize(kPictureSize + 4, kPictureSize + 2);
  picStatus->setAlignment(Qt::AlignCenter);
  lblStatus = new QLabel(this);
  lblStatus->setObjectName(QStringLiteral("lblStatus"));
  lblStatus->setTextFormat(Qt::PlainText);
  lblStatus->setMinimumWidth(80);
  lblDrive = new QLabel(this);
  lblDrive->setObjectName(QStringLiteral("lblDrive"));
  lblDrive->setTextFormat(Qt::PlainText);
  addWidget(picStatus);
  addWidget(lblStatus, 1);
  addPermanentWidget(lblDrive);
  SetPicture(false);
}

void StatusLine::SetPicture(bool find) {
  findShown_ = find;
  // Drawn on the panel colour so that inverting the blink area shows.
  picture_ = QImage(kPictureSize, kPictureSize, QImage::Format_RGB32);
  picture_.fill(palette().color(QPalette::Window));
  QPainter p(&picture_);
  const QIcon icon = find ? IconTheme::Get(QStringLiteral("edit-find"), QStringLiteral("system-search"))
                          : IconTheme::Get(QStringLiteral("folder"));
  icon.paint(&p, QRect(0, 0, kPictureSize, kPictureSize));
  p.end();
  ShowPicture();
}

void StatusLine::ShowPicture() { picStatus->setPixmap(QPixmap::fromImage(picture_)); }

void StatusLine::ShowJobStatus(int mode, const QString& text, double foldersScanned, double nameHits) {
  switch (mode) {
    case -1: job_.MarkAborted(); break;
    case 0:
      job_.Start(platform::MonotonicMs());
      SetPicture(true);
      lblStatus->setText(text);
      break;
    case 1:
      for (int y = kBlinkY; y < kBlinkY + kBlinkH; ++y) {
        auto* line = reinterpret_cast<QRgb*>(picture_.scanLine(y));
        for (int x = kBlinkX; x < kBlinkX + kBlinkW; ++x) line[x] ^= 0x00ffffffu;
      }
      ShowPicture();
      lblStatus->setText(text);
      break;
    case 3:
      // A find that words its own summary passes it; else it is made from the counts.
      lblStatus->setText(text.isEmpty() ? job_.FindSummary(platform::MonotonicMs(), foldersScanned, nameHits) : text);
      SetPicture(false);
      break;
    case 4:
      lblStatus->setText(job_.ShortSummary(platform::MonotonicMs()));
      SetPicture(false);
      break;
    case 5:
      lblStatus->setText(text);
      SetPicture(false);
      break;
    default: break;
  }
}

void StatusLine::ShowStatus(const QString& text) { lblStatus->setText(text); }

void StatusLine::ShowDrive(const QString& spaceText) {
  lblDrive->setText(spaceText.isEmpty() ? QString() : QStringLiteral("Drive") + spaceText);
}

QString StatusLine::statusText() const { return lblStatus->text(); }
QString StatusLine::driveText() const { return lblDrive->text(); }

}  // namespace browser
