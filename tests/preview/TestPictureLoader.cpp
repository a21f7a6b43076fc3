// Decoding for the preview: fitting while decoding, the best image of icon
// files, RLE bitmaps, metafiles, decoder bombs and files that lie about
// their kind; the decoder's facts for formats beyond the header rules.
#include <QBuffer>
#include <QImageWriter>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

#include "preview/PictureLoader.h"
#include "tests/TestSupport.h"
#include "tests/preview/ImageFixtures.h"

using namespace imagefixtures;

namespace {

QByteArray Encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, format);
  return bytes;
}

QImage Filled(int w, int h, QColor colour, QImage::Format format = QImage::Format_RGB32) {
  QImage image(w, h, format);
  image.fill(colour);
  return image;
}

// An icon file (type 1) or cursor file (type 2) whose images are PNG data.
QByteArray IconFile(int type, const QList<QImage>& images) {
  QByteArray head;
  Le16(head, 0);
  Le16(head, type);
  Le16(head, int(images.size()));
  QByteArray data;
  qint64 offset = 6 + 16 * images.size();
  for (const QImage& image : images) {
    const QByteArray png = Encoded(image, "PNG");
    head.append(char(image.width() & 0xFF)).append(char(image.height() & 0xFF)).append('\0').append('\0');
    Le16(head, 1);
    Le16(head, 32);
    Le32(head, png.size());
    Le32(head, offset);
    offset += png.size();
    data += png;
  }
  return head + data;
}

}  // namespace

class TestPictureLoader : public QObject {
  Q_OBJECT
 private Q_SLOTS:
  void load_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QSize>("area");
    QTest::addColumn<bool>("zoom");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("shown");
    QTest::addColumn<QColor>("centre");  // invalid: not looked at

    const QSize area(400, 300);
    const QColor red(Qt::red), blue(Qt::blue), none;
    QTest::newRow("png reduced") << "a.png" << Encoded(Filled(1200, 600, red), "PNG") << area << false << true
                                 << QSize(1200, 600) << QSize(400, 200) << red;
    QTest::newRow("jpeg scaled while decoding") << "a.jpg" << Encoded(Filled(4000, 3000, blue), "JPEG") << area << false
                                                << true << QSize(4000, 3000) << QSize(400, 300) << none;
    QTest::newRow("small at own size") << "a.png" << Encoded(Filled(20, 10, red), "PNG") << area << false << true
                                       << QSize(20, 10) << QSize(20, 10) << red;
    // One red pixel: two-colour table, LZW code size 2.
    const QByteArray gif("GIF89a\x01\x00\x01\x00\x80\x00\x00\xFF\x00\x00\x00\x00\x00"
                         ",\x00\x00\x00\x00\x01\x00\x01\x00\x00\x02\x02\x44\x01\x00;", 35);
    QTest::newRow("gif zoomed") << "a.gif" << gif << area << true << true << QSize(1, 1) << QSize(300, 300) << red;
    QTest::newRow("small zoomed") << "a.bmp" << Encoded(Filled(20, 10, red), "BMP") << area << true << true
                                  << QSize(20, 10) << QSize(400, 200) << red;
    QTest::newRow("no area: own size") << "a.png" << Encoded(Filled(1200, 600, red), "PNG") << QSize() << false << true
                                       << QSize(1200, 600) << QSize(1200, 600) << red;
    const QList<QImage> icons{Filled(16, 16, red), Filled(48, 48, blue), Filled(32, 32, red)};
    QTest::newRow("ico shows its largest image") << "a.ico" << IconFile(1, icons) << area << false << true
                                                 << QSize(48, 48) << QSize(48, 48) << blue;
    QTest::newRow("cur shows its largest image") << "a.cur" << IconFile(2, icons) << area << false << true
                                                 << QSize(48, 48) << QSize(48, 48) << blue;
    QTest::newRow("rle8 bitmap") << "a.bmp" << Rle8Bitmap() << area << false << true << QSize(4, 2) << QSize(4, 2) << none;
    QTest::newRow("rle file") << "a.rle" << Rle8Bitmap() << area << false << true << QSize(4, 2) << QSize(4, 2) << none;
    QTest::newRow("metafile") << "a.wmf" << RedMetafile() << area << false << true << QSize(26, 20) << QSize(26, 20) << red;
    QTest::newRow("metafile zoomed") << "a.wmf" << RedMetafile() << area << true << true << QSize(26, 20) << QSize(390, 300) << red;
    // Found by fuzzing: a header claiming a record of 3.6 GB; a clip region the library leaves to us.
    QByteArray hugeRecord = RedMetafile();
    hugeRecord[22 + 14] = '\x00';
    hugeRecord[22 + 15] = '\x6D';
    QTest::newRow("metafile claiming a huge record") << "a.wmf" << hugeRecord << area << false << false << QSize() << QSize() << none;
    QByteArray clipped = RedMetafile();
    clipped.insert(clipped.size() - 6, QByteArray("\x07\x00\x00\x00\x16\x04\x2C\x01\x90\x01\x00\x00\x00\x00", 14));
    QTest::newRow("metafile with a clip") << "a.wmf" << clipped << area << false << true << QSize(26, 20) << QSize(26, 20) << none;
    QTest::newRow("not a metafile") << "a.wmf" << QByteArray(200, 'x') << area << false << false << QSize() << QSize() << none;
    QTest::newRow("png named gif") << "a.gif" << Encoded(Filled(30, 30, red), "PNG") << area << false << true
                                   << QSize(30, 30) << QSize(30, 30) << red;
    QTest::newRow("text named png") << "a.png" << QByteArray("just some text\n") << area << false << false << QSize() << QSize() << none;
    QTest::newRow("png cut after its header") << "a.png" << Encoded(Filled(300, 300, red), "PNG").left(40) << area << false
                                              << false << QSize(300, 300) << QSize(300, 300) << none;
    QTest::newRow("bitmap bomb") << "a.bmp" << BmpHeader(50000, 50000, 24) + QByteArray(1000, '\0') << area << false
                                 << false << QSize(50000, 50000) << QSize(400, 300) << none;
    QTest::newRow("gif bomb") << "a.gif" << GifHeader("GIF89a", 65535, 65535, 0) + QByteArray(100, '\0') << area << false
                              << false << QSize() << QSize() << none;
    QTest::newRow("svg zoomed") << "a.svg"
                                << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='100' height='50'>"
                                              "<rect width='100' height='50' fill='#ff0000'/></svg>")
                                << area << true << true << QSize(100, 50) << QSize(400, 200) << red;
  }

  void load() {
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QSize, area);
    QFETCH(bool, zoom);
    QFETCH(bool, ok);
    QFETCH(QSize, size);
    QFETCH(QSize, shown);
    QFETCH(QColor, centre);
    QTemporaryDir dir;
    const QString path = dir.filePath(name);
    QVERIFY(testsupport::MakeFile(path, bytes));
    const preview::LoadedPicture p = preview::LoadPicture(path, area, zoom);
    QCOMPARE(p.ok, ok);
    if (!ok) {
      QVERIFY(p.image.isNull());
      return;
    }
    QCOMPARE(p.size, size);
    QCOMPARE(p.image.size(), shown);
    QCOMPARE(p.fit.shown, shown);
    if (centre.isValid()) QCOMPARE(p.image.pixelColor(shown.width() / 2, shown.height() / 2).name(), centre.name());
  }

  // The palette and the runs of an RLE8 bitmap: bottom row red, top row blue.
  void rleRows() {
    QTemporaryDir dir;
    QVERIFY(testsupport::MakeFile(dir.filePath("a.rle"), Rle8Bitmap()));
    const QImage image = preview::LoadPicture(dir.filePath("a.rle"), QSize(), false).image;
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(3, 1), QColor(Qt::red));
  }

  void decoderFacts_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("bits");
    const QImage opaque = Filled(40, 30, Qt::red);
    const QImage alpha = Filled(40, 30, QColor(255, 0, 0, 128), QImage::Format_ARGB32);
    QTest::newRow("webp") << "a.webp" << Encoded(opaque, "WEBP") << true << "WebP file" << 24;
    QTest::newRow("webp with alpha") << "a.webp" << Encoded(alpha, "WEBP") << true << "WebP file" << 32;
    QTest::newRow("tiff") << "a.tif" << Encoded(alpha, "TIFF") << true << "TIFF file" << 32;
    QTest::newRow("xpm") << "a.xpm" << Encoded(opaque.convertToFormat(QImage::Format_Indexed8), "XPM") << true << "XPM file" << 8;
    QTest::newRow("svg") << "a.svg" << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='40' height='30'/>") << true
                         << "SVG file" << 32;
    QTest::newRow("broken webp") << "a.webp" << QByteArray("RIFF\x10\0\0\0WEBPVP8 ", 16) << false
                                 << "Unrecognized image header" << 0;
  }

  void decoderFacts() {
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, ok);
    QFETCH(QString, type);
    QFETCH(int, bits);
    QTemporaryDir dir;
    const QString path = dir.filePath(name);
    QVERIFY(testsupport::MakeFile(path, bytes));
    modImgInfo::ImageHeader h;
    QCOMPARE(preview::ReadPictureFacts(path, h), ok);
    QCOMPARE(h.typeText, type);
    QCOMPARE(int(h.bits), bits);
    if (ok) QCOMPARE(QSize(h.width, h.height), QSize(40, 30));
  }
};

QTEST_MAIN(TestPictureLoader)
#include "TestPictureLoader.moc"
