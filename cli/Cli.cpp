#include "cli/Cli.h"

#include <QTextStream>
#include <cstdio>

#include "cli/Commands.h"

namespace cli {

namespace {

// Global options that come before the command: "--ini FILE". Returns the
// index of the first argument after them; the list is not copied, as a
// selection may name tens of thousands of files.
qsizetype SkipGlobals(const QStringList& args, QString* ini, QString* error) {
  qsizetype i = 0;
  while (i < args.size() && args[i].startsWith(QStringLiteral("--ini"))) {
    const QString& a = args[i++];
    if (a.startsWith(QStringLiteral("--ini="))) {
      *ini = a.mid(6);
    } else if (a == QStringLiteral("--ini") && i < args.size()) {
      *ini = args[i++];
    } else {
      *error = QStringLiteral("option --ini needs a value");
      break;
    }
  }
  return i;
}

void PrintHelp(QTextStream& out) {
  out << "Usage: quorvane [--ini FILE] [--open FOLDER | --screenshot FILE [FOLDER]]\n"
         "       quorvane [--ini FILE] COMMAND [OPTIONS] [ARGUMENTS]\n\n"
         "Without a command the window opens. Commands:\n";
  for (const Command& c : AllCommands())
    out << "  " << QString::fromLatin1(c.name).leftJustified(10) << ' ' << c.usage << "\n      " << c.summary << '\n';
  out << "\nGlobal options:\n"
         "  --ini FILE          settings file to use instead of Quorvane.ini\n"
         "  --open FOLDER       open the window on FOLDER\n"
         "  --screenshot FILE   open the window, save a PNG of it to FILE once the list is\n"
         "                      filled, and exit (settings are left as they were)\n"
         "  --help, --version\n"
         "\nRows are tab-separated, one entry a line. In every field a backslash reads \\\\,\n"
         "a tab \\t, a line feed \\n, a carriage return \\r, and any other control character\n"
         "or byte of a name that is not valid UTF-8 \\xHH, so the exact bytes can be restored.\n";
}

}  // namespace

bool IsCliInvocation(const QStringList& args) {
  QString ini, error;
  const qsizetype start = SkipGlobals(args, &ini, &error);
  if (!error.isEmpty()) return true;
  if (start == args.size()) return false;
  const QString& first = args[start];
  if (first == QStringLiteral("--screenshot") || first == QStringLiteral("--open") || first.startsWith(QStringLiteral("--open=")))
    return false;
  return !first.startsWith(QStringLiteral("--")) || first == QStringLiteral("--help") ||
         first == QStringLiteral("-h") || first == QStringLiteral("--version") || first.startsWith(u'-');
}

bool NeedsFullProgram(const QStringList& args) {
  QString ini, error;
  const qsizetype start = SkipGlobals(args, &ini, &error);
  if (!error.isEmpty() || start == args.size()) return false;
  for (const Command& c : AllCommands())
    if (args[start] == QLatin1String(c.name)) return RunnerOf(c) == nullptr;
  return false;
}

int RunCli(const QStringList& args, qint64 movedBefore) {
  QTextStream out(stdout);
  QTextStream err(stderr);
  out.setEncoding(QStringConverter::Utf8);
  err.setEncoding(QStringConverter::Utf8);

  QString ini, error;
  QStringList rest = args.mid(SkipGlobals(args, &ini, &error));
  if (!error.isEmpty()) {
    err << "quorvane: " << error << '\n';
    return kExitUsage;
  }
  if (rest.isEmpty() || rest.first() == QStringLiteral("--help") || rest.first() == QStringLiteral("-h") ||
      rest.first() == QStringLiteral("help")) {
    PrintHelp(out);
    return kExitOk;
  }
  if (rest.first() == QStringLiteral("--version")) {
    out << "quorvane " << QUORVANE_VERSION << '\n';
    return kExitOk;
  }
  const QString name = rest.takeFirst();
  for (const Command& c : AllCommands()) {
    if (name == QLatin1String(c.name)) {
      const CommandRunner run = RunnerOf(c);
      if (!run) {
        err << "quorvane: the command '" << name << "' is not part of this program\n";
        return kExitUsage;
      }
      CliContext ctx{rest, out, err, ini, movedBefore};
      const int status = run(ctx);
      out.flush();
      err.flush();
      return status;
    }
  }
  err << "quorvane: unknown command '" << name << "' (see quorvane --help)\n";
  return kExitUsage;
}

}  // namespace cli
