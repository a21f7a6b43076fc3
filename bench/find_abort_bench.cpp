// How fast a find stops after Escape: the abort flag is set from a timer
// thread while a find runs, and the time from setting it to the end of the
// find (summary shown) is measured. Two cases: during a walk over a folder
// tree, and inside the contained-text read of a 2 GB file.
//
//   find_abort_bench CORPUS_DIR [SCRATCH_DIR [THREADS]]
//
// THREADS is the find's thread setting (0, the default: one per core).
#include <QCoreApplication>
#include <QDir>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

#include "core/JobFlags.h"
#include "find/FindJob.h"

namespace {

using Clock = std::chrono::steady_clock;

class CountingSink : public find::FindSink {
 public:
  void addRow(const platform::DirEntry&, const QString&, const QString&) override { ++rows; }
  qsizetype rowCount() const override { return rows; }
  qsizetype rows = 0;
};

// Runs the find, sets the flag after `delayMs`; returns the stop latency in ms
// (negative if the find ended before the flag was set).
double StopLatency(find::FindCriteria criteria, int delayMs, qsizetype* rows) {
  CountingSink sink;
  Clock::time_point setAt{};
  std::thread timer([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    setAt = Clock::now();
    core::JobFlags::RequestAbort();
  });
  find::FindJob::Run(criteria, sink, false);
  const Clock::time_point ended = Clock::now();
  timer.join();
  *rows = sink.rows;
  return std::chrono::duration<double, std::milli>(ended - setAt).count();
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: find_abort_bench CORPUS_DIR [SCRATCH_DIR [THREADS]]\n");
    return 2;
  }
  const QString corpus = QDir(QString::fromLocal8Bit(argv[1])).absolutePath() + u'/';
  const QString scratch = QDir(QString::fromLocal8Bit(argc > 2 ? argv[2] : "/tmp")).absolutePath() +
                          QStringLiteral("/quorvane-abort-bench/");
  const int threads = argc > 3 ? std::atoi(argv[3]) : 0;

  double worst = 0;
  for (int delay : {50, 120, 200, 300}) {
    find::FindCriteria c;
    c.locations = {corpus};
    c.patterns = {QStringLiteral("*.*")};
    c.includeSubfolders = true;
    c.threads = threads;
    qsizetype rows = 0;
    const double ms = StopLatency(c, delay, &rows);
    worst = std::max(worst, ms);
    std::printf("walk: Escape after %3d ms: stopped %.3f ms later (%lld rows kept)\n", delay, ms,
                static_cast<long long>(rows));
  }
  for (int delay : {50, 200}) {
    find::FindCriteria c;
    c.locations = {corpus};
    c.patterns = {QStringLiteral("*.*")};
    c.includeSubfolders = true;
    c.textOn = true;
    c.text = "not in there";
    c.search.SetText(c.text);
    c.threads = threads;
    qsizetype rows = 0;
    const double ms = StopLatency(c, delay, &rows);
    worst = std::max(worst, ms);
    std::printf("text walk: Escape after %3d ms: stopped %.3f ms later (%lld rows kept)\n", delay, ms,
                static_cast<long long>(rows));
  }

  // A 2 GB file of text (written once, then read from the page cache).
  QDir().mkpath(scratch);
  const QByteArray big = (scratch + QStringLiteral("big.bin")).toLocal8Bit();
  const int fd = open(big.constData(), O_CREAT | O_TRUNC | O_WRONLY, 0644);
  QByteArray chunk;
  while (chunk.size() < (1 << 20)) chunk.append("lines of text to search through, none holding the text\n");
  chunk.truncate(1 << 20);
  for (int i = 0; fd >= 0 && i < 2048; ++i)
    if (write(fd, chunk.constData(), size_t(chunk.size())) != chunk.size()) {
      std::perror("big file");
      return 1;
    }
  if (fd < 0) {
    std::perror("big file");
    return 1;
  }
  close(fd);
  {
    find::FindCriteria c;
    c.locations = {scratch};
    c.patterns = {QStringLiteral("big.bin")};
    c.textOn = true;
    c.text = "not in there";
    c.search.SetText(c.text);
    CountingSink sink;
    const Clock::time_point t0 = Clock::now();
    find::FindJob::Run(c, sink, false);
    std::printf("2 GB file: a whole search takes %.0f ms\n",
                std::chrono::duration<double, std::milli>(Clock::now() - t0).count());
  }
  double worstFile = 0;
  for (int delay : {20, 60, 100}) {
    find::FindCriteria c;
    c.locations = {scratch};
    c.patterns = {QStringLiteral("big.bin")};
    c.textOn = true;
    c.text = "not in there";
    c.search.SetText(c.text);
    c.threads = threads;
    qsizetype rows = 0;
    const double ms = StopLatency(c, delay, &rows);
    worstFile = std::max(worstFile, ms);
    std::printf("2 GB file: Escape after %3d ms: stopped %.3f ms later\n", delay, ms);
  }
  unlink(big.constData());
  QDir(scratch).removeRecursively();
  std::printf("worst stop latency: walk %.3f ms, 2 GB file %.3f ms (limit 100 ms)\n", worst, worstFile);
  return worst < 100 && worstFile < 100 ? 0 : 1;
}
