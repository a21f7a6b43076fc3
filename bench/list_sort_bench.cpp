// Sorting and memory of a 1,000,000-row list, beside `sort -f` on the same names.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "browser/list/ListModel.h"
#include "core/ListModes.h"

namespace {

constexpr int kRows = 1'000'000;

const char* const kWords[] = {"alpha", "beta",  "gamma",   "delta",  "report", "draft",  "final",   "notes",
                              "image", "photo", "scan",    "backup", "data",   "log",    "config",  "readme",
                              "setup", "build", "test",    "main",   "util",   "core",   "list",    "find",
                              "view",  "tree",  "Invoice", "Letter", "Budget", "Summary", "Project", "Archive",
                              "Music", "Video", "Track",   "Album"};
const char* const kExts[] = {"txt", "cpp", "h", "jpg", "png", "pdf", "doc", "exe", "log", "md", "TXT", ""};

// Names like a real disk's: words, separators, numbers, extensions; seeded.
QStringList MakeNames(int count, quint32 seed) {
  QRandomGenerator rng(seed);
  QStringList names;
  names.reserve(count);
  const char seps[] = {'_', '-', ' ', '\0'};
  for (int i = 0; i < count; ++i) {
    QString n;
    const int parts = 1 + int(rng.bounded(3));
    const char sep = seps[rng.bounded(4)];
    for (int p = 0; p < parts; ++p) {
      if (p && sep) n.append(QLatin1Char(sep));
      n.append(QLatin1String(kWords[rng.bounded(int(std::size(kWords)))]));
    }
    if (rng.bounded(10) < 7) n.append(QString::number(rng.bounded(1000000)));
    const char* ext = kExts[rng.bounded(int(std::size(kExts)))];
    if (*ext) n.append(u'.').append(QLatin1String(ext));
    names.append(n);
  }
  return names;
}

const QStringList& Names() {
  static const QStringList names = MakeNames(kRows, 1);
  return names;
}

void Fill(browser::ListModel* m, bool grouping) {
  m->setGrouping(grouping);
  m->beginFill();
  QRandomGenerator rng(2);
  const quint16 type = m->store().internType(QStringLiteral("file"), QString());
  platform::DirEntry e;
  for (const QString& name : Names()) {
    e.name = name;
    e.size = rng.bounded(1u << 30);
    e.lastWriteTime = qint64(130'000'000'000'000'000LL + qint64(rng.bounded(1u << 31)) * 1000);
    e.creationTime = e.lastAccessTime = e.lastWriteTime;
    e.attributes = rng.bounded(50) == 0 ? platform::kAttrDirectory : platform::kAttrArchive;
    m->addFileRow(e, QStringLiteral("/corpus/"), type);
  }
  m->endFill();
}

void SortColumn(benchmark::State& state, int column, bool grouping) {
  browser::ListModel m;
  Fill(&m, grouping);
  for (auto _ : state) {
    state.PauseTiming();
    m.originalOrder();
    state.ResumeTiming();
    m.setSortOrder(quint32(column));
    m.sortAgain();
    benchmark::DoNotOptimize(m.rowAt(0));
  }
  state.counters["rows"] = kRows;
}

void BM_SortName(benchmark::State& s) { SortColumn(s, core::kSlotName, false); }
void BM_SortNameGrouped(benchmark::State& s) { SortColumn(s, core::kSlotName, true); }
void BM_SortModified(benchmark::State& s) { SortColumn(s, core::kSlotModified, true); }
void BM_SortExt(benchmark::State& s) { SortColumn(s, core::kSlotExt, true); }

void BM_Reverse(benchmark::State& state) {
  browser::ListModel m;
  Fill(&m, true);
  m.sortAgain();
  for (auto _ : state) {
    m.sort(m.sortColumn(), false);  // the same header again: reverse
    benchmark::DoNotOptimize(m.rowAt(0));
  }
}

// `sort -f` over the same names, one per line, in the C locale and in the
// user's (UTF-8) locale; the time of the whole command.
void SortF(benchmark::State& state, const char* locale) {
  static QTemporaryDir dir;
  const QString file = dir.filePath(QStringLiteral("names.txt"));
  if (!QFile::exists(file)) {
    std::ofstream out(file.toStdString());
    for (const QString& n : Names()) out << n.toStdString() << '\n';
  }
  const std::string command =
      std::string("LC_ALL=") + locale + " sort -f '" + file.toStdString() + "' > /dev/null";
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0) state.SkipWithError("sort failed");
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
}
void BM_SortF_C(benchmark::State& s) { SortF(s, "C"); }
void BM_SortF_UTF8(benchmark::State& s) { SortF(s, "en_US.UTF-8"); }

long RssKb() {
  std::ifstream status("/proc/self/status");
  std::string key;
  long value = 0;
  while (status >> key) {
    if (key == "VmRSS:") {
      status >> value;
      return value;
    }
  }
  return 0;
}

// Bytes per row: what the rows hold by count, and what the process grew by.
void BM_BytesPerRow(benchmark::State& state) {
  (void)Names();
  for (auto _ : state) {
    const long before = RssKb();
    auto* m = new browser::ListModel;
    Fill(m, true);
    const long after = RssKb();
    state.counters["held_per_row"] = double(m->memoryBytes()) / kRows;
    state.counters["rss_per_row"] = double(after - before) * 1024 / kRows;
    delete m;
  }
}

}  // namespace

BENCHMARK(BM_SortName)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SortNameGrouped)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SortModified)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SortExt)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Reverse)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_SortF_C)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(BM_SortF_UTF8)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(BM_BytesPerRow)->Unit(benchmark::kMillisecond)->Iterations(1);

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
