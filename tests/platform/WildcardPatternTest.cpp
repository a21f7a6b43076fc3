#include <QTest>

#include "platform/NativePath.h"
#include "platform/WildcardPattern.h"

using platform::WildcardPattern;

class WildcardPatternTest : public QObject {
  Q_OBJECT
 private Q_SLOTS:
  void matches_data() {
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("expected");
    const struct {
      const char* pattern;
      const char* name;
      bool expected;
    } rows[] = {
        {"*.*", "readme", true},         {"*.*", "a.b.c", true},          {"*", "noext", true},
        {"*.*", ".hidden", true},        {"*.txt", "notes.TXT", true},    {"*.txt", "notes.txt.bak", false},
        {"*.txt", "a.b.txt", true},      {"*.txt", "txt", false},         {"*.txt", ".txt", true},
        {"*.", "noext", true},           {"*.", "has.ext", false},        {"a*.", "abc", true},
        {"file?", "file", true},         {"file?", "file1", true},        {"file?", "file12", false},
        {"a??", "a", true},              {"?", "ab", false},                {"a?.txt", "a.txt", true},
        {"a?.txt", "ab.txt", true},      {"a?.txt", "abc.txt", false},    {"abc.*", "abc", true},
        {"abc.*", "abc.def", true},      {"abc.*", "abcdef", false},      {"README", "readme", true},
        {"README", "readme2", false},    {"*mid*", "amidb", true},        {"*mid*", "mi", false},
        {"*.tar.gz", "x.tar.gz", true},  {"*.tar.gz", "x.gz", false},     {"*a*a*a*b", "aaaaaaaaaaaaaaaab", true},
        {"*a*a*a*b", "aaaaaaaaaaaaaaaaa", false}, {"MÜLLER*", "müller.doc", true}, {"*.Txt", "Ä.txt", true},
        {"[ab]*", "[ab]c", true},        {"[ab]*", "ac", false},
    };
    for (const auto& r : rows)
      QTest::addRow("%s vs %s", r.pattern, r.name) << QString::fromUtf8(r.pattern) << QString::fromUtf8(r.name)
                                                   << r.expected;
  }

  void matches() {
    QFETCH(QString, pattern);
    QFETCH(QString, name);
    QFETCH(bool, expected);
    QCOMPARE(WildcardPattern(pattern).matches(name), expected);
  }

  void longPatternsStayCheap() {
    const QString pattern = QString(10000, u'*') + QStringLiteral("x");
    const QString name(255, u'a');
    QVERIFY(!WildcardPattern(pattern).matches(name));
    QVERIFY(WildcardPattern(pattern).matches(name + u'x'));
  }

  void nativeRoundTrip_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("ascii") << QByteArray("plain.txt");
    QTest::newRow("utf8") << QByteArray("M\xC3\xBCller \xE2\x82\xAC \xF0\x9F\x98\x80");
    QTest::newRow("latin1 byte") << QByteArray("caf\xE9.txt");
    QTest::newRow("lone continuation") << QByteArray("\x80\xBF");
    QTest::newRow("overlong") << QByteArray("\xC0\xAF");
    QTest::newRow("encoded surrogate") << QByteArray("\xED\xA0\x80");
    QTest::newRow("truncated") << QByteArray("ab\xE2\x82");
  }

  void nativeRoundTrip() {
    QFETCH(QByteArray, bytes);
    QCOMPARE(platform::ToNative(platform::FromNative(bytes)), bytes);
  }

  void displayTextReplacesEscapes() {
    const QString name = platform::FromNative(QByteArray("caf\xE9 \xF0\x9F\x98\x80"));
    QCOMPARE(platform::DisplayText(name), QString::fromUtf8("caf\xEF\xBF\xBD \xF0\x9F\x98\x80"));
  }
};

QTEST_GUILESS_MAIN(WildcardPatternTest)
#include "WildcardPatternTest.moc"
