#pragma once
#include <QFutureWatcher>
#include <QImage>
#include <QString>
#include <QWidget>

#include "core/Settings.h"
#include "preview/PictureLoader.h"

class QCheckBox;
class QLabel;
class QMenu;
class QPushButton;
class QTimer;

namespace preview {

class PictureView;

// The picture page of the "Preview" tab: the facts block beside the picture
// fitted to the area. The facts come at once; the picture is decoded after
// the selection has rested (`tmrPrevDelay`), on a worker thread, one at a
// time: a selection that moves on while one decodes gets only its own
// picture decoded next.
class ImagePane : public QWidget {
  Q_OBJECT
 public:
  static constexpr int kDelayMs = 25;

  explicit ImagePane(core::AppSettings::Options* options, QWidget* parent = nullptr);
  ~ImagePane() override;

  // ShowImagePreview: facts now, status 1, picture once decoded; status 3 or
  // 5 (and nothing else) for excluded and unknown extensions.
  void ShowImagePreview(const QString& path);
  void clear();
  // The whole screen as the picture; a platform that refuses says so.
  void SnapShot();
  // menPrevCopy's two entries.
  void CopyAsRead();
  void CopyAsShown();

  const QString& file() const { return file_; }
  bool decoding() const { return inFlight_; }
  int decodeCount() const { return decodeCount_; }

  PictureView* picPreview;
  QLabel* lblPrevType;
  QLabel* lblPrevColors;
  QLabel* lblPrevArea;
  QLabel* lblPrevFileSize;
  QLabel* lblPrevRatio;
  QLabel* lblPrevSize;
  QLabel* lblPrevNote;
  QCheckBox* chkZoom;
  QCheckBox* chkGrid;
  QCheckBox* chkBord;
  QPushButton* cmdSnapShot;
  QMenu* menPrevCopy;
  QTimer* tmrPrevDelay;

 Q_SIGNALS:
  // A preview status code with its text (a code of 0 hides the label).
  void StatusChanged(int code, const QString& text);
  // A decoded picture is on show.
  void PictureShown();

 private:
  void applyOptions();
  void setStatus(int code, const QString& text = QString());
  void setFacts(const QStringList& lines, const QString& note);
  void showFacts(const modImgInfo::ImageHeader& header);
  void startDecode();
  void decoded();
  void refit();
  int screenBits() const;

  core::AppSettings::Options* options_;
  // What the worker brings back: the picture, and the decoder's facts when asked.
  struct Decoded {
    LoadedPicture picture;
    modImgInfo::ImageHeader header;
    bool factsRead = false;
  };
  QFutureWatcher<Decoded> watcher_;
  QString file_;         // the file on show, empty for none or a snapshot
  quint64 generation_ = 0;  // counts the pictures asked for
  quint64 decodingGeneration_ = 0;
  bool decodeWanted_ = false;
  bool inFlight_ = false;
  bool factsPending_ = false;  // the decoder's facts come with the picture  // until its result is taken, not just computed  // the delay ended while another decode ran
  LoadedPicture shown_;
  QImage snapshot_;
  int decodeCount_ = 0;
};

}  // namespace preview
