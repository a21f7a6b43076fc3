#pragma once
#include <QString>
#include <functional>
#include <vector>

#include "preview/modFileView.h"

namespace preview {

// One file as the viewer shows it. Nothing of the file is held but what
// finds its lines: the text view keeps one start offset per line, the hex
// view nothing (its lines are read 16 bytes at a time), the extracted-text
// view one (offset, length) pair per run. Lines are read and formatted when
// asked for, so memory does not grow with the file.
class FileViewDocument {
 public:
  struct Options {
    bool hexForText = false;        // "Hex"
    bool extractForBinary = false;  // "Extract text"
    bool international = false;     // wider text bytes for extraction
    qint64 pieceBytes = 0;          // bytes a thread reads at a time; 0: a few megabytes
  };
  // Between blocks of a long read: bytes done and total; false stops it.
  using Progress = std::function<bool(qint64 done, qint64 total)>;

  FileViewDocument() = default;
  ~FileViewDocument();
  FileViewDocument(const FileViewDocument&) = delete;
  FileViewDocument& operator=(const FileViewDocument&) = delete;

  // Classifies, chooses the view and finds its lines. Returns the kind.
  FileKind load(const QString& path, const Options& options, const Progress& progress = {});

  FileKind kind() const { return kind_; }
  ViewMode mode() const { return mode_; }
  const QString& kindText() const { return kindText_; }
  const QString& viewName() const { return viewName_; }
  const QString& error() const { return error_; }  // the system's text for kind 3
  qint64 length() const { return length_; }
  qint64 lineCount() const { return lineCount_; }
  qint64 maxLineWidth() const { return maxLineWidth_; }
  bool aborted() const { return aborted_; }

  // The hex and extracted-text views draw a header line above their lines.
  bool hasHeader() const { return mode_ == kViewHex || mode_ == kViewExtract; }
  QString headerLine(qint64 topLine) const;
  // View line n (0-based) as shown; at most `maxChars` characters of a text
  // line from character `from` on, so a line of any length costs its slice.
  QString line(qint64 n, qint64 from = 0, qint64 maxChars = kWholeLine) const;
  static constexpr qint64 kWholeLine = 1 << 20;

  // "Load time: 0.000 sec", "ASCII-DOS file: 1,234 bytes", "Hex view: 77 lines".
  QString loadTimeText() const;
  QString fileText() const;
  QString viewText() const;

  // Writes the given lines (ascending) one by one; when `stop` says so, the
  // line "*** Job terminated by user ***" ends the output. False if stopped.
  bool writeLines(const std::vector<qint64>& lines, const std::function<void(const QString&)>& write,
                  const std::function<bool()>& stop = {}) const;

 private:
  void clear();
  bool indexText(const Progress& progress, qint64 pieceBytes);
  qsizetype readAt(char* buffer, qsizetype size, qint64 offset) const;

  int fd_ = -1;
  FileKind kind_ = kKindUnreadable;
  ViewMode mode_ = kViewNone;
  QString kindText_, viewName_, error_;
  qint64 length_ = 0;
  qint64 lineCount_ = 0;
  qint64 maxLineWidth_ = 0;
  double seconds_ = 0;
  bool aborted_ = false;
  // Text view.
  PackedOffsets starts_;  // each line's first byte
  int separator_ = 0;           // bytes of the line separator
  bool utf8_ = false;
  // Hex view.
  int offsetDigits_ = 8;
  // Extracted-text view.
  PackedOffsets runs_{true};  // offset and length
  qint64 totalTextBytes_ = 0;
};

}  // namespace preview
