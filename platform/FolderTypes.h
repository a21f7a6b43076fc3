#pragma once
#include <string_view>
#include <vector>

namespace platform {

// What each of `names` is in the folder freshly opened (for reading) as
// `folderFd`, from one read of the folder: the directory-entry type (DT_REG,
// DT_DIR, ...; DT_UNKNOWN where the file system does not say), or
// kNotInFolder. Equal names get the same answer. False when the folder
// cannot be read, or is so much larger than the list that looking up each
// name costs less. Free of Qt: the lean front end uses it too.
inline constexpr unsigned char kNotInFolder = 0xff;
bool FolderTypes(int folderFd, const std::vector<std::string_view>& names, std::vector<unsigned char>* types);

}  // namespace platform
