#pragma once
#include <QWidget>

class QLabel;
class QStackedWidget;

namespace preview {

class ImagePane;

// The "Preview" tab: the picture page or the media player page, and over
// them the one status label `lblPrevStatus` both report to.
class PreviewTab : public QWidget {
  Q_OBJECT
 public:
  // Takes both pages.
  PreviewTab(ImagePane* image, QWidget* media, QWidget* parent = nullptr);

  void showImagePage();
  void showMediaPage();
  bool mediaPageShown() const;
  // A status code with its text; code 0 or an empty text hides the label.
  void showStatus(int code, const QString& text);
  int statusCode() const { return code_; }

  ImagePane* image() const { return image_; }
  QLabel* lblPrevStatus;

 private:
  QStackedWidget* pages_;
  ImagePane* image_;
  QWidget* media_;
  int code_ = 0;
};

}  // namespace preview
