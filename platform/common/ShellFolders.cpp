#include "platform/ShellFolders.h"

#include <algorithm>

namespace platform {

int SHGetPathFromIDListA(const ITEMIDLIST& place, std::span<char> buffer) {
  if (place.Path.empty()) return 0;
  const std::size_t length = std::min(place.Path.size(), buffer.size());
  std::copy_n(place.Path.begin(), length, buffer.begin());
  if (length < buffer.size()) buffer[length] = '\0';
  return 1;
}

}  // namespace platform
