#include <QRandomGenerator>
#include <QtTest>

#include "browser/list/ListModel.h"
#include "browser/list/ListSorter.h"
#include "browser/list/SortKeys.h"
#include "core/ListModes.h"
#include "tests/TestSupport.h"
#include "tests/browser/list/ListTestRows.h"

using browser::ListModel;
using browser::ListSorter;
using browser::RowId;
using listtest::Entry;
using listtest::Names;

namespace {

// The sort as the key texts define it: string keys, Hoare quicksort with the
// middle pivot rounded half to even, equal runs again by the secondary key.
struct Oracle {
  std::vector<QString> keys;
  bool caseInsensitive;
  bool descending;

  int cmp(const QString& a, const QString& b) const {
    const int r = a.compare(b, caseInsensitive ? Qt::CaseInsensitive : Qt::CaseSensitive);
    return descending ? -r : r;
  }
  void quick(std::vector<int>& idx, int lo, int hi) const {
    int i = lo, j = hi;
    const int s = lo + hi;
    const int mid = (s % 2 == 1 && (s / 2) % 2 == 1) ? s / 2 + 1 : s / 2;
    const QString pivot = keys[size_t(idx[size_t(mid)])];
    do {
      while (cmp(keys[size_t(idx[size_t(i)])], pivot) < 0) ++i;
      while (cmp(keys[size_t(idx[size_t(j)])], pivot) > 0) --j;
      if (i <= j) std::swap(idx[size_t(i++)], idx[size_t(j--)]);
    } while (i <= j);
    if (lo < j) quick(idx, lo, j);
    if (i < hi) quick(idx, i, hi);
  }
};

std::vector<RowId> OracleSort(const ListModel& m, std::vector<RowId> display, int primary, int secondary,
                              bool descending) {
  const int n = int(display.size());
  auto keysFor = [&](int slot) {
    std::vector<QString> keys;
    for (RowId id : display) keys.push_back(m.sortKey(id, slot));
    return keys;
  };
  std::vector<int> idx(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) idx[size_t(i)] = i;
  Oracle p{keysFor(primary), browser::IsCaseInsensitiveSlot(primary), descending};
  if (n > 1) p.quick(idx, 0, n - 1);
  if (secondary >= 0) {
    Oracle s{keysFor(secondary), browser::IsCaseInsensitiveSlot(secondary), descending};
    int k = 0;
    while (k < n) {
      int e = k;
      while (e + 1 < n && p.cmp(p.keys[size_t(idx[size_t(e)])], p.keys[size_t(idx[size_t(e + 1)])]) == 0) ++e;
      if (e > k) s.quick(idx, k, e);
      k = e + 1;
    }
  }
  std::vector<RowId> out;
  for (int i : idx) out.push_back(display[size_t(i)]);
  return out;
}

const quint64 kValues[] = {0, 1, 15, 16, 255, 0xffffffffull, 0x100000000ull, 0x100000001ull,
                           0x123456789abcdefull, 0x8000000000000005ull, 0xfedcba9876543210ull};

QString RandomName(QRandomGenerator& rng) {
  static const QString alphabet = QStringLiteral("aAbB_.~ \u00e9\u00c91\u03a9\u03c9z");
  QString s;
  // Some long names that share a head, so that keys are told apart past it.
  if (rng.bounded(3) == 0) s = rng.bounded(2) ? QStringLiteral("LongSharedHead_\u03a9x") : QStringLiteral("longsharedhead_");
  const int len = 1 + int(rng.bounded(6));
  for (int i = 0; i < len; ++i) s.append(alphabet[int(rng.bounded(quint32(alphabet.size())))]);
  return s;
}

// Rows with many equal keys in every slot.
void AddRandomRows(ListModel* m, QRandomGenerator& rng, int count, bool mixedMarks) {
  const quint16 types[] = {m->store().internType(QStringLiteral("Text"), QString()),
                           m->store().internType(QStringLiteral("text"), QStringLiteral("x")),
                           m->store().internType(QStringLiteral("Folder"), QString())};
  const QString folders[] = {QStringLiteral("/a/"), QStringLiteral("/A/"), QStringLiteral("/b/\u00e9/")};
  for (int i = 0; i < count; ++i) {
    platform::DirEntry e = Entry(RandomName(rng), kValues[rng.bounded(11)], qint64(kValues[rng.bounded(11)]),
                                 rng.bounded(3) == 0);
    e.creationTime = qint64(kValues[rng.bounded(11)]);
    e.lastAccessTime = qint64(kValues[rng.bounded(4)]);
    e.attributes |= rng.bounded(2) ? 1 : 0;
    e.attributes |= rng.bounded(2) ? 2 : 0;
    e.attributes |= rng.bounded(2) ? 64 : 0;  // not shown: must not change the order
    if (mixedMarks) m->setGrouping(rng.bounded(2));
    m->addFileRow(e, folders[rng.bounded(3)], types[rng.bounded(3)]);
  }
}

int Sign(int v) { return v < 0 ? -1 : v > 0 ? 1 : 0; }

}  // namespace

class tst_ListSort : public QObject {
  Q_OBJECT

 private Q_SLOTS:
  void initTestCase() { testsupport::PinLocale(); }

  void pivot_data() {
    QTest::addColumn<int>("low");
    QTest::addColumn<int>("high");
    QTest::addColumn<int>("pivot");
    QTest::newRow("0,1") << 0 << 1 << 0;
    QTest::newRow("0,3") << 0 << 3 << 2;
    QTest::newRow("1,2") << 1 << 2 << 2;
    QTest::newRow("1,4") << 1 << 4 << 2;
    QTest::newRow("2,3") << 2 << 3 << 2;
    QTest::newRow("3,4") << 3 << 4 << 4;
    QTest::newRow("0,4") << 0 << 4 << 2;
    QTest::newRow("5,5") << 5 << 5 << 5;
  }
  void pivot() {
    QFETCH(int, low);
    QFETCH(int, high);
    QTEST(int(ListSorter::Pivot(low, high)), "pivot");
  }

  // Header clicks on made-up rows ("name@time", a folder's name ends in "/"):
  // the direction and the order after each click, worked out by hand from the
  // quicksort (a stable sort would differ). "=" sorts keeping the direction.
  void headerClicks_data() {
    QTest::addColumn<bool>("grouping");
    QTest::addColumn<QString>("rows");
    QTest::addColumn<QString>("clicks");
    QTest::addColumn<QString>("orders");
    QTest::newRow("equal keys, four") << false << "B,a,A,b" << "=0,0" << "+A,a,b,B|-B,b,a,A";
    QTest::newRow("equal keys, five") << false << "C,a,c,A,b" << "=0,0" << "+A,a,b,C,c|-c,C,b,a,A";
    QTest::newRow("times start descending, ties by name") << false << "p@2,q@1,r@2,s@3" << "5,5,2"
                                                          << "-s,r,p,q|+q,p,r,s|+p,q,r,s";
    QTest::newRow("grouped times: folders 9, files 8") << true << "F1/@1,f@5,g@0,F0/@9" << "5,5,0"
                                                       << "-F0,F1,f,g|+g,f,F1,F0|+F0,F1,f,g";
    QTest::newRow("extensions in code order") << true << "a.b,c.B,d.a,e" << "1" << "+e,c.B,d.a,a.b";
    QTest::newRow("one row") << true << "only" << "3,3" << "+only|-only";
  }
  void headerClicks() {
    QFETCH(bool, grouping);
    QFETCH(QString, rows);
    QFETCH(QString, clicks);
    ListModel m;
    m.sort(0, false);
    QCOMPARE(m.sortOrder(), quint32(0));  // nothing happens on an empty list
    m.setGrouping(grouping);
    const quint16 t = m.store().internType(QStringLiteral("t"), QString());
    for (const QString& row : rows.split(u',')) {
      const QString name = row.section(u'@', 0, 0);
      const bool folder = name.endsWith(u'/');
      m.addFileRow(Entry(folder ? name.chopped(1) : name, 0, row.section(u'@', 1).toLongLong(), folder), "/", t);
    }
    QStringList orders;
    for (const QString& click : clicks.split(u',')) {
      m.sort(click.mid(click.startsWith(u'=') ? 1 : 0).toInt(), click.startsWith(u'='));
      orders << (m.sortDescending() ? u'-' : u'+') + Names(m);
    }
    QTEST(orders.join(u'|'), "orders");
  }

  void findModeNameTiesByPath() {
    ListModel m;
    m.setMode(core::kModeFind, core::DefaultModeRecord(core::kModeFind));
    const quint16 t = m.store().internType(QStringLiteral("t"), QString());
    m.addFileRow(Entry("same"), "/z/", t);
    m.addFileRow(Entry("Same"), "/a/", t);
    m.addFileRow(Entry("same"), "/M/", t);
    m.sort(0, true);
    QStringList paths;
    for (int i = 0; i < m.rowCount(); ++i) paths.append(m.path(m.rowAt(i)));
    QCOMPARE(paths.join(u','), QStringLiteral("/a/Same,/M/same,/z/same"));
  }

  void stampKeys_data() {
    QTest::addColumn<quint64>("value");
    QTest::addColumn<bool>("grouping");
    QTest::addColumn<bool>("folder");
    QTest::addColumn<QString>("key");
    QTest::newRow("zero") << quint64(0) << false << false << "       0       0";
    QTest::newRow("file") << quint64(0x1ABCDEF02ull) << true << false << "8       1ABCDEF02";
    QTest::newRow("folder") << quint64(255) << true << true << "9       0      FF";
    QTest::newRow("high bit") << quint64(0x8000000000000000ull) << false << false << "80000000       0";
  }
  void stampKeys() {
    QFETCH(quint64, value);
    QFETCH(bool, grouping);
    QFETCH(bool, folder);
    QTEST(browser::StampKey(value, grouping, folder), "key");
  }

  // Every typed comparison has the sign the key texts give.
  void typedComparisonsMatchKeyTexts_data() {
    QTest::addColumn<bool>("grouping");
    QTest::addColumn<bool>("mixed");
    QTest::newRow("grouped") << true << false;
    QTest::newRow("not grouped") << false << false;
    QTest::newRow("mixed marks") << false << true;
  }
  void typedComparisonsMatchKeyTexts() {
    QFETCH(bool, grouping);
    QFETCH(bool, mixed);
    ListModel m;
    m.setMode(core::kModeFind, core::DefaultModeRecord(core::kModeFind));
    m.setGrouping(grouping);
    QRandomGenerator rng(7);
    AddRandomRows(&m, rng, 120, mixed);
    for (int slot = 0; slot <= 8; ++slot) {
      const bool ci = browser::IsCaseInsensitiveSlot(slot);
      for (int a = 0; a < m.rowCount(); ++a) {
        for (int b = 0; b < m.rowCount(); b += 7) {
          const RowId ra = m.rowAt(a), rb = m.rowAt(b);
          const int expected = Sign(m.sortKey(ra, slot).compare(m.sortKey(rb, slot),
                                                                ci ? Qt::CaseInsensitive : Qt::CaseSensitive));
          const int got = ListSorter::Compare(m.store(), ra, rb, slot);
          if (got != expected)
            QFAIL(qPrintable(QStringLiteral("slot %1: '%2' vs '%3'").arg(slot).arg(m.sortKey(ra, slot),
                                                                                   m.sortKey(rb, slot))));
        }
      }
    }
  }

  // Whole sorts, every column and direction, against the sort of the key texts.
  void sortsMatchKeyTextSort_data() {
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("grouping");
    QTest::addColumn<bool>("mixed");
    QTest::addColumn<int>("rows");
    QTest::newRow("browse grouped") << int(core::kModeBrowse) << true << false << 400;
    QTest::newRow("browse plain") << int(core::kModeBrowse) << false << false << 400;
    QTest::newRow("find grouped") << int(core::kModeFind) << true << false << 400;
    QTest::newRow("find mixed marks") << int(core::kModeFind) << false << true << 150;
  }
  void sortsMatchKeyTextSort() {
    QFETCH(int, mode);
    QFETCH(bool, grouping);
    QFETCH(bool, mixed);
    QFETCH(int, rows);
    ListModel m;
    m.setMode(mode, core::DefaultModeRecord(mode));
    m.setGrouping(grouping);
    QRandomGenerator rng(11 + quint32(mode));
    AddRandomRows(&m, rng, rows, mixed);
    for (int column = 0; column < m.columns().count(); ++column) {
      for (bool descending : {false, true}) {
        const std::vector<RowId> before = m.displayArray();
        const int primary = m.columns().column(column).dataIndex;
        const int secondary = column != 0 ? 0 : (mode == core::kModeFind ? 8 : -1);
        const std::vector<RowId> expected = OracleSort(m, before, primary, secondary, descending);
        m.setSortOrder(quint32(column) | (descending ? 0x80000000u : 0u));
        m.sortAgain();
        QVERIFY2(m.displayArray() == expected, qPrintable(QStringLiteral("column %1").arg(column)));
      }
    }
  }

  void textRowsSortByTheirKeys() {
    ListModel m;
    m.setMode(core::kModeDrives, core::DefaultModeRecord(core::kModeDrives));
    auto add = [&](const QString& name, const QString& type, const QString& total) {
      browser::TextRowData d;
      d.texts = QStringList(14);
      d.keys = QStringList(14);
      d.texts[0] = d.keys[0] = name;
      d.texts[3] = d.keys[3] = type;
      d.keys[9] = total;
      m.addTextRow(d);
    };
    add("/b/", "Local Disk", "       0     100");
    add("/A/", "local disk", "       0      FF");
    add("/c/", "RAM Disk", "       0      20");
    m.sort(0, true);
    QCOMPARE(Names(m), QStringLiteral("/A/,/b/,/c/"));
    m.sort(2, false);  // Total Size ascending
    QCOMPARE(Names(m), QStringLiteral("/c/,/A/,/b/"));
    m.sort(1, false);  // Type, case-blind; ties by name
    QCOMPARE(Names(m), QStringLiteral("/A/,/b/,/c/"));
  }

  void sortingStatusAfterLargeFills_data() {
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("shown");
    QTest::newRow("3000") << 3000 << 0;
    QTest::newRow("3001") << 3001 << 1;
  }
  void sortingStatusAfterLargeFills() {
    QFETCH(int, rows);
    ListModel m;
    QStringList statuses;
    m.setStatusHook([&](const QString& s) { statuses.append(s); });
    m.beginFill();
    QStringList names;
    for (int i = 0; i < rows; ++i) names.append(QString::number(rows - i));
    listtest::AddNames(&m, names);
    m.endFill();
    m.sortAgain();
    m.sortAgain();  // only the sort right after the fill
    QTEST(int(statuses.size()), "shown");
    if (!statuses.isEmpty()) QCOMPARE(statuses.first(), QStringLiteral("Sorting..."));
  }

  // Equal keys split evenly; sorted and reversed input must not go deep either.
  void largeInputsDoNotOverflow_data() {
    QTest::addColumn<int>("pattern");
    QTest::newRow("all equal") << 0;
    QTest::newRow("ascending") << 1;
    QTest::newRow("descending") << 2;
    QTest::newRow("two values") << 3;
  }
  void largeInputsDoNotOverflow() {
    QFETCH(int, pattern);
    ListModel m;
    m.setGrouping(false);
    const int n = 200000;
    const quint16 t = m.store().internType(QStringLiteral("t"), QString());
    for (int i = 0; i < n; ++i) {
      const quint64 v = pattern == 0 ? 7 : pattern == 1 ? quint64(i) : pattern == 2 ? quint64(n - i) : quint64(i % 2);
      m.addFileRow(Entry(pattern == 0 ? QStringLiteral("same") : QString::number(i), v), "/", t);
    }
    m.setSortOrder(core::kSlotSize);
    m.sortAgain();
    for (int i = 1; i < n; ++i) QVERIFY(m.sizeOf(m.rowAt(i - 1)) <= m.sizeOf(m.rowAt(i)));
  }
};

QTEST_GUILESS_MAIN(tst_ListSort)
#include "tst_ListSort.moc"
