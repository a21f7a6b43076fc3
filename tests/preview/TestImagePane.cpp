// The "Preview" tab in the window: selecting a picture shows its facts and
// the picture fitted to the area, with the status label telling the rest; a
// burst of selections decodes only the last picture.
#include <QBuffer>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QTemporaryDir>
#include <QtTest>

#include "browser/CTabCtrl.h"
#include "browser/frmMain.h"
#include "browser/list/CRellList.h"
#include "preview/ImagePane.h"
#include "preview/PictureView.h"
#include "preview/PreviewTab.h"
#include "preview/modImgInfo.h"
#include "tests/TestSupport.h"
#include "tests/preview/ImageFixtures.h"

namespace {

QByteArray Png(int w, int h, QColor colour) {
  QImage image(w, h, QImage::Format_ARGB32);
  image.fill(colour);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes;
}

// A one-image icon of 48 x 48 pixels, transparent but for a red square in the middle.
QByteArray Icon() {
  QImage image(48, 48, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  for (int y = 16; y < 32; ++y)
    for (int x = 16; x < 32; ++x) image.setPixelColor(x, y, Qt::red);
  QByteArray png;
  QBuffer buffer(&png);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  QByteArray b;
  imagefixtures::Le16(b, 0);
  imagefixtures::Le16(b, 1);
  imagefixtures::Le16(b, 1);
  b.append(char(48)).append(char(48)).append('\0').append('\0');
  imagefixtures::Le16(b, 1);
  imagefixtures::Le16(b, 32);
  imagefixtures::Le32(b, png.size());
  imagefixtures::Le32(b, 22);
  return b + png;
}

}  // namespace

class TestImagePane : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void select_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QSize>("picture");  // the picture's own size; invalid: none shown
    QTest::newRow("icon over the grid") << "icon.ico" << Icon() << 0 << "Type: Icon file" << QSize(48, 48);
    QTest::newRow("photo fitted") << "photo.png" << Png(3000, 1000, Qt::blue) << 0 << "Type: PNG file" << QSize(3000, 1000);
    QTest::newRow("decoder's facts come with the picture")
        << "logo.svg"
        << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='100' height='50'><rect width='100' height='50' fill='blue'/></svg>")
        << 0 << "Type: SVG file" << QSize(100, 50);
    QTest::newRow("excluded") << "plain.bmp" << imagefixtures::BmpHeader(2, 2, 24) << 3 << "" << QSize();
    QTest::newRow("not previewed") << "notes.txt" << QByteArray("text") << 5 << "" << QSize();
    QTest::newRow("cannot decode") << "broken.png" << QByteArray("not a picture") << 2
                                   << "Type: Unrecognized image header" << QSize();
  }

  void select() {
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    QFETCH(QString, type);
    QFETCH(QSize, picture);
    const QString folder = dir_.filePath(QStringLiteral("pictures"));
    const QString path = folder + u'/' + name;
    QVERIFY(testsupport::MakeFile(path, bytes));

    browser::frmMain w(browser::frmMain::StartOptions{dir_.filePath(QStringLiteral("q.ini")), folder, false});
    w.Load();
    w.settings().settings.noPrevI = QStringLiteral(".bmp.");
    w.settings().settings.grid = true;
    w.resize(900, 700);
    w.show();
    w.tabs()->setCurrentIndex(browser::CTabCtrl::kTabPreview);
    auto* tab = w.findChild<preview::PreviewTab*>();
    auto* pane = w.findChild<preview::ImagePane*>();
    QVERIFY(tab && pane);
    QSignalSpy shown(pane, &preview::ImagePane::PictureShown);
    QSignalSpy statuses(pane, &preview::ImagePane::StatusChanged);
    Q_EMIT w.list()->FileSelected(path, false);

    QTRY_VERIFY(!statuses.isEmpty() && tab->statusCode() != modImgInfo::kStatusLoading);
    QCOMPARE(tab->statusCode(), status);
    QCOMPARE(tab->lblPrevStatus->isVisibleTo(tab), status != 0);
    QCOMPARE(tab->lblPrevStatus->text(), modImgInfo::StatusText(status));
    QCOMPARE(pane->lblPrevType->text(), type);
    if (!picture.isValid()) {
      QVERIFY(pane->picPreview->picture().isNull());
      return;
    }
    QCOMPARE(statuses.first().first().toInt(), int(modImgInfo::kStatusLoading));
    QVERIFY(!shown.isEmpty());
    // The layout may settle after the first decode; a new area decodes again.
    QTest::qWait(50);
    QTRY_VERIFY(!pane->decoding() && !pane->tmrPrevDelay->isActive());
    // Shown fitted to the area the view offers, and said so in the size line.
    const modImgInfo::Fit fit = modImgInfo::FitPreviewSize(picture, pane->picPreview->fitArea(), false);
    QCOMPARE(pane->picPreview->picture().size(), fit.shown);
    QCOMPARE(pane->picPreview->pictureRect().size(), fit.shown);
    QCOMPARE(pane->lblPrevSize->text(), modImgInfo::FormatPreviewSize(picture.width(), picture.height(), fit.scaled,
                                                                      fit.shown.width(), fit.shown.height()));
    QCOMPARE(fit.scaled, picture.width() > 1000);
    // Transparent parts show the grid; the picture's own pixels stay.
    const QImage drawn = pane->picPreview->shownImage();
    QVERIFY(qAlpha(drawn.pixel(1, 1)) == 255);
    QCOMPARE(drawn.pixelColor(drawn.width() / 2, drawn.height() / 2), picture.width() == 48 ? QColor(Qt::red) : QColor(Qt::blue));
  }

  // Selections faster than the delay: only the last picture is decoded.
  void burstDecodesTheLast() {
    core::AppSettings::Options options;
    preview::ImagePane pane(&options);
    pane.resize(500, 300);
    pane.show();
    QStringList files;
    for (int i = 0; i < 30; ++i) {
      files << dir_.filePath(QStringLiteral("burst/%1.png").arg(i, 2, 10, QChar(u'0')));
      QVERIFY(testsupport::MakeFile(files.last(), Png(800, 600, QColor(i * 8, 0, 0))));
    }
    QSignalSpy shown(&pane, &preview::ImagePane::PictureShown);
    for (const QString& f : files) {
      pane.ShowImagePreview(f);
      QCoreApplication::processEvents();
    }
    QTRY_COMPARE(shown.size(), 1);
    QTest::qWait(3 * preview::ImagePane::kDelayMs);
    QCOMPARE(shown.size(), 1);
    QCOMPARE(pane.decodeCount(), 1);
    QCOMPARE(pane.file(), files.last());
    QCOMPARE(pane.picPreview->picture().pixelColor(0, 0).red(), 29 * 8);

    // The whole screen, or a word that it cannot be had here.
    QSignalSpy statuses(&pane, &preview::ImagePane::StatusChanged);
    pane.cmdSnapShot->click();
    QCOMPARE(statuses.size(), 1);
    const bool captured = statuses.first().first().toInt() == 0;
    QCOMPARE(!pane.picPreview->picture().isNull(), captured);
    if (!captured) QCOMPARE(statuses.first().at(1).toString(), QStringLiteral("The screen cannot be captured here."));
  }
};

QTEST_MAIN(TestImagePane)
#include "TestImagePane.moc"
