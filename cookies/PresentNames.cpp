#include "cookies/PresentNames.h"

#include "core/PublicDim.h"
#include "platform/FileSearch.h"
#include "platform/Regional.h"

PresentNames::PresentNames() {
  platform::WIN32_FIND_DATA found;
  const platform::HANDLE search = platform::FindFirstFileA(PublicDim.CookieDir + "*.txt", found);
  if (search == platform::INVALID_HANDLE_VALUE) return;
  do {
    const std::string& name = found.cFileName;
    const auto [at, added] = byFoldedName_.try_emplace(platform::FoldCase(name), name);
    if (!added) at->second.clear();
  } while (platform::FindNextFileA(search, found) != 0);
  platform::FindClose(search);
}

std::string PresentNames::OnlyOneEqualTo(const std::string& name) const {
  const auto found = byFoldedName_.find(platform::FoldCase(name));
  return found == byFoldedName_.end() ? std::string() : found->second;
}
