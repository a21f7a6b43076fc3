#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QSaveFile>
#include <QTimer>
#include <cstdio>
#include <cstring>

#include "browser/frmMain.h"
#include "cli/Cli.h"
#include "cli/MediaCommands.h"
#include "platform/NativePath.h"
#include "preview/MciDevice.h"

namespace {

// Options of the window: --ini FILE, --open FOLDER, --screenshot FILE [FOLDER].
struct WindowOptions {
  QString ini;
  QString screenshot;
  QString folder;
  QString error;
};

WindowOptions ParseWindowOptions(const QStringList& args) {
  WindowOptions o;
  for (qsizetype i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (a == QStringLiteral("--ini") || a == QStringLiteral("--screenshot") || a == QStringLiteral("--open")) {
      if (i + 1 >= args.size()) {
        o.error = QStringLiteral("option %1 needs a value").arg(a);
        break;
      }
      QString& target = a == QStringLiteral("--ini") ? o.ini : a == QStringLiteral("--open") ? o.folder : o.screenshot;
      target = args[++i];
    } else if (a.startsWith(QStringLiteral("--ini="))) {
      o.ini = a.mid(6);
    } else if (a.startsWith(QStringLiteral("--open="))) {
      o.folder = a.mid(7);
    } else if (a.startsWith(u'-') || !o.folder.isEmpty()) {
      o.error = QStringLiteral("unexpected argument: %1").arg(a);
      break;
    } else {
      o.folder = a;
    }
  }
  return o;
}

int Fail(const QString& message, int status) {
  std::fprintf(stderr, "quorvane: %s\n", message.toLocal8Bit().constData());
  return status;
}

// Writes the window's picture as PNG through a temporary file, so that a
// failed write never leaves half a picture in place of an older one.
bool SaveScreenshot(QWidget* window, const QString& path, QString* error) {
  const QImage image = window->grab().toImage();
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) || !image.save(&file, "PNG") || !file.commit()) {
    *error = file.errorString();
    return false;
  }
  return true;
}

}  // namespace

// The full program: the window, and every command including those that load
// the picture and media libraries. `quorvane` hands it the runs it cannot do.
int main(int argc, char** argv) {
  preview::MciDevice::UseGStreamerBackend();
  cli::AttachMediaCommands();
  QStringList args;
  args.reserve(argc);
  // Arguments are bytes, like file names: those that are not UTF-8 must still name the right file.
  for (int i = 1; i < argc; ++i) args.append(platform::FromNative(argv[i], qsizetype(strlen(argv[i]))));

  if (cli::IsCliInvocation(args)) {
    QCoreApplication app(argc, argv);
    return cli::RunCli(args);
  }

  const WindowOptions options = ParseWindowOptions(args);
  if (!options.error.isEmpty()) return Fail(options.error, 2);
  QString startFolder;
  if (!options.folder.isEmpty()) {
    const QFileInfo info(options.folder);
    if (!info.isDir()) return Fail(QStringLiteral("not a folder: %1").arg(options.folder), 2);
    startFolder = platform::WithSeparator(info.absoluteFilePath());
  }

  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Quorvane"));
  QApplication::setApplicationVersion(QStringLiteral(QUORVANE_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("quorvane"));

  browser::frmMain::StartOptions start;
  start.iniFile = options.ini;
  start.startFolder = startFolder;
  // A screenshot run leaves the settings as they were.
  start.saveAtExit = options.screenshot.isEmpty();
  browser::frmMain window(start);
  window.Load();
  window.show();

  int status = 0;
  if (!options.screenshot.isEmpty()) {
    auto shoot = [&window, &options, &status] {
      static bool done = false;
      if (done) return;
      done = true;
      QString error;
      if (!SaveScreenshot(&window, options.screenshot, &error)) {
        status = Fail(QStringLiteral("cannot write %1: %2").arg(options.screenshot, error), 1);
      }
      QApplication::exit(status);
    };
    // Once the start folder's list is filled the next grab paints it.
    QObject::connect(&window, &browser::frmMain::ListFilled, &window, [shoot] { QTimer::singleShot(0, shoot); });
    QTimer::singleShot(20000, &window, shoot);  // a fill that never ends must not hang the run
  }
  QTimer::singleShot(0, &window, &browser::frmMain::ShowStartFolder);
  const int rc = app.exec();
  return status ? status : rc;
}
