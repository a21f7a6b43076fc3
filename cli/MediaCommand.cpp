// quorvane media: the format and length texts of a media file as the
// "Preview" tab shows them; with --play it plays to the end on the default
// audio output, the position on standard error about every second.
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QTimer>
#include <QVideoSink>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/RowEscape.h"
#include "platform/NativePath.h"
#include "preview/MciDevice.h"
#include "preview/modMCIsnd.h"

namespace cli {

namespace {

QString PreviewStatusText(int code) {
  switch (code) {
    case modMCIsnd::kStatusCannotDecode: return QStringLiteral("Cannot decode.");
    case modMCIsnd::kStatusExcluded: return QStringLiteral("File type excluded from preview in configuration.");
    default: return QString();
  }
}

}  // namespace

int RunMediaCommand(CliContext& ctx) {
  ArgParser args;
  args.flag(QStringLiteral("play")).option(QStringLiteral("from")).option(QStringLiteral("windows-dir"));
  if (!args.parse(ctx.args)) {
    ctx.err << "quorvane media: " << args.error() << '\n';
    return kExitUsage;
  }
  if (args.positional().size() != 1) {
    ctx.err << "quorvane media: give one FILE\n";
    return kExitUsage;
  }
  double from = -1;
  if (args.isSet(QStringLiteral("from"))) {
    bool ok = false;
    from = args.value(QStringLiteral("from")).toDouble(&ok);
    if (!ok || from < 0 || from > 1) {
      ctx.err << "quorvane media: --from needs a fraction from 0 to 1\n";
      return kExitUsage;
    }
  }
  const QString path = args.positional().first();
  if (!QFileInfo(path).isFile()) {
    ctx.err << "quorvane media: no such file: " << platform::DisplayText(path) << '\n';
    return kExitUsage;
  }

  preview::MciDevice device;
  // Video frames have nowhere to go; they are decoded and dropped.
  QVideoSink sink;
  device.SetVideoWindow(QStringLiteral("1"), &sink, nullptr);
  modMCIsnd::MediaSession session(&device);
  session.setWindowsFolder(args.isSet(QStringLiteral("windows-dir")) ? args.value(QStringLiteral("windows-dir"))
                                                                     : qEnvironmentVariable("QUORVANE_WINDOWS_DIR"));
  modMCIsnd::MediaHost host;
  host.visible = [] { return true; };
  host.windowHandle = [] { return QStringLiteral("1"); };
  host.size = [] { return QSize(320, 240); };
  session.setHost(host);
  int status = 0;
  session.setStatusHandler([&status](int code) { status = code; });

  const bool play = args.isSet(QStringLiteral("play"));
  if (!session.PreviewMedia(path, QString(), play && from < 0)) {
    ctx.err << "quorvane media: not a media file: " << platform::DisplayText(path) << '\n';
    return kExitUsage;
  }
  if (status == modMCIsnd::kStatusCannotDecode || status == modMCIsnd::kStatusExcluded) {
    ctx.err << PreviewStatusText(status) << '\n';
    return kExitFailed;
  }
  if (session.device().isEmpty()) {
    ctx.err << "quorvane media: no media device for this file type\n";
    return kExitFailed;
  }
  ctx.out << core::RowField(session.FormatLabel()) << '\t' << session.LengthText() << '\n';
  ctx.out.flush();
  if (!play) {
    session.StopMedia(false);
    return kExitOk;
  }
  if (from >= 0) session.PlayFrom(from, false);

  // The progress timer's rules, printed instead of drawn.
  QEventLoop loop;
  QTimer tick;
  QElapsedTimer sincePrint;
  sincePrint.start();
  const double length = session.MediaLength();
  QElapsedTimer running;
  running.start();
  QObject::connect(&tick, &QTimer::timeout, &loop, [&] {
    const modMCIsnd::Progress p = session.Tick();
    if (p.finished) {
      ctx.err << p.label << '\n';
      loop.quit();
      return;
    }
    // Stopped short of the end (the file went away, the device failed).
    if (session.MediaMode() != u"playing" || running.elapsed() > length + 30000) {
      ctx.err << p.label << "  stopped\n";
      ctx.err.flush();
      status = modMCIsnd::kStatusCannotDecode;
      loop.quit();
      return;
    }
    if (sincePrint.elapsed() >= 1000) {
      sincePrint.restart();
      ctx.err << p.label << '\n';
      ctx.err.flush();
    }
  });
  tick.start(50);
  loop.exec();
  session.StopMedia(false);
  return status == modMCIsnd::kStatusCannotDecode ? kExitFailed : kExitOk;
}

}  // namespace cli
