#pragma once
#include <string>

namespace platform {

// The folder this program was started from, with a trailing separator, so
// that the programs and libraries installed beside it are found wherever
// that is; empty when the system does not say. Free of Qt.
std::string ProgramFolder();

}  // namespace platform
