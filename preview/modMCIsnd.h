#pragma once
#include <QByteArray>
#include <QSize>
#include <QString>
#include <QStringList>
#include <functional>

#include "preview/MciDeviceTable.h"

namespace preview {
class MciInterface;
}

// Media preview through the command-string media interface: one device at a
// time under the alias "wav", the extension-to-device table, the format,
// time and length texts and the progress rules. Widgets show what it says.
namespace modMCIsnd {

enum MediaClass : int { kNoMedia = 0, kAudio = 1, kMidi = 2, kVideo = 3, kCdTrack = 4 };

// Preview status codes shown by the preview tab.
enum Status : int { kStatusHidden = 0, kStatusLoading = 1, kStatusCannotDecode = 2, kStatusExcluded = 3 };

// By extension, compared exactly as passed: "mp2" and "mpa" are video,
// "mp3" audio; "rm" video, "ra" audio.
int MediaClassOf(const QString& ext);
// "1h 02:05  120ms", "00:59  999ms".
QString TimeText(double ms);
// The leading number of a reply ("1500" 1500, "12abc" 12, "" 0).
double ReplyNumber(const QString& reply);

// RealMedia: `head` is the file's first bytes (1024 are searched, up to 268
// more are read for the title). Files of "RealPublisher" are refused; the
// others only with an audio stream header. The title comes from "CONT".
struct RealMediaCheck {
  bool accepted = false;
  QString title;  // "Title: ..." or empty
};
RealMediaCheck CheckRealMedia(const QByteArray& head);
inline constexpr int kRealHeadBytes = 1024 + 12 + 256;

// What the picture host gives to the video device.
struct MediaHost {
  std::function<bool()> visible;            // video opens only on a visible host
  std::function<QString()> windowHandle;    // the host's handle, as text
  std::function<QSize()> size;              // in pixels
  std::function<void(bool)> busy;           // hourglass on / off
  std::function<void()> videoClosed;        // the host's parent is shown again
};

// One step of the progress timer.
struct Progress {
  double fraction = 0;  // fill the bar to this
  bool fill = false;    // false: leave the bar as it is
  QString label;        // the position label's text
  bool finished = false;  // the end was reached: stop the timer
  int track = 0;        // CD: the track to select in the combo, 0 none
};

enum class BarAction { kNone, kStopTimer, kStartTimer };

class MediaSession {
 public:
  explicit MediaSession(preview::MciInterface* mci);

  // Settings.
  void setWindowsFolder(const QString& folder) { windowsFolder_ = folder; }
  void setNoPrevAV(const QString& list) { noPrevAV_ = list; }
  void setNoVid(bool on) { noVid_ = on; }
  void setErrorReporting(bool on) { errorReporting_ = on; }
  void setHost(MediaHost host) { host_ = std::move(host); }
  void setStatusHandler(std::function<void(int)> status) { status_ = std::move(status); }
  // Shows a critical message box: title, text.
  void setErrorBox(std::function<void(const QString&, const QString&)> box) { errorBox_ = std::move(box); }

  // Starts previewing `path`; `rectText` ("L T W H") places video, empty
  // fills the host. True when the file is a media file (the media path took
  // it, whatever the status says), false for any other file. Without
  // `autoplay` the file is opened and left at its start.
  bool PreviewMedia(const QString& path, const QString& rectText = QString(), bool autoplay = true);

  QString DeviceFor(const QString& ext);
  bool OpenMedia();
  void PlayMedia();
  void PlayFrom(double value, bool isTrack);
  void StopMedia(bool keepOpen);
  bool IsOpen() const;

  double MediaLength();
  double MediaPosition();
  double MediaFraction();
  QString MediaMode();
  int TrackCount();
  int CurrentTrack();
  double TrackStart(int n);
  double TrackLength(int n);

  QString FormatText();
  // "Format: " + the format text, or the title text when there is none.
  QString FormatLabel();
  QString LengthText();
  // Entries of the track combo for a CD.
  QStringList TrackNames();

  bool SendCommand(const QString& cmd);
  bool SendQuery(const QString& cmd, QString* reply);

  // The progress timer's tick, the mouse on the progress bar (x from its
  // left edge), and a click on the track combo (index from 0).
  Progress Tick();
  BarAction BarMouse(bool leftButton, double x, double width);
  void TrackChosen(int index);

  int mediaClass() const { return class_; }
  bool failed() const { return failed_; }
  const QString& fileName() const { return file_; }
  const QString& device() const { return device_; }
  const QString& rectText() const { return rect_; }
  const QString& title() const { return title_; }
  const preview::MciDeviceTable& table() const { return table_; }

 private:
  void setStatus(int code);
  double queryNumber(const QString& cmd);

  preview::MciInterface* mci_;
  preview::MciDeviceTable table_;
  bool tableBuilt_ = false;
  QString windowsFolder_;
  QString noPrevAV_;
  bool noVid_ = false;
  bool errorReporting_ = false;
  MediaHost host_;
  std::function<void(int)> status_;
  std::function<void(const QString&, const QString&)> errorBox_;

  int class_ = kNoMedia;
  QString file_;
  QString device_;
  QString rect_;
  QString title_;
  bool failed_ = false;
  int lastTrack_ = 0;
};

}  // namespace modMCIsnd
