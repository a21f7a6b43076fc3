// Media preview timing: from the selection's preview call to the first
// sound (the position moves) or the first video frame, median of five runs
// per file; and the CPU time one progress-timer tick costs while playing,
// as a share of one core at the timer's 20 ticks a second.
//
//   media_latency_bench FILE...
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QVideoFrame>
#include <QVideoSink>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

#include "preview/MciDevice.h"
#include "preview/modMCIsnd.h"

namespace {

double CpuMs() {
  timespec ts{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  preview::MciDevice::UseGStreamerBackend();
  QCoreApplication app(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: media_latency_bench FILE...\n");
    return 2;
  }
  preview::MciDevice device;
  QVideoSink sink;
  device.SetVideoWindow(QStringLiteral("1"), &sink, nullptr);
  modMCIsnd::MediaSession session(&device);
  modMCIsnd::MediaHost host;
  host.visible = [] { return true; };
  host.windowHandle = [] { return QStringLiteral("1"); };
  host.size = [] { return QSize(320, 240); };
  session.setHost(host);
  bool frame = false;
  QObject::connect(&sink, &QVideoSink::videoFrameChanged, [&](const QVideoFrame& f) { frame = frame || f.isValid(); });

  for (int i = 1; i < argc; ++i) {
    const QString file = QString::fromLocal8Bit(argv[i]);
    std::vector<double> runs;
    bool video = false;
    for (int r = 0; r < 5; ++r) {
      frame = false;
      QElapsedTimer t;
      t.start();
      if (!session.PreviewMedia(file) || session.mediaClass() == 0) break;
      video = session.mediaClass() == modMCIsnd::kVideo;
      while (t.elapsed() < 5000 && !(video ? frame : session.MediaPosition() > 0))
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
      runs.push_back(double(t.nsecsElapsed()) / 1e6);
      session.StopMedia(false);
    }
    if (runs.empty()) {
      std::printf("%s: cannot be played\n", argv[i]);
      continue;
    }
    std::sort(runs.begin(), runs.end());
    std::printf("%-40s first %s: median %.1f ms (min %.1f, max %.1f)\n", argv[i],
                video ? "frame" : "sound", runs[runs.size() / 2], runs.front(),
                runs.back());
  }

  // One tick's cost while the first file plays.
  session.PreviewMedia(QString::fromLocal8Bit(argv[1]));
  const int ticks = 2000;
  const double cpu0 = CpuMs();
  for (int i = 0; i < ticks; ++i) session.Tick();
  const double perTick = (CpuMs() - cpu0) / ticks;
  std::printf("progress tick: %.4f ms CPU each, %.3f %% of one core at 20 ticks/s\n", perTick, perTick * 20 / 10);
  session.StopMedia(false);
  return 0;
}
