#include "platform/windows/SystemWindows.h"

#include "platform/Shell.h"

#include "platform/windows/Widget.h"

namespace platform {

int ShellExecuteA(std::uint32_t window, const std::string& verb, const std::string& target,
                  const std::string& parameters, const std::string& folder, int show) {
  const Control* control = ControlByHandle(window);
  const HINSTANCE result =
      ShellExecuteW(control != nullptr ? Widget(*control).Window() : nullptr, Wide(verb).c_str(),
                    Wide(target).c_str(), Wide(parameters).c_str(), Wide(folder).c_str(), show);
  return static_cast<int>(reinterpret_cast<INT_PTR>(result));
}

/// The viewer of compiled help is loaded when it is first wanted: some systems have none.
std::uint32_t HtmlHelpA(std::uint32_t window, const std::string& path, std::uint32_t command,
                        std::uint32_t data) {
  using Viewer = HWND(WINAPI*)(HWND, LPCWSTR, UINT, DWORD_PTR);
  static const HMODULE library = LoadLibraryW(L"hhctrl.ocx");
  if (library == nullptr || command != HH_DISPLAY_TOPIC) return 0;
  const auto open =
      reinterpret_cast<Viewer>(reinterpret_cast<void (*)()>(GetProcAddress(library, "HtmlHelpW")));
  // No owner: the help must not stay above the window, nor go with it.
  static_cast<void>(window);
  return open != nullptr && open(nullptr, Wide(path).c_str(), command, data) != nullptr ? 1 : 0;
}

}  // namespace platform
