#include "platform/windows/System.h"

#include "platform/ShellFolders.h"

#include <array>

#include "platform/Files.h"
#include "platform/windows/Text.h"

namespace platform {

int SHGetSpecialFolderLocation(std::uintptr_t /*window*/, int csidl, ITEMIDLIST& place) {
  PIDLIST_ABSOLUTE list = nullptr;
  if (const HRESULT result = ::SHGetSpecialFolderLocation(nullptr, csidl, &list); result != S_OK) {
    return result;
  }
  std::array<wchar_t, 0x8000> path{};
  const bool found = SHGetPathFromIDListEx(list, path.data(), static_cast<DWORD>(path.size()),
                                           GPFIDL_DEFAULT) != FALSE;
  CoTaskMemFree(list);
  place.Path = found ? Narrow(path.data()) : std::string();
  return IsPath(place.Path) ? 0 : E_FAIL;
}

}  // namespace platform
