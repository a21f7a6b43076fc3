// quorvane settings: shows every setting as the settings file holds it, in
// catalogue order, and optionally writes the whole catalogue to the file.
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/CProfile.h"
#include "core/IniFile.h"
#include "core/Settings.h"
#include "core/SettingsLocation.h"

namespace cli {

int RunSettingsCommand(CliContext& ctx) {
  ArgParser args;
  args.flag(QStringLiteral("defaults")).flag(QStringLiteral("write")).flag(QStringLiteral("no-header"));
  args.option(QStringLiteral("screen"));
  if (!args.parse(ctx.args)) {
    ctx.err << "quorvane settings: " << args.error() << '\n';
    return kExitUsage;
  }
  if (!args.positional().isEmpty()) {
    ctx.err << "quorvane settings: unexpected argument '" << args.positional().first() << "'\n";
    return kExitUsage;
  }
  int width = 1920, height = 1080;
  if (args.isSet(QStringLiteral("screen"))) {
    static const QRegularExpression size(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
    const QRegularExpressionMatch m = size.match(args.value(QStringLiteral("screen")));
    if (!m.hasMatch()) {
      ctx.err << "quorvane settings: --screen needs WIDTHxHEIGHT, e.g. 1920x1080\n";
      return kExitUsage;
    }
    width = m.captured(1).toInt();
    height = m.captured(2).toInt();
  }

  const QString path = core::SettingsFilePath(ctx.iniFile);
  core::AppSettings settings = core::DefaultSettings(core::DefaultsContext::ForScreen(width, height));
  core::CProfile profile;
  profile.setProfileFile(path);
  QString source = QStringLiteral("defaults");
  if (!args.isSet(QStringLiteral("defaults"))) {
    const core::SettingsResult read = core::LoadSettingsAtStart(profile, path, settings);
    if (!read.ok) ctx.err << "quorvane settings: " << read.error << '\n';
    if (read.used) source = QStringLiteral("read");
  }

  // The rows are what a write would store: the catalogue written in memory.
  core::CProfile shown;
  shown.BeginBatch(core::IniFile());
  core::AppSettings copy = settings;
  core::IniWR(shown, copy, u"write");
  const core::IniFile file = shown.TakeBatch();
  if (!args.isSet(QStringLiteral("no-header"))) ctx.out << "Section\tKey\tValue\n";
  int rows = 0;
  for (const QString& section : file.sections()) {
    for (const QString& key : file.keys(section)) {
      ctx.out << section << '\t' << key << '\t' << file.value(section, key).value_or(QString()) << '\n';
      ++rows;
    }
  }
  ctx.err << path << ": " << rows << " keys (" << source << ")\n";

  if (args.isSet(QStringLiteral("write"))) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    const core::SettingsResult written = core::IniWR(profile, settings, u"write");
    if (!written.ok) {
      ctx.err << "quorvane settings: " << written.error << '\n';
      return kExitFailed;
    }
    ctx.err << "written: " << path << '\n';
  }
  return kExitOk;
}

}  // namespace cli
