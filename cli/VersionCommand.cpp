#include <QFileInfo>
#include <QTextStream>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/RowEscape.h"
#include "fileinfo/VersionDisplay.h"
#include "fileinfo/modVerStringInfo.h"

namespace cli {

namespace {

void Row(QTextStream& out, const QString& caption, const QString& value) {
  QString line;
  core::AppendRowField(&line, caption);
  line += u'\t';
  core::AppendRowField(&line, value);
  out << line << '\n';
}

}  // namespace

// quorvane version [--fixed-text|--string-text] FILE...
int RunVersionCommand(CliContext& ctx) {
  ArgParser parser;
  parser.flag(QStringLiteral("fixed-text")).flag(QStringLiteral("string-text"));
  if (!parser.parse(ctx.args) || parser.positional().isEmpty() ||
      (parser.isSet(QStringLiteral("fixed-text")) && parser.isSet(QStringLiteral("string-text")))) {
    ctx.err << "quorvane version: "
            << (parser.error().isEmpty() ? QStringLiteral("give one or more files, and at most one of --fixed-text and --string-text")
                                         : parser.error())
            << '\n';
    return kExitUsage;
  }
  QString current;
  modVerStringInfo::SetErrorReport([&ctx, &current](const QString& tag, const QString& message) {
    ctx.err << "quorvane version: " << tag << ": " << message << " in " << core::RowField(current) << '\n';
  });
  const bool textOnly = parser.isSet(QStringLiteral("fixed-text")) || parser.isSet(QStringLiteral("string-text"));
  const bool useFixed = parser.isSet(QStringLiteral("fixed-text"));
  int status = kExitOk;
  for (const QString& path : parser.positional()) {
    current = path;
    QFile probe(path);
    if (QFileInfo(path).isDir() || !probe.open(QIODevice::ReadOnly)) {
      ctx.err << "quorvane version: cannot open " << core::RowField(path) << '\n';
      status = kExitFailed;
      continue;
    }
    probe.close();
    if (textOnly) {
      Row(ctx.out, path, modVerStringInfo::GetFileVersionText(useFixed, path, QStringLiteral("ver ")));
      continue;
    }
    ctx.out << core::RowField(path) << '\n';
    const fileinfo::VersionDisplay d = fileinfo::VersionDisplay::Read(path);
    if (!d.hasInfo) {
      ctx.out << fileinfo::VersionDisplay::NoInfoText() << '\n';
      continue;
    }
    for (int label = 10; label < 18; ++label) Row(ctx.out, fileinfo::VersionDisplay::Caption(label), d.label(label));
    for (const fileinfo::VersionDisplay::Item& item : d.items) Row(ctx.out, item.text, d.values.value(item.index));
  }
  modVerStringInfo::SetErrorReport(nullptr);
  ctx.out.flush();
  return status;
}

}  // namespace cli
