#pragma once
#include <QImage>
#include <QStatusBar>

#include "browser/JobStatus.h"

class QLabel;

namespace browser {

// The main window's status line: a status picture, the status text (the
// list's status, a job's progress and summary, routine results) and the
// space of the current folder's drive.
class StatusLine : public QStatusBar {
  Q_OBJECT
 public:
  // The area of the status picture that job progress inverts.
  static constexpr int kBlinkX = 0, kBlinkY = 4, kBlinkW = 15, kBlinkH = 9;
  static constexpr int kPictureSize = 16;

  explicit StatusLine(QWidget* parent = nullptr);

  // Job status: -1 mark aborted; 0 job starts (find picture, text, start
  // time); 1 progress (blink, text); 3 find summary (`text`, or when empty
  // made from the two counts);
  // 4 short summary; 5 text and the normal picture.
  void ShowJobStatus(int mode, const QString& text = QString(), double foldersScanned = 0, double nameHits = 0);
  void ShowStatus(const QString& text);
  // `spaceText` as DriveSpaceText makes it; empty hides the drive part.
  void ShowDrive(const QString& spaceText);

  QString statusText() const;
  QString driveText() const;
  const JobStatus& job() const { return job_; }
  const QImage& picture() const { return picture_; }
  bool showsFindPicture() const { return findShown_; }

 private:
  void SetPicture(bool find);
  void ShowPicture();

  QLabel* picStatus;
  QLabel* lblStatus;
  QLabel* lblDrive;
  JobStatus job_;
  QImage picture_;
  bool findShown_ = false;
};

}  // namespace browser
