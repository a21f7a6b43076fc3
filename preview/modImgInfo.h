#pragma once
#include <QSize>
#include <QString>
#include <QStringList>
#include <QStringView>

class QFile;
class QIODevice;

// Picture facts from our own reading of the file header (not from the
// decoded picture, so they show even when decoding fails), the facts block
// and size line of the "Preview" tab, its status codes and the fitting rule.
namespace modImgInfo {

struct ImageHeader {
  QString typeText;    // after "Type: "
  qint32 width = 0;    // pixels, 0 where the header gives none
  qint32 height = 0;
  qint16 bits = 0;     // bits per pixel
  QString colorsText;  // after "Colors: "
  QString note;        // icon count or cursor hot spot
};

// Preview status codes; any other code hides the label.
enum Status : int {
  kStatusHidden = 0,
  kStatusLoading = 1,
  kStatusCannotDecode = 2,
  kStatusExcluded = 3,
  kStatusNotPreviewed = 5,
};
QString StatusText(int code);

inline constexpr char kUnrecognized[] = "Unrecognized image header";

// How a previewed extension gets its facts: our own header reading, or the
// decoder (formats with no header rule of ours). kNone: not previewed.
enum class Kind { kNone, kHeader, kDecoder };
Kind KindOf(QStringView ext);
// The extension of a path's file name, lower case, without the dot.
QString ExtensionOf(const QString& path);
// "NoPrevI" holds extensions each followed by a dot, starting with one (".bmp.gif.").
bool IsExcluded(QStringView ext, const QString& noPrevI);
// 5, 3 or 1 (loading) for a file about to be previewed.
int StatusFor(QStringView ext, const QString& noPrevI);

// The file's length in bytes (0 when it cannot be read).
double FileLength(const QString& path);
// Opens a regular file for reading (never blocks on a FIFO or device).
bool OpenImageFile(const QString& path, QFile& file);

// True when the header was recognised. A header that does not match its
// extension's signature, or ends early, gives kUnrecognized as type text.
// Extensions without a header rule leave the record empty and give false.
bool ReadImageHeader(const QString& path, ImageHeader& record);
// The same over bytes already open; `ext` is matched without regard to case.
bool ParseImageHeader(QStringView ext, QIODevice& in, ImageHeader& record);

// 2^bits below 24, "16M" at 24, "16M+" above.
QString ColorsText(int bits);

// The facts block: "Type: ", "Colors: ", "Area: ", "File size: ",
// "Compression ratio: " lines. `screenBits` is the display's colour depth.
QStringList FactsLines(const ImageHeader& record, double fileSize, int screenBits);

// "Size: W x H", and when shown fitted (`zoomed`) the reduction or zoom with
// the shown width as a percentage of the picture's.
QString FormatPreviewSize(int width, int height, bool zoomed, int shownWidth, int shownHeight);

// Where a picture of `picture` pixels goes in `area`: at its own size when it
// fits and `zoom` is off, else scaled to fit keeping its aspect.
struct Fit {
  QSize shown;
  bool scaled = false;
};
Fit FitPreviewSize(QSize picture, QSize area, bool zoom);

}  // namespace modImgInfo
