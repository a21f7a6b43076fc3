#pragma once
#include <QString>
#include <QStringList>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/FindTabValues.h"

namespace cli {

// Declares the options of "quorvane find" that mirror the "Find Files" tab.
void AddFindOptions(ArgParser* parser);

// The tab's values the parsed options stand for, and the locations (--in, in
// order; the current folder when none is given). A group is switched on when
// one of its options is given. False with `error` set on a bad option value.
bool FindValuesFromOptions(const ArgParser& parser, core::FindTabValues* values, QStringList* lookIn,
                           QString* error);

int RunFindCommand(CliContext& ctx);

}  // namespace cli
