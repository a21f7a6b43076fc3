#include <QFileInfo>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/RowEscape.h"
#include "preview/FileViewDocument.h"

namespace cli {

// quorvane view [--hex] [--extract] [--international] [--lines FROM:TO] FILE
// The view's lines as the File View tab draws them, header line included;
// the three status texts on standard error.
int RunViewCommand(CliContext& ctx) {
  ArgParser parser;
  parser.flag(QStringLiteral("hex")).flag(QStringLiteral("extract")).flag(QStringLiteral("international"));
  parser.option(QStringLiteral("lines"));
  if (!parser.parse(ctx.args)) {
    ctx.err << "quorvane view: " << parser.error() << '\n';
    return kExitUsage;
  }
  if (parser.positional().size() != 1) {
    ctx.err << "quorvane view: give one file\n";
    return kExitUsage;
  }
  qint64 from = 1, to = -1;  // 1-based, inclusive; -1: to the end
  if (parser.isSet(QStringLiteral("lines"))) {
    const QStringList parts = parser.value(QStringLiteral("lines")).split(u':');
    bool okFrom = false, okTo = parts.size() == 2 && parts[1].isEmpty();
    if (parts.size() == 2) {
      from = parts[0].toLongLong(&okFrom);
      if (!okTo) to = parts[1].toLongLong(&okTo);
    }
    if (!okFrom || !okTo || from < 1 || (to != -1 && to < from)) {
      ctx.err << "quorvane view: --lines takes FROM:TO, line numbers from 1 (TO may be left empty)\n";
      return kExitUsage;
    }
  }
  const QString path = parser.positional().first();
  preview::FileViewDocument doc;
  preview::FileViewDocument::Options options;
  options.hexForText = parser.isSet(QStringLiteral("hex"));
  options.extractForBinary = parser.isSet(QStringLiteral("extract"));
  options.international = parser.isSet(QStringLiteral("international"));
  const preview::FileKind kind = doc.load(path, options);
  if (kind == preview::kKindUnreadable) {
    ctx.err << "quorvane view: " << path << ": " << doc.error() << '\n';
    return kExitFailed;
  }
  if (kind == preview::kKindEmpty) {
    ctx.err << "Empty\n";
    return kExitOk;
  }
  const qint64 first = from - 1;
  const qint64 last = to < 0 ? doc.lineCount() - 1 : std::min(to - 1, doc.lineCount() - 1);
  QString buffer;
  auto row = [&](const QString& text) {
    core::AppendRowField(&buffer, text);
    buffer.append(u'\n');
    if (buffer.size() > (1 << 20)) {
      ctx.out << buffer;
      buffer.clear();
    }
  };
  if (doc.hasHeader()) row(doc.headerLine(first));
  for (qint64 n = first; n <= last; ++n) row(doc.line(n));
  ctx.out << buffer;
  ctx.out.flush();
  ctx.err << doc.loadTimeText() << '\n' << doc.fileText() << '\n' << doc.viewText() << '\n';
  return kExitOk;
}

}  // namespace cli
