#include "preview/PreviewTab.h"

#include <QLabel>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "preview/ImagePane.h"

namespace preview {

PreviewTab::PreviewTab(ImagePane* image, QWidget* media, QWidget* parent)
    : QWidget(parent), image_(image), media_(media) {
  setObjectName(QStringLiteral("PreviewTab"));
  lblPrevStatus = new QLabel(this);
  lblPrevStatus->setObjectName(QStringLiteral("lblPrevStatus"));
  lblPrevStatus->setVisible(false);
  pages_ = new QStackedWidget(this);
  pages_->addWidget(image);
  pages_->addWidget(media);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(lblPrevStatus);
  layout->addWidget(pages_, 1);
  connect(image, &ImagePane::StatusChanged, this, &PreviewTab::showStatus);
}

void PreviewTab::showImagePage() { pages_->setCurrentWidget(image_); }
void PreviewTab::showMediaPage() { pages_->setCurrentWidget(media_); }
bool PreviewTab::mediaPageShown() const { return pages_->currentWidget() == media_; }

void PreviewTab::showStatus(int code, const QString& text) {
  code_ = code;
  const bool shown = code != 0 && !text.isEmpty();
  lblPrevStatus->setText(shown ? text : QString());
  lblPrevStatus->setVisible(shown);
}

}  // namespace preview
