#include "platform/windows/System.h"

#include <array>

#include "platform/Files.h"
#include "platform/Registry.h"
#include "platform/windows/Paths.h"

namespace platform {
namespace {

bool IsSame(const BY_HANDLE_FILE_INFORMATION& one, const BY_HANDLE_FILE_INFORMATION& other) {
  return one.dwVolumeSerialNumber == other.dwVolumeSerialNumber &&
         one.nFileIndexHigh == other.nFileIndexHigh && one.nFileIndexLow == other.nFileIndexLow;
}

/// Whether it is the root of a drive or of another machine's share.
bool IsRoot(const SystemHandle& folder) {
  const std::wstring path = FinalPath(folder);
  if (path.empty())
    return GetLastError() != ERROR_MORE_DATA;  // Wine 8 tells none above 260 letters
  constexpr std::wstring_view Drive = L"\\\\?\\C:\\";
  constexpr std::wstring_view Network = L"\\\\?\\UNC\\";
  if (!path.starts_with(Network)) return path.size() <= Drive.size();
  const std::size_t share = path.find(L'\\', Network.size()) + 1;
  return share == 0 || path.find(L'\\', share) >= path.size() - 1;
}

/// Whether `wanted` is met on the way from a folder up to the root. A folder that isn't there is
/// below nothing.
bool IsOnTheWayUp(const BY_HANDLE_FILE_INFORMATION& wanted, const std::wstring& from) {
  const SystemHandle opened = OpenExisting(from, FILE_READ_ATTRIBUTES);
  if (!opened) return GetLastError() == ERROR_ACCESS_DENIED;
  std::wstring at = FinalPath(opened);
  if (at.empty()) return true;
  constexpr std::wstring_view Prefix = L"\\\\?\\";
  for (at += L'\\'; at.size() > Prefix.size(); at.resize(at.rfind(L'\\') + 1)) {
    const auto info = InfoOf(at);
    if (info && IsSame(*info, wanted)) return true;
    at.pop_back();
  }
  return false;
}

/// The home folder by the user's account, whatever the environment says.
std::wstring AccountHome() {
  std::array<wchar_t, MAX_PATH> home{};
  SHGetFolderPathW(nullptr, CSIDL_PROFILE, nullptr, SHGFP_TYPE_CURRENT, home.data());
  return home.data();
}

std::wstring EnvironmentHome() {
  std::array<wchar_t, 0x8000> home{};
  GetEnvironmentVariableW(L"USERPROFILE", home.data(), static_cast<DWORD>(home.size()));
  return home.data();
}

}  // namespace

bool IsSafeToClear(const std::string& folder) {
  const SystemHandle opened = OpenExisting(SystemPath(folder), FILE_READ_ATTRIBUTES);
  BY_HANDLE_FILE_INFORMATION info;
  if (!opened || GetFileInformationByHandle(opened.Get(), &info) == 0 || !IsFolder(info) ||
      IsRoot(opened)) {
    return false;
  }
  for (const std::wstring& home : {AccountHome(), EnvironmentHome()}) {
    if (!home.empty() && IsOnTheWayUp(info, home)) return false;
  }
  return true;
}

}  // namespace platform
