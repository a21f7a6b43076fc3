#pragma once
#include <QImage>
#include <QSize>

class QIODevice;

namespace preview {

// Windows metafiles, which Qt cannot read, drawn through libwmf. One
// metafile at a time (the library keeps shared font state).
class WmfRenderer {
 public:
  // The picture's size in pixels at 96 dots per inch; invalid when the file
  // is no metafile.
  static QSize Size(QIODevice& file);
  // Draws the metafile into a picture of `size`, white under it; null when
  // it cannot be read or `size` exceeds `maxPixels`.
  static QImage Render(QIODevice& file, QSize size, qint64 maxPixels);
};

}  // namespace preview
