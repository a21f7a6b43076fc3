#pragma once
#include <QString>
#include <QWidget>
#include <functional>
#include <memory>

#include "core/Settings.h"

class QCheckBox;
class QLabel;
class QMenu;
class QProgressBar;
class QScrollBar;
class QTimer;

namespace preview {

class FileViewArea;
class FileViewDocument;

// The "File View" tab: the selected file as text lines, a hex dump or its
// extracted text, drawn by FileViewArea with its own scroll bars. Loading
// waits for the selection to rest (`tmrDelay`); a text scan shows its
// progress and stops on Escape (the process-wide abort flag).
class FileViewTab : public QWidget {
  Q_OBJECT
 public:
  explicit FileViewTab(core::AppSettings::FileView* settings, QWidget* parent = nullptr);
  ~FileViewTab() override;

  // Arms the delay timer for `path`; the file loads when it fires.
  void showFile(const QString& path);
  // Loads now (the timer's work).
  void load();
  const FileViewDocument& document() const { return *doc_; }
  FileViewArea* area() const { return picFileView; }
  QString statusText() const;

  // Copies the selected lines (0: clipboard, 1: a file chosen in a dialog).
  void copySelection(int index);
  // Saves the selected lines to `file` (written whole or not at all).
  bool saveSelection(const QString& file, QString* error);

  // How errors and notes reach the user; a message box unless replaced.
  std::function<void(const QString& text, bool critical)> tell;

 private:
  void applyOptions();
  void updateScrollBars();
  void chooseFont(int index);
  QString proposedSaveName() const;

  core::AppSettings::FileView* settings_;
  std::unique_ptr<FileViewDocument> doc_;
  QString path_;
  bool busy_ = false;

  FileViewArea* picFileView;
  QScrollBar* scrollViewX;
  QScrollBar* scrollViewY;
  QCheckBox* chkLineNum;
  QCheckBox* chkWrap;
  QCheckBox* chkHex;
  QCheckBox* chkExtract;
  QCheckBox* chkInter;
  QLabel* lblViewStatus;
  QProgressBar* prgScan;
  QTimer* tmrDelay;
  QMenu* menFileView;
  QMenu* menFVCopy;
  QMenu* menFVFont;
};

}  // namespace preview
