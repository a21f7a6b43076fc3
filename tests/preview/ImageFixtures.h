#pragma once
// Picture files written byte by byte, for the header rules and the decoders.
#include <QByteArray>
#include <QtEndian>

namespace imagefixtures {

inline void Le16(QByteArray& b, int v) { b.append(char(v & 0xFF)).append(char((v >> 8) & 0xFF)); }
inline void Le32(QByteArray& b, qint64 v) {
  Le16(b, int(v & 0xFFFF));
  Le16(b, int((v >> 16) & 0xFFFF));
}
inline void Be16(QByteArray& b, int v) { b.append(char((v >> 8) & 0xFF)).append(char(v & 0xFF)); }
inline void Be32(QByteArray& b, quint32 v) {
  Be16(b, int(v >> 16));
  Be16(b, int(v & 0xFFFF));
}

// File header and 40-byte info header; `compression` 1 is RLE8.
inline QByteArray BmpHeader(qint32 width, qint32 height, int bits, int compression = 0, int colours = 0,
                            qint64 pixelBytes = 0, const char* sig = "BM") {
  QByteArray b(sig, 2);
  const int offset = 54 + colours * 4;
  Le32(b, offset + pixelBytes);
  Le32(b, 0);
  Le32(b, offset);
  Le32(b, 40);
  Le32(b, width);
  Le32(b, height);
  Le16(b, 1);
  Le16(b, bits);
  Le32(b, compression);
  Le32(b, pixelBytes);
  Le32(b, 2835);
  Le32(b, 2835);
  Le32(b, colours);
  Le32(b, 0);
  return b;
}

// A 4 x 2 RLE8 bitmap: bottom row palette entry 1 (red), top row 2 (blue).
inline QByteArray Rle8Bitmap() {
  const QByteArray pixels("\x04\x01\x00\x00\x04\x02\x00\x01", 8);
  QByteArray b = BmpHeader(4, 2, 8, 1, 3, pixels.size());
  b.append(QByteArray("\x00\x00\x00\x00" "\x00\x00\xFF\x00" "\xFF\x00\x00\x00", 12));
  return b + pixels;
}

// Directory header and one 16-byte entry per image (no image data).
inline QByteArray IconDirectory(int type, int count, int width, int height, int colours, int word1 = 1, int word2 = 32) {
  QByteArray b;
  Le16(b, 0);
  Le16(b, type);
  Le16(b, count);
  b.append(char(width)).append(char(height)).append(char(colours)).append(char(0));
  Le16(b, word1);
  Le16(b, word2);
  Le32(b, 0);
  Le32(b, 22);
  return b;
}

inline QByteArray GifHeader(const char* sig, int width, int height, int packed) {
  QByteArray b(sig, 6);
  Le16(b, width);
  Le16(b, height);
  b.append(char(packed)).append(char(0)).append(char(0));
  return b;
}

inline QByteArray JpegFrame(int width, int height, char kind = '\xC0') {
  QByteArray b("\xFF", 1);
  b.append(kind);
  Be16(b, 17);
  b.append(char(8));
  Be16(b, height);
  Be16(b, width);
  b.append(char(3));
  return b;
}

inline QByteArray JfifStart(int major = 1, int minor = 1) {
  QByteArray b("\xFF\xD8\xFF\xE0", 4);
  Be16(b, 16);
  b.append("JFIF", 5).append(char(major)).append(char(minor));
  b.append(QByteArray(7, '\0'));
  return b;
}

inline QByteArray PngHeader(quint32 width, quint32 height, int depth, int colourType) {
  QByteArray b("\x89PNG\r\n\x1A\n", 8);
  Be32(b, 13);
  b.append("IHDR");
  Be32(b, width);
  Be32(b, height);
  b.append(char(depth)).append(char(colourType)).append(QByteArray(3, '\0'));
  Be32(b, 0);  // CRC, not checked by the header reader
  return b;
}

// A placeable metafile of 400 x 300 twips (1440 a inch) filled with a red rectangle.
inline QByteArray RedMetafile() {
  QByteArray body;
  Le32(body, 7);  // CreateBrushIndirect: solid red
  Le16(body, 0x02FC);
  Le16(body, 0);
  Le32(body, 0x000000FF);
  Le16(body, 0);
  Le32(body, 4);  // SelectObject 0
  Le16(body, 0x012D);
  Le16(body, 0);
  Le32(body, 7);  // Rectangle bottom, right, top, left
  Le16(body, 0x041B);
  for (int v : {300, 400, 0, 0}) Le16(body, v);
  Le32(body, 3);  // end
  Le16(body, 0);
  QByteArray head;
  Le16(head, 1);
  Le16(head, 9);
  Le16(head, 0x0300);
  Le32(head, (18 + body.size()) / 2);
  Le16(head, 1);
  Le32(head, 7);
  Le16(head, 0);
  QByteArray placeable;
  Le32(placeable, qint64(0x9AC6CDD7));
  Le16(placeable, 0);
  for (int v : {0, 0, 400, 300, 1440}) Le16(placeable, v);
  Le32(placeable, 0);
  int sum = 0;
  for (int i = 0; i < 20; i += 2) sum ^= uchar(placeable[i]) | uchar(placeable[i + 1]) << 8;
  Le16(placeable, sum);
  return placeable + head + body;
}

}  // namespace imagefixtures
