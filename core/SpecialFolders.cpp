#include "core/SpecialFolders.h"

#include <algorithm>
#include <array>

#include "core/PublicDim.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "platform/ShellFolders.h"

namespace {

constexpr std::size_t FolderBufferSize = 256;

std::string WithSeparator(std::string folder) {
  if (!folder.ends_with(platform::PathSeparator)) folder += platform::PathSeparator;
  return folder;
}

void MakeFolderIfMissing(const std::string& folder) {
  if (platform::Dir(folder, platform::vbDirectory).empty()) platform::MkDir(folder);
}

}  // namespace

std::string GetSpecialFolderPath(int csidl, std::uint32_t window) {
  std::array<char, FolderBufferSize> buffer{};
  platform::ITEMIDLIST place;
  if (platform::SHGetSpecialFolderLocation(window, csidl, place) == 0) {
    platform::SHGetPathFromIDListA(place, buffer);
  }
  const auto end = std::find(buffer.begin(), buffer.end(), '\0');
  if (end == buffer.end()) return "C:\\";
  // The one text that must not get the machine's own separator: "/" alone would be its root.
  if (end == buffer.begin()) return "\\";
  return WithSeparator(std::string(buffer.begin(), end));
}

void ResolveProgramFolders() {
  const std::string separator(platform::PathSeparator);
  PublicDim.AppPath = WithSeparator(platform::AppPath());
  PublicDim.LogDir = PublicDim.AppPath + "log" + separator;
  PublicDim.SoundDir = PublicDim.AppPath + "sound" + separator;
  MakeFolderIfMissing(PublicDim.LogDir);
  MakeFolderIfMissing(PublicDim.SoundDir);
}

void ResolveShellFolders(std::uint32_t window) {
  PublicDim.CookieDir = GetSpecialFolderPath(platform::CSIDL_COOKIES, window);
  PublicDim.RecentDir = GetSpecialFolderPath(platform::CSIDL_RECENT, window);
}
