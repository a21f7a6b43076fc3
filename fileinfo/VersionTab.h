#pragma once
#include <QString>
#include <QWidget>

#include "fileinfo/VersionDisplay.h"

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace fileinfo {

// The "Version" tab: value labels 10 to 17 with their captions, the key list
// (lstInfo) with its value box (txtInfoVal), the selected-file caption
// (lblSelFile) and the two copy buttons (cmdCopyVer0, cmdCopyVer1). The name
// of the key the user last picked is kept across files.
class VersionTab : public QWidget {
  Q_OBJECT
 public:
  explicit VersionTab(QWidget* parent = nullptr);

  // Reads `path` and shows it; `useFixed`: the caption's version is the fixed one.
  void ShowFile(const QString& path, bool useFixed);
  // Shows a reading made elsewhere (`fileName` for the caption).
  void ShowDisplay(const VersionDisplay& display, const QString& fileName, bool useFixed);
  void Clear();

  const QString& file() const { return file_; }
  const VersionDisplay& display() const { return display_; }
  const QString& rememberedName() const { return remembered_; }

  QLabel* lblValue[VersionDisplay::kLabelCount];
  QLabel* lblCaption[VersionDisplay::kLabelCount];
  QListWidget* lstInfo;
  QLineEdit* txtInfoVal;
  QLabel* lblSelFile;
  QPushButton* cmdCopyVer[2];

 Q_SIGNALS:
  // cmdCopyVer_Click: 0 compact, 1 extended.
  void CopyRequested(int index);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void lstInfo_Click();
  void SetListGreyed(bool greyed);
  static void CopyText(const QString& text);

  VersionDisplay display_;
  QString file_;
  QString remembered_;
  bool filling_ = false;
};

}  // namespace fileinfo
