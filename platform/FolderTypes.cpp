#include "platform/FolderTypes.h"

#include <cerrno>
#include <cstdint>
#include <dirent.h>
#include <functional>
#include <unistd.h>

namespace platform {

bool FolderTypes(int folderFd, const std::vector<std::string_view>& names, std::vector<unsigned char>* types) {
  // An open-addressed table of the names (an index per slot, the first of
  // equal names), and each name's directory type.
  size_t slots = 16;
  while (slots < 2 * names.size()) slots *= 2;
  std::vector<uint32_t> table(slots, UINT32_MAX);
  std::vector<uint32_t> first(names.size());
  std::vector<unsigned char> type(names.size(), kNotInFolder);
  const auto slotOf = [&](std::string_view name) {
    size_t at = std::hash<std::string_view>()(name) & (slots - 1);
    while (table[at] != UINT32_MAX && names[table[at]] != name) at = (at + 1) & (slots - 1);
    return at;
  };
  for (size_t i = 0; i < names.size(); ++i) {
    const size_t at = slotOf(names[i]);
    if (table[at] == UINT32_MAX) table[at] = uint32_t(i);
    first[i] = table[at];
  }
  // A few names of a huge folder are cheaper looked up one by one.
  const size_t most = 8 * names.size() + 4096;
  size_t seen = 0;
  alignas(struct dirent64) char buffer[65536];
  for (;;) {
    const ssize_t n = ::getdents64(folderFd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0 || (seen += size_t(n) / 24) > most) return false;  // 24 bytes: the smallest entry
    if (n == 0) break;
    for (ssize_t at = 0; at < n;) {
      const auto* e = reinterpret_cast<const struct dirent64*>(buffer + at);
      at += e->d_reclen;
      const uint32_t i = table[slotOf(std::string_view(e->d_name))];
      if (i != UINT32_MAX) type[i] = e->d_type;
    }
  }
  types->resize(names.size());
  for (size_t i = 0; i < names.size(); ++i) (*types)[i] = type[first[i]];
  return true;
}

}  // namespace platform
