// The picture header rules, the facts block, the size line, the fitting
// rule and the status codes.
#include <QTemporaryDir>
#include <QtTest>

#include "preview/modImgInfo.h"
#include "tests/TestSupport.h"
#include "tests/preview/ImageFixtures.h"

using namespace imagefixtures;
using modImgInfo::ImageHeader;

class TestImageInfo : public QObject {
  Q_OBJECT
 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void header_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("recognised");
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bits");
    QTest::addColumn<QString>("colours");
    QTest::addColumn<QString>("note");
    const QString bad = QString::fromLatin1(modImgInfo::kUnrecognized);
    const QByteArray tail(64, '\0');

    QTest::newRow("bmp 24-bit") << "a.bmp" << BmpHeader(640, 480, 24) << true << "Bitmap file" << 640 << 480 << 24 << "16M" << "";
    QTest::newRow("bmp 32-bit") << "a.bmp" << BmpHeader(2, 3, 32) << true << "Bitmap file" << 2 << 3 << 32 << "16M+" << "";
    QTest::newRow("BMP upper case, 8-bit") << "A.BMP" << BmpHeader(2, 3, 8) << true << "Bitmap file" << 2 << 3 << 8 << "256" << "";
    QTest::newRow("dib") << "a.dib" << BmpHeader(5, 6, 4) << true << "Device-independent bitmap" << 5 << 6 << 4 << "16" << "";
    QTest::newRow("bmp top-down") << "a.bmp" << BmpHeader(5, -6, 1) << true << "Bitmap file" << 5 << 6 << 1 << "2" << "";
    QTest::newRow("bmp claims 2^31 pixels") << "a.bmp" << BmpHeader(65536, 32768, 24) << true << "Bitmap file" << 65536 << 32768 << 24 << "16M" << "";
    QTest::newRow("bmp wrong signature") << "a.bmp" << BmpHeader(5, 6, 4, 0, 0, 0, "MB") << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("bmp truncated") << "a.bmp" << BmpHeader(5, 6, 4).left(30) << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("empty bmp") << "a.bmp" << QByteArray() << false << bad << 0 << 0 << 0 << "" << "";

    QTest::newRow("ico 3 images") << "a.ico" << IconDirectory(1, 3, 32, 32, 16) + tail << true << "Icon file" << 32 << 32 << 4 << "16" << "Icons contained: 3";
    QTest::newRow("ico 1 image, no count byte") << "a.ico" << IconDirectory(1, 1, 16, 16, 0) << true << "Icon file" << 16 << 16 << 8 << "256" << "";
    QTest::newRow("ico 3 colours round to 2 bits") << "a.ico" << IconDirectory(1, 1, 16, 16, 3) << true << "Icon file" << 16 << 16 << 2 << "4" << "";
    QTest::newRow("ico size byte 0 is 256") << "a.ico" << IconDirectory(1, 1, 0, 0, 0) << true << "Icon file" << 256 << 256 << 8 << "256" << "";
    QTest::newRow("ico count 65535") << "a.ico" << IconDirectory(1, 65535, 48, 48, 0) << true << "Icon file" << 48 << 48 << 8 << "256" << "Icons contained: 65535";
    QTest::newRow("ico count 0") << "a.ico" << IconDirectory(1, 0, 48, 48, 0) << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("ico of cursor type") << "a.ico" << IconDirectory(2, 1, 48, 48, 0) << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("ico truncated entry") << "a.ico" << IconDirectory(1, 1, 48, 48, 0).left(12) << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("cur hot spot") << "a.cur" << IconDirectory(2, 2, 32, 32, 0, 7, 9) << true << "Cursor file" << 32 << 32 << 1 << "2" << "Hotspot at: 7, 9";
    QTest::newRow("cur 16 colours") << "a.CUR" << IconDirectory(2, 1, 32, 32, 16, 0, 0) << true << "Cursor file" << 32 << 32 << 4 << "16" << "Hotspot at: 0, 0";
    QTest::newRow("cur of icon type") << "a.cur" << IconDirectory(1, 1, 32, 32, 0) << false << bad << 0 << 0 << 0 << "" << "";

    QTest::newRow("gif89a") << "a.gif" << GifHeader("GIF89a", 300, 200, 0xF7) << true << "GIF89a" << 300 << 200 << 8 << "256" << "";
    QTest::newRow("gif87a") << "a.gif" << GifHeader("GIF87a", 1, 2, 0x80) << true << "GIF87a" << 1 << 2 << 1 << "2" << "";
    QTest::newRow("gif of 6 bytes") << "a.gif" << QByteArray("GIF89a") << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("gif wrong signature") << "a.gif" << GifHeader("GIT89a", 1, 2, 0) << false << bad << 0 << 0 << 0 << "" << "";

    const QByteArray frame = JpegFrame(1024, 768);
    QTest::newRow("jpeg JFIF 1.1") << "a.jpg" << JfifStart() + frame << true << "JPEG file (JFIF v1.1)" << 1024 << 768 << 24 << "16M" << "";
    QTest::newRow("jpeg JFIF 1.2") << "a.jpeg" << JfifStart(1, 2) + frame << true << "JPEG file (JFIF v1.2)" << 1024 << 768 << 24 << "16M" << "";
    QTest::newRow("jpeg without JFIF") << "a.jpg" << QByteArray("\xFF\xD8\xFF\xE1\x00\x10" "Exif\0\0", 12) + frame << true << "JPEG file" << 1024 << 768 << 24 << "16M" << "";
    QTest::newRow("jpeg thumbnail frame first") << "a.jpg" << JfifStart() + JpegFrame(160, 120) + QByteArray(100, 'x') + frame << true << "JPEG file (JFIF v1.1)" << 1024 << 768 << 24 << "16M" << "";
    QTest::newRow("jpeg progressive") << "a.jpg" << JfifStart() + JpegFrame(33, 44, '\xC2') << true << "JPEG file (JFIF v1.1)" << 33 << 44 << 24 << "16M" << "";
    QTest::newRow("jpeg baseline before progressive") << "a.jpg" << JfifStart() + JpegFrame(33, 44, '\xC2') + JpegFrame(55, 66) << true << "JPEG file (JFIF v1.1)" << 55 << 66 << 24 << "16M" << "";
    QTest::newRow("jpeg frame beyond 10000 bytes") << "a.jpg" << JfifStart() + QByteArray(10000, 'x') + frame << true << "" << 0 << 0 << 0 << "1" << "";
    QTest::newRow("jpeg frame across the limit") << "a.jpg" << JfifStart() + QByteArray(10000 - 20 - 1, 'x') + frame << true << "" << 0 << 0 << 0 << "1" << "";
    QTest::newRow("jpeg frame cut short") << "a.jpg" << JfifStart() + frame.left(6) << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("jpeg wrong signature") << "a.jpg" << QByteArray("\xFF\xD9") + frame << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("png named jpg") << "a.jpg" << PngHeader(1, 1, 8, 2) << false << bad << 0 << 0 << 0 << "" << "";

    QTest::newRow("wmf") << "a.wmf" << QByteArray("anything") << true << "Windows Meta File" << 0 << 0 << 24 << "16M" << "";
    QTest::newRow("rle") << "a.rle" << QByteArray() << true << "Run-length-encoded file" << 0 << 0 << 24 << "16M" << "";

    QTest::newRow("png RGBA") << "a.png" << PngHeader(800, 600, 8, 6) << true << "PNG file" << 800 << 600 << 32 << "16M+" << "";
    QTest::newRow("png RGB") << "a.png" << PngHeader(8, 6, 8, 2) << true << "PNG file" << 8 << 6 << 24 << "16M" << "";
    QTest::newRow("png palette 4-bit") << "a.png" << PngHeader(8, 6, 4, 3) << true << "PNG file" << 8 << 6 << 4 << "16" << "";
    QTest::newRow("png grey 16-bit with alpha") << "a.png" << PngHeader(8, 6, 16, 4) << true << "PNG file" << 8 << 6 << 32 << "16M+" << "";
    QTest::newRow("png bad colour type") << "a.png" << PngHeader(8, 6, 8, 5) << false << bad << 0 << 0 << 0 << "" << "";
    QTest::newRow("png width over 2^31") << "a.png" << PngHeader(0x80000000u, 6, 8, 2) << false << bad << 0 << 0 << 0 << "" << "";
  }

  void header() {
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QTemporaryDir dir;
    const QString path = dir.filePath(name);
    QVERIFY(testsupport::MakeFile(path, bytes));
    QFETCH(bool, recognised);
    QFETCH(QString, type);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bits);
    QFETCH(QString, colours);
    QFETCH(QString, note);
    ImageHeader h;
    QCOMPARE(modImgInfo::ReadImageHeader(path, h), recognised);
    QCOMPARE(h.typeText, type);
    QCOMPARE(h.width, width);
    QCOMPARE(h.height, height);
    QCOMPARE(int(h.bits), bits);
    QCOMPARE(h.colorsText, colours);
    QCOMPARE(h.note, note);
  }

  void facts_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("fileSize");
    QTest::addColumn<int>("screenBits");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("photo") << 1024 << 768 << 24 << 123456.0 << 32
                           << QStringList{"Type: T", "Colors: 16M (24-bit)", "Area: 786,432 pixels (3,145,728 video bytes)",
                                          "File size: 123,456 bytes", "Compression ratio: 5.23%"};
    QTest::newRow("icon on a 16-bit display") << 32 << 32 << 4 << 766.0 << 16
                                              << QStringList{"Type: T", "Colors: 16 (4-bit)", "Area: 1,024 pixels (2,048 video bytes)",
                                                             "File size: 766 bytes", "Compression ratio: 149.61%"};
    QTest::newRow("no area") << 0 << 0 << 24 << 5000.0 << 24
                             << QStringList{"Type: T", "Colors: 16M (24-bit)", "Area: 0 pixels (0 video bytes)",
                                            "File size: 5,000 bytes", "Compression ratio: "};
    QTest::newRow("huge bitmap") << 65536 << 32768 << 8 << 2147484726.0 << 24
                                 << QStringList{"Type: T", "Colors: 256 (8-bit)", "Area: 2,147,483,648 pixels (6,442,450,944 video bytes)",
                                                "File size: 2,147,484,726 bytes", "Compression ratio: 100.00%"};
  }

  void facts() {
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bits);
    QFETCH(double, fileSize);
    QFETCH(int, screenBits);
    ImageHeader h;
    h.typeText = QStringLiteral("T");
    h.width = width;
    h.height = height;
    h.bits = qint16(bits);
    h.colorsText = modImgInfo::ColorsText(bits);
    QFETCH(QStringList, lines);
    QCOMPARE(modImgInfo::FactsLines(h, fileSize, screenBits), lines);
  }

  void previewSize_data() {
    QTest::addColumn<int>("w");
    QTest::addColumn<int>("h");
    QTest::addColumn<bool>("zoomed");
    QTest::addColumn<int>("sw");
    QTest::addColumn<int>("sh");
    QTest::addColumn<QString>("text");
    QTest::newRow("own size") << 32 << 32 << false << 32 << 32 << "Size: 32 x 32";
    QTest::newRow("reduced") << 4000 << 3000 << true << 400 << 300 << "Size: 4000 x 3000, reduced to 400 x 300 (10%)";
    QTest::newRow("zoomed") << 32 << 16 << true << 200 << 100 << "Size: 32 x 16, zoomed to 200 x 100 (625%)";
    QTest::newRow("fitted at own size") << 200 << 100 << true << 200 << 100 << "Size: 200 x 100 (100%)";
    QTest::newRow("half rounds to even") << 8 << 8 << true << 1 << 1 << "Size: 8 x 8, reduced to 1 x 1 (12%)";
    QTest::newRow("odd half rounds up") << 8 << 8 << true << 3 << 3 << "Size: 8 x 8, reduced to 3 x 3 (38%)";
  }

  void previewSize() {
    QFETCH(int, w);
    QFETCH(int, h);
    QFETCH(bool, zoomed);
    QFETCH(int, sw);
    QFETCH(int, sh);
    QFETCH(QString, text);
    QCOMPARE(modImgInfo::FormatPreviewSize(w, h, zoomed, sw, sh), text);
  }

  void fit_data() {
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("area");
    QTest::addColumn<bool>("zoom");
    QTest::addColumn<QSize>("shown");
    QTest::addColumn<bool>("scaled");
    QTest::newRow("small stays") << QSize(32, 32) << QSize(400, 300) << false << QSize(32, 32) << false;
    QTest::newRow("small zoomed") << QSize(32, 16) << QSize(400, 300) << true << QSize(400, 200) << true;
    QTest::newRow("wide reduced") << QSize(4000, 1000) << QSize(400, 300) << false << QSize(400, 100) << true;
    QTest::newRow("tall reduced") << QSize(1000, 4000) << QSize(400, 300) << false << QSize(75, 300) << true;
    QTest::newRow("exact fit zoomed") << QSize(400, 300) << QSize(400, 300) << true << QSize(400, 300) << true;
    QTest::newRow("sliver keeps a pixel") << QSize(100000, 1) << QSize(400, 300) << false << QSize(400, 1) << true;
    QTest::newRow("no area") << QSize(50, 50) << QSize(0, 0) << true << QSize(50, 50) << false;
  }

  void fit() {
    QFETCH(QSize, picture);
    QFETCH(QSize, area);
    QFETCH(bool, zoom);
    QFETCH(QSize, shown);
    QFETCH(bool, scaled);
    const modImgInfo::Fit f = modImgInfo::FitPreviewSize(picture, area, zoom);
    QCOMPARE(f.shown, shown);
    QCOMPARE(f.scaled, scaled);
  }

  void status_data() {
    QTest::addColumn<QString>("ext");
    QTest::addColumn<QString>("noPrevI");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");
    QTest::newRow("listed") << "gif" << "" << 1 << "Loading...";
    QTest::newRow("beyond the list") << "webp" << ".gif." << 1 << "Loading...";
    QTest::newRow("excluded") << "bmp" << ".gif.BMP." << 3 << "File type excluded from preview in configuration.";
    QTest::newRow("excluded beyond the list") << "png" << ".png." << 3 << "File type excluded from preview in configuration.";
    QTest::newRow("part of an excluded name") << "jpg" << ".jpgx." << 1 << "Loading...";
    QTest::newRow("unknown") << "txt" << "" << 5 << "Not a previewed format.";
    QTest::newRow("no extension") << "" << "" << 5 << "Not a previewed format.";
  }

  void status() {
    QFETCH(QString, ext);
    QFETCH(QString, noPrevI);
    QFETCH(int, code);
    QCOMPARE(modImgInfo::StatusFor(ext, noPrevI), code);
    QFETCH(QString, text);
    QCOMPARE(modImgInfo::StatusText(code), text);
    QCOMPARE(modImgInfo::StatusText(modImgInfo::kStatusCannotDecode), QStringLiteral("Cannot decode."));
  }
};

QTEST_GUILESS_MAIN(TestImageInfo)
#include "TestImageInfo.moc"
