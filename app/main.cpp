#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMainWindow>
#include <QScreen>
#include <QTimer>

#include "cli/Cli.h"

namespace {

// Options of the window: --ini FILE, --screenshot FILE [FOLDER].
struct WindowOptions {
  QString ini;
  QString screenshot;
  QString folder;
};

WindowOptions ParseWindowOptions(const QStringList& args) {
  WindowOptions o;
  for (qsizetype i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (a == QStringLiteral("--ini") && i + 1 < args.size()) o.ini = args[++i];
    else if (a.startsWith(QStringLiteral("--ini="))) o.ini = a.mid(6);
    else if (a == QStringLiteral("--screenshot") && i + 1 < args.size()) o.screenshot = args[++i];
    else if (!a.startsWith(QStringLiteral("--"))) o.folder = a;
  }
  return o;
}

}  // namespace

int main(int argc, char** argv) {
  QStringList args;
  for (int i = 1; i < argc; ++i) args.append(QString::fromLocal8Bit(argv[i]));

  if (cli::IsCliInvocation(args)) {
    QCoreApplication app(argc, argv);
    return cli::RunCli(args);
  }

  QApplication app(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Quorvane"));
  QApplication::setApplicationVersion(QStringLiteral(QUORVANE_VERSION));
  const WindowOptions options = ParseWindowOptions(args);

  QMainWindow window;
  window.setWindowTitle(QStringLiteral("Quorvane"));
  auto* label = new QLabel(options.folder.isEmpty() ? QDir::homePath() : options.folder, &window);
  label->setAlignment(Qt::AlignCenter);
  window.setCentralWidget(label);
  window.resize(800, 600);
  window.show();

  if (!options.screenshot.isEmpty()) {
    QTimer::singleShot(300, &window, [&window, &options] {
      const bool ok = window.grab().save(options.screenshot, "PNG");
      QApplication::exit(ok ? 0 : 1);
    });
  }
  return app.exec();
}
