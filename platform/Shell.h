#pragma once

#include <array>
#include <cstdint>
#include <string>

// The desktop shell: tray icon, recycle bin, opening of links, help.

namespace platform {

class Menu;

inline constexpr std::uint32_t NIM_ADD = 0;
inline constexpr std::uint32_t NIM_DELETE = 2;
inline constexpr std::uint32_t NIF_MESSAGE = 1;
inline constexpr std::uint32_t NIF_ICON = 2;
inline constexpr std::uint32_t NIF_TIP = 4;

inline constexpr std::uint32_t WM_MOUSEMOVE = 0x200;
inline constexpr std::uint32_t WM_LBUTTONUP = 0x202;
inline constexpr std::uint32_t WM_LBUTTONDBLCLK = 0x203;
inline constexpr std::uint32_t WM_RBUTTONUP = 0x205;

/// The notification-icon record in its narrow form of 88 bytes.
struct NOTIFYICONDATA {
  std::uint32_t cbSize = 0;
  std::uint32_t hWnd = 0;  ///< The window that the icon's mouse events go to.
  std::uint32_t uID = 0;
  std::uint32_t uFlags = 0;
  std::uint32_t uCallbackMessage = 0;
  std::uint32_t hIcon = 0;       ///< Handle of a picture, from `Image::Picture`.
  std::array<char, 64> szTip{};  ///< Up to its first NUL.
};
static_assert(sizeof(NOTIFYICONDATA) == 88);

/// Names the icon's menu, for desktops whose tray draws menus by itself and does not report the
/// right button. Wanted before the icon is added; where the tray reports the button, as every
/// event, the window pops its menu up and this changes nothing.
void TrayMenu(const Menu& menu);

/// Adds or removes the tray icon. From then on each mouse event on it reaches the window as the
/// message `uCallbackMessage` with the event's own number; as WM_MOUSEMOVE it comes as
/// `Form_MouseMove` whose X is that number of pixels in the window's scale. An icon added before
/// the desktop has a tray appears when the tray does. Returns 0 on failure.
int Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data);

inline constexpr std::uint32_t SHERB_NOCONFIRMATION = 1;
inline constexpr std::uint32_t SHERB_NOPROGRESSUI = 2;
inline constexpr std::uint32_t SHERB_NOSOUND = 4;

/// Empties the user's recycle bin on all drives; `rootPath` is empty for that, and `flags` all
/// three above: no other way of emptying is provided. Links in the bin are removed, never followed;
/// what other users threw away stays. 0 on success.
int SHEmptyRecycleBinA(std::uint32_t window, const std::string& rootPath, std::uint32_t flags);

inline constexpr int SW_SHOWNORMAL = 1;

/// Hands a web or mail address to the user's default program and returns without waiting for it.
/// `verb` is "open"; what is started works in `folder`. Above 32 on success.
int ShellExecuteA(std::uint32_t window, const std::string& verb, const std::string& target,
                  const std::string& parameters, const std::string& folder, int show);

inline constexpr std::uint32_t HH_DISPLAY_TOPIC = 0;

/// Opens the help that belongs to `path`, or brings it to the front when it is open. Does not wait
/// for it; whether its viewer outlives the program is the machine's own. 0 when there is no such
/// help.
std::uint32_t HtmlHelpA(std::uint32_t window, const std::string& path, std::uint32_t command,
                        std::uint32_t data);

}  // namespace platform
