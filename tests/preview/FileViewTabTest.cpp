#include <QApplication>
#include <QClipboard>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QtTest>

#include "preview/FileViewArea.h"
#include "preview/FileViewDocument.h"
#include "preview/FileViewTab.h"
#include "tests/TestSupport.h"

using namespace preview;

class FileViewTabTest : public QObject {
  Q_OBJECT
  QTemporaryDir dir_;

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  // Open a file through the delay timer, scroll, select lines, copy them.
  void openScrollSelectCopy() {
    QByteArray text;
    for (int i = 1; i <= 5000; ++i) text += "line " + QByteArray::number(i) + "\r\n";
    const QString path = dir_.filePath("lines.txt");
    QVERIFY(testsupport::MakeFile(path, text));
    core::AppSettings::FileView settings;
    FileViewTab tab(&settings);
    QStringList told;
    tab.tell = [&](const QString& t, bool) { told.append(t); };
    tab.resize(600, 300);
    tab.show();
    QVERIFY(QTest::qWaitForWindowExposed(&tab));
    tab.showFile(path);
    QTRY_COMPARE(tab.document().lineCount(), 5001);
    QVERIFY2(tab.statusText().contains(QStringLiteral("ASCII-DOS file: 53,893 bytes    ASCII view: 5,001 lines")),
             qPrintable(tab.statusText()));

    auto* area = tab.area();
    auto* bar = tab.findChild<QScrollBar*>(QStringLiteral("scrollViewY"));
    QVERIFY(bar);
    bar->setValue(4000);
    QCOMPARE(area->topLine(), 4000);
    area->repaint();
    QVERIFY(area->linesFormattedLastPaint() <= area->pageLines() + 1);  // one page, not the file

    // Copy with nothing selected says so.
    tab.copySelection(0);
    QCOMPARE(told, QStringList{"Nothing to do (no selections)"});
    area->setFocus();
    QTest::mouseClick(area, Qt::LeftButton, {}, QPoint(20, area->fontMetrics().height() / 2));
    QTest::keyClick(area, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(area, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("line 4001\nline 4002\n"));
    QTest::keyClick(area, Qt::Key_End);
    QCOMPARE(area->focusLine(), 5000);

    const QString saved = dir_.filePath("saved.txt");
    QString error;
    QVERIFY(tab.saveSelection(saved, &error));
    QFile f(saved);
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), QByteArray("\n"));  // the last line is empty
    QCOMPARE(settings.hex, false);
  }
};

QTEST_MAIN(FileViewTabTest)
#include "FileViewTabTest.moc"
