#pragma once
#include <QString>

namespace core {

inline constexpr char kSettingsFileName[] = "Quorvane.ini";

// Where the settings file lives, chosen once at start:
// 1. `iniOverride` when given (the --ini option: portable use and tests);
// 2. "Quorvane.ini" in the program's folder when that folder already holds
//    one or can be written (a portable install);
// 3. otherwise $XDG_CONFIG_HOME/quorvane/Quorvane.ini ($XDG_CONFIG_HOME
//    falling back to ~/.config when unset or not absolute).
// An empty `programFolder` means the running program's folder.
QString SettingsFilePath(const QString& iniOverride, const QString& programFolder = QString());

// The per-user location of rule 3.
QString UserSettingsFilePath();

}  // namespace core
