#include "platform/windows/System.h"

#include "platform/ShellFolders.h"

#include <array>
#include <memory>

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
  if (!found) return E_FAIL;
  place.Path = Narrow(path.data());
  return 0;
}

}  // namespace platform
