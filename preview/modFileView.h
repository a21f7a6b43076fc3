#pragma once
#include <QString>
#include <functional>
#include <vector>

#include "preview/PackedOffsets.h"

namespace preview {

// What the first kilobyte of a file says it is.
enum FileKind : int { kKindText = 0, kKindBinary = 1, kKindEmpty = 2, kKindUnreadable = 3 };
// The view a file is shown in.
enum ViewMode : int { kViewNone = 0, kViewText = 1, kViewHex = 2, kViewExtract = 3 };
enum LineEnd : int { kLineEndDos, kLineEndUnix, kLineEndMac };

// Classifies by the first min(length, 1024) bytes: a zero byte makes it
// binary. `error` gets the system's text when the file cannot be read.
// FIFOs and devices are never read (they could block or never end).
FileKind ClassifyFile(const QString& path, qint64* length, QString* error);

// The view for a kind and the two settings; kViewNone for empty and
// unreadable files.
ViewMode ChooseView(FileKind kind, bool hexForText, bool extractForBinary);

// The line-end kind from the first positions (1-based, 0 when absent) of
// CR LF, LF and CR in the file.
LineEnd DetectLineEnd(qint64 firstCrLf, qint64 firstLf, qint64 firstCr);

// One hex line: the offset in lower-case hex (8 digits, more only when the
// file needs them), ":", the bytes in upper case, " ; " and the bytes as
// characters (Windows-1252 above 126, "." below 32); a short last line is
// padded with blanks to the full width.
QString FormatHexLine(const unsigned char* bytes, int count, qint64 offset, int offsetDigits = 8);
QString HexHeaderLine(int offsetDigits = 8);
// Offset digits for a file of `length` bytes: 8, or more above 4 GB.
int HexOffsetDigits(qint64 length);

// Text bytes of the extracted-text view: 32-93, 95, 97-126; with
// `international` also 191-253.
bool IsTextByte(unsigned char byte, bool international);

// Finds the runs of five or more text bytes, as if block by block (2048
// bytes; the last block is padded with zeros, so a run reaching the end of a
// file whose length is not a multiple of 2048 is closed there, and one open
// at the end of a whole block is not recorded). Each run goes into `runs` as
// its offset with its length as value. `progress` is called between pieces
// of `pieceBytes` (0: a few megabytes; two are scanned at once) with the
// bytes done; returning false stops the scan (the runs so far stay).
// Returns false when the file could not be read.
bool ScanTextRuns(const QString& path, bool international, PackedOffsets* runs,
                  const std::function<bool(qint64 done, qint64 total)>& progress = {}, qint64 pieceBytes = 0);

// Windows-1252 text for bytes (bytes 127 and above as that code page shows
// them), or UTF-8 when `utf8`.
QString DecodeBytes(const char* bytes, qsizetype size, bool utf8);

}  // namespace preview
