#pragma once
#include <QString>
#include <QStringList>
#include <QTextStream>

namespace cli {

// What a command gets: its arguments (after the command name) and the two
// output streams. Rows go to `out`; status, summaries and messages to `err`.
struct CliContext {
  QStringList args;
  QTextStream& out;
  QTextStream& err;
  QString iniFile;  // from the global --ini option, empty if not given
  qint64 movedBefore = 0;  // a move continued from the lean front end: sources it moved
};

// Exit statuses: 0 done, 1 the work failed, 2 bad input (message on err).
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;

}  // namespace cli
