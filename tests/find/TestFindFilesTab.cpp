#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include "cli/FindCommand.h"
#include "core/JobFlags.h"
#include "find/BuildCriteria.h"
#include "find/DateBox.h"
#include "find/FindFilesTab.h"
#include "platform/FileTime.h"
#include "tests/TestSupport.h"

namespace {

// Criteria as comparable text: every field the walk reads.
QString Describe(const find::FindCriteria& c) {
  QStringList s;
  s << c.locations.join(u'|') << c.patterns.join(u'|') << QString::number(c.includeSubfolders);
  s << QString::number(c.sizeOn) << QString::number(c.sizeMin) << QString::number(c.sizeMax);
  s << QString::number(c.attrOn) << QString::number(c.attrMust) << QString::number(c.attrMustNot);
  s << QString::number(c.dateOn) << QString::number(c.dateKind) << QString::number(c.dateFrom)
    << QString::number(c.dateTo) << QString::number(c.dateNot);
  s << QString::number(c.textOn) << QString::fromLatin1(c.text.toHex()) << QString::number(c.caseSensitive)
    << QString::number(c.isHex);
  s << QString::number(c.excludeOn) << c.excludes.join(u'|');
  return s.join(u';');
}

}  // namespace

class TestFindFilesTab : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir dir_;

  template <typename T>
  static T* Child(QWidget& tab, const char* name) {
    T* w = tab.findChild<T*>(QString::fromLatin1(name));
    if (!w) qFatal("no control %s", name);
    return w;
  }
  static void Check(QWidget& tab, const char* name) { Child<QCheckBox>(tab, name)->setChecked(true); }
  static void Type(QWidget& tab, const char* name, const QString& text) {
    QLineEdit* edit = Child<QLineEdit>(tab, name);
    edit->clear();
    QTest::keyClicks(edit, text);
  }

 private Q_SLOTS:
  void initTestCase() {
    testsupport::PinLocale();
    QVERIFY(dir_.isValid());
  }

  // Every control is there, by name, with its caption; the labels by text.
  void controls() {
    find::FindFilesTab tab;
    const char* captions[][2] = {
        {"chkNamed0", "Exact &match"}, {"chkNamed1", "Include &subfolders"}, {"optDate0", "&created"},
        {"optDate1", "&modified"},     {"optDate2", "&accessed"},            {"optDate3", "created &or modified"},
        {"chkRangeNot", "&Not"},       {"optSizeUnit0", "Bytes"},            {"optSizeUnit1", "KB"},
        {"optSizeUnit2", "MB"},        {"chkAttrFind0", "Read-only"},        {"chkAttrFind6", "Temporary"},
        {"chkAttrFind7", "Compressed"}, {"cmdExclude0", "<< Add"},           {"cmdExclude1", "Remove"},
        {"chkCaseSens", "&Case Sensitive"}, {"chkHex", "It's a &Hex String"}, {"chkWatch0", "Name"},
        {"chkWatch1", "Size"},         {"chkWatch2", "Date"},                {"chkWatch3", "Excl."},
        {"chkWatch4", "Attr."},        {"chkWatch5", "Text"},                {"cmdFind", "F&ind Now"},
        {"cmdFindStop", "Sto&p (Esc)"},
    };
    for (const auto& [name, caption] : captions) {
      auto* button = tab.findChild<QAbstractButton*>(QString::fromLatin1(name));
      QVERIFY2(button, name);
      QCOMPARE(button->text(), QString::fromLatin1(caption));
    }
    for (int i = 0; i < 8; ++i) QVERIFY(tab.findChild<QCheckBox*>(QStringLiteral("chkAttrFindNot%1").arg(i)));
    QStringList labels;
    for (QLabel* l : tab.findChildren<QLabel*>()) labels << l->text();
    for (const char* text : {"&Named:", "&Look in:", "between", "At &least", "At &most", "NT only:",
                             "To ignore lower or upper limit leave field empty.",
                             "Exclude folders from file find. You may also add parts of paths to the list (but no wildcards).",
                             "Type or paste parts of the contents of the file(s) you're looking for."})
      QVERIFY2(labels.contains(QString::fromUtf8(text)), text);
  }

  // The same find set up on the tab and given as options builds the same
  // criteria. Actions: "name" clicks, "name=text" types, "name+text" pastes.
  void sameCriteriaAsCommandLine_data() {
    QTest::addColumn<QString>("actions");
    QTest::addColumn<QStringList>("options");
    QTest::newRow("patterns, subfolders") << "chkWatch0|cboNamed=*.txt;*.doc|chkNamed1"
                                          << QStringList{"--named", "*.txt;*.doc", "--subfolders"};
    QTest::newRow("exact") << "chkWatch0|cboNamed=word|chkNamed0" << QStringList{"--named", "word", "--exact"};
    QTest::newRow("size") << "chkWatch1|txtSize0=1|optSizeUnit1" << QStringList{"--size-min", "1", "--size-unit", "kb"};
    QTest::newRow("date") << "chkWatch2|optDate3|txtDate0=1/1/2024|txtDate1=1/2/2024 10:00:05 AM|chkRangeNot"
                          << QStringList{"--date-kind", "created-or-modified", "--date-from", "1/1/2024",
                                         "--date-to", "1/2/2024 10:00:05 AM", "--not"};
    QTest::newRow("attributes") << "chkWatch4|chkAttrFind1|chkAttrFindNot0"
                                << QStringList{"--attr", "h", "--not-attr", "R"};
    QTest::newRow("hex text") << "chkWatch5|txtContText=4D 5A|chkHex|chkCaseSens"
                              << QStringList{"--containing", "4D 5A", "--hex", "--case"};
    QTest::newRow("text, folded") << "chkWatch5|txtContText+müller" << QStringList{"--containing", "müller"};
    QTest::newRow("excludes") << "chkWatch3|txtExclude=tmp|cmdExclude0|txtExclude=/x/|cmdExclude0"
                              << QStringList{"--exclude", "tmp", "--exclude", "/x/"};
    QTest::newRow("nothing") << "" << QStringList{};
  }
  void sameCriteriaAsCommandLine() {
    QFETCH(QString, actions);
    QFETCH(QStringList, options);

    find::FindFilesTab tab;
    core::FindTabValues blank;
    blank.watch = 0;
    blank.includeSubfolders = false;
    blank.sizeUnit = 1;
    tab.setValues(blank);
    QTest::keyClicks(Child<QComboBox>(tab, "cboLookIn")->lineEdit(), dir_.path());
    for (const QString& action : actions.split(u'|', Qt::SkipEmptyParts)) {
      const qsizetype at = action.indexOf(QRegularExpression(QStringLiteral("[=+]")));
      QWidget* w = tab.findChild<QWidget*>(action.left(at));
      QVERIFY2(w, qPrintable(action));
      const QString text = action.mid(at + 1);
      if (at < 0) {
        qobject_cast<QAbstractButton*>(w)->click();
      } else if (action[at] == u'+') {
        qobject_cast<QPlainTextEdit*>(w)->insertPlainText(text);
      } else {
        if (auto* combo = qobject_cast<QComboBox*>(w)) w = combo->lineEdit();
        if (auto* edit = qobject_cast<QLineEdit*>(w)) edit->clear();
        QTest::keyClicks(w, text);
      }
    }
    find::FindCriteria fromTab;
    find::CriteriaMessage message;
    const core::FindTabValues values = tab.values();
    QVERIFY2(find::BuildCriteria(values, {values.lookIn}, {}, &fromTab, &message), qPrintable(message.text));

    cli::ArgParser parser;
    cli::AddFindOptions(&parser);
    QVERIFY(parser.parse(options + QStringList{QStringLiteral("--in"), dir_.path()}));
    core::FindTabValues cliValues;
    QStringList cliLookIn;
    QString error;
    QVERIFY2(cli::FindValuesFromOptions(parser, &cliValues, &cliLookIn, &error), qPrintable(error));
    find::FindCriteria fromCli;
    QVERIFY2(find::BuildCriteria(cliValues, cliLookIn, {}, &fromCli, &message), qPrintable(message.text));

    QCOMPARE(Describe(fromTab), Describe(fromCli));
  }

  void badOptionValues_data() {
    QTest::addColumn<QStringList>("options");
    QTest::newRow("unit") << QStringList{"--size-unit", "gb"};
    QTest::newRow("date kind") << QStringList{"--date-kind", "born"};
    QTest::newRow("attribute letter") << QStringList{"--attr", "X"};
  }
  void badOptionValues() {
    QFETCH(QStringList, options);
    cli::ArgParser parser;
    cli::AddFindOptions(&parser);
    QVERIFY(parser.parse(options));
    core::FindTabValues values;
    QStringList lookIn;
    QString error;
    QVERIFY(!cli::FindValuesFromOptions(parser, &values, &lookIn, &error));
    QVERIFY(!error.isEmpty());
  }

  void valuesRoundTrip() {
    core::FindTabValues v;
    v.exactMatch = true;
    v.includeSubfolders = false;
    v.rangeNot = true;
    v.dateKind = 2;
    v.dateFrom = QStringLiteral("a");
    v.dateTo = QStringLiteral("b");
    v.sizeMin = QStringLiteral("1");
    v.sizeMax = QStringLiteral("2");
    v.sizeUnit = 2;
    v.attrMust = 2 | 2048;
    v.attrMustNot = 1 | 16;
    v.containedText = QStringLiteral("text");
    v.caseSensitive = true;
    v.isHex = true;
    v.watch = 63;
    v.named = QStringLiteral(" *.txt ");
    v.lookIn = QStringLiteral("/tmp");
    v.excludeInput = QStringLiteral("typed");
    v.excludes = QStringList{"x", "y"};
    find::FindFilesTab tab;
    tab.setValues(v);
    QVERIFY(tab.values() == v);
  }

  void hexSwitchesToFixedPitch() {
    find::FindFilesTab tab;
    QPlainTextEdit* text = Child<QPlainTextEdit>(tab, "txtContText");
    const QFont normal = text->font();
    Check(tab, "chkHex");
    QVERIFY(QFontInfo(text->font()).fixedPitch());
    Child<QCheckBox>(tab, "chkHex")->setChecked(false);
    QCOMPARE(text->font(), normal);
  }

  void buttons() {
    find::FindFilesTab tab;
    QListWidget* list = Child<QListWidget>(tab, "lstExclude");
    QPushButton* add = Child<QPushButton>(tab, "cmdExclude0");
    add->click();  // nothing typed: nothing added
    QCOMPARE(list->count(), 0);
    Type(tab, "txtExclude", QStringLiteral("one"));
    add->click();
    Type(tab, "txtExclude", QStringLiteral("two"));
    add->click();
    list->setCurrentRow(0);
    Child<QPushButton>(tab, "cmdExclude1")->click();
    QCOMPARE(tab.values().excludes, QStringList{QStringLiteral("two")});

    QSignalSpy find(&tab, &find::FindFilesTab::findRequested);
    QSignalSpy stop(&tab, &find::FindFilesTab::stopRequested);
    core::JobFlags::ClearAbort();
    Child<QPushButton>(tab, "cmdFind")->click();
    QCOMPARE(find.count(), 1);
    QVERIFY(!core::JobFlags::AbortRequested());
    Child<QPushButton>(tab, "cmdFindStop")->click();
    QCOMPARE(stop.count(), 1);
    QVERIFY(core::JobFlags::AbortRequested());
    core::JobFlags::ClearAbort();
  }

  void dateQuickFilters() {
    find::FindFilesTab tab;
    auto action = [&tab](const char* name) {
      QAction* a = tab.findChild<QAction*>(QString::fromLatin1(name));
      if (!a) qFatal("no action %s", name);
      return a;
    };
    QLineEdit* from = Child<QLineEdit>(tab, "txtDate0");
    QLineEdit* to = Child<QLineEdit>(tab, "txtDate1");
    QCheckBox* rangeNot = Child<QCheckBox>(tab, "chkRangeNot");
    QCOMPARE(action("menDateRange7")->text(), QStringLiteral("More than a Year &Ago"));
    action("menDateRange7")->trigger();
    QVERIFY(rangeNot->isChecked());
    qint64 a = 0, b = 0;
    QVERIFY(find::ParseDateBox(from->text(), &a) && find::ParseDateBox(to->text(), &b));
    QVERIFY(b - a >= 365LL * 86400 * platform::kTicksPerSecond);
    action("menDateRange0")->trigger();
    QVERIFY(!rangeNot->isChecked());
    action("menDateUnknown")->trigger();
    QCOMPARE(from->text(), QStringLiteral("(unknown)"));
    QCOMPARE(to->text(), QStringLiteral("(unknown)"));
    QVERIFY(!action("menDateLike")->isEnabled());  // no list entry yet

    const qint64 written = platform::kUnixEpochTicks + 1'700'000'000LL * platform::kTicksPerSecond;
    tab.setCurrentEntry(QStringLiteral("x.txt"), 0, written, 0);
    tab.findChild<QMenu*>(QStringLiteral("menDate"))->aboutToShow();
    QCOMPARE(action("menDateLike")->text(), QStringLiteral("Like '11/14/2023 10:13:20 PM'"));
    QCOMPARE(action("menDateSimilar")->text(), QStringLiteral("Similar to '11/14/2023 10:13:20 PM' (+- 10 minutes)"));
    action("menDateSimilar")->trigger();
    QCOMPARE(from->text(), QStringLiteral("11/14/2023 10:03:20 PM"));
    QCOMPARE(to->text(), QStringLiteral("11/14/2023 10:23:20 PM"));
  }
};

QTEST_MAIN(TestFindFilesTab)
#include "TestFindFilesTab.moc"
