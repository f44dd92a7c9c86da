#include "platform/windows/System.h"

#include "platform/Shell.h"
#include "platform/windows/Text.h"

namespace platform {

int SHEmptyRecycleBinA(std::uint32_t window, const std::string& rootPath, std::uint32_t flags) {
  constexpr std::uint32_t Provided = SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND;
  if (!rootPath.empty() || flags != Provided) return E_INVALIDARG;
  const auto owner = reinterpret_cast<HWND>(static_cast<std::uintptr_t>(window));
  return SHEmptyRecycleBinW(owner, nullptr, flags);
}

}  // namespace platform
