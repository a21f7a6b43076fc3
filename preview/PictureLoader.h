#pragma once
#include <QImage>
#include <QSize>
#include <QString>

#include "preview/modImgInfo.h"

// Decoding of previewed pictures through the platform's picture loader
// (QImageReader and its plugins). No widgets: usable from the command line
// and from a worker thread.
namespace preview {

// What the decoder says of a file before decoding it.
struct PictureProbe {
  bool ok = false;    // a decoder takes the file
  QSize size;         // of the image shown; invalid when the decoder cannot tell
  int index = 0;      // icons and cursors: the best image's number
  int bits = 0;       // from the decoder's pixel format; 0 when unknown
  QByteArray format;  // the decoder's name for it ("jpeg", "webp", ...)
};

struct LoadedPicture {
  bool ok = false;
  QImage image;         // decoded at the shown size
  QSize size;           // the picture's own size
  modImgInfo::Fit fit;  // how it is shown
};

// Above this a decoder refuses to allocate (decoder bombs).
inline constexpr int kAllocationLimitMb = 256;

PictureProbe ProbePicture(const QString& path);
// Decodes the picture for an area of `area` pixels (FitPreviewSize with
// `zoom`), scaling while decoding where the format allows it. An empty area
// decodes at the picture's own size.
LoadedPicture LoadPicture(const QString& path, QSize area, bool zoom);
// Header facts for formats with a header rule of ours, the decoder's for the
// others (type, size, bits). True when the facts could be read.
bool ReadPictureFacts(const QString& path, modImgInfo::ImageHeader& record);

}  // namespace preview
