#include "platform/windows/SystemWindows.h"

#include <optional>

#include "platform/Shell.h"
#include "platform/windows/EventLoop.h"
#include "platform/windows/FormWidget.h"
#include "platform/windows/Resources.h"

namespace platform {

namespace {

constexpr UINT TrayEvent = WM_APP;

/// The icon, over a window of its own that hears of its events.
class TrayIcon {
 public:
  explicit TrayIcon(const NOTIFYICONDATA& data) : data_(data) { Add(); }
  TrayIcon(const TrayIcon&) = delete;
  TrayIcon& operator=(const TrayIcon&) = delete;
  ~TrayIcon() {
    NOTIFYICONDATAW record = Record();
    Shell_NotifyIconW(NIM_DELETE, &record);
    DestroyWindow(window_);
  }

  /// Also when the task bar comes anew, which has forgotten all icons.
  void Add() {
    NOTIFYICONDATAW record = Record();
    Shell_NotifyIconW(NIM_ADD, &record);
  }

  void Deliver(UINT event) const {
    auto* form = dynamic_cast<Form*>(ControlByHandle(data_.hWnd));
    if (form == nullptr || data_.uCallbackMessage != WM_MOUSEMOVE) return;
    form->Form_MouseMove(static_cast<float>(static_cast<int>(event) * Screen().TwipsPerPixelX));
  }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);

  NOTIFYICONDATAW Record() const {
    NOTIFYICONDATAW record{};
    record.cbSize = sizeof record;
    record.hWnd = window_;
    record.uID = data_.uID;
    record.uFlags = data_.uFlags;
    record.uCallbackMessage = TrayEvent;
    record.hIcon = PictureByHandle(data_.hIcon, GetSystemMetrics(SM_CXSMICON));
    const std::wstring tip = Wide(data_.szTip.data());
    tip.copy(record.szTip, std::size(record.szTip) - 1);
    return record;
  }

  NOTIFYICONDATA data_;
  // Not for messages alone: only windows of the desktop hear of a new task bar.
  HWND window_ = NewHiddenWindow(L"QuillmereTray", Procedure);
};

std::optional<TrayIcon>& Icon() {
  static auto& icon = *new std::optional<TrayIcon>;  // what is there at exit is not freed
  return icon;
}

LRESULT CALLBACK TrayIcon::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  static const UINT taskbarCreated = RegisterWindowMessageW(L"TaskbarCreated");
  if (message == taskbarCreated && Icon()) Icon()->Add();
  if (message == TrayEvent && Icon()) {
    const auto event = static_cast<UINT>(LOWORD(l));
    // An event of its own may be what removes the icon.
    Later([event] {
      if (Icon()) Icon()->Deliver(event);
    });
    return 0;
  }
  return DefWindowProcW(window, message, w, l);
}

}  // namespace

void TrayMenu(const Menu&) {}

int Shell_NotifyIconA(std::uint32_t message, const NOTIFYICONDATA& data) {
  if (message == NIM_DELETE) {
    const bool was = Icon().has_value();
    Icon().reset();
    return was ? 1 : 0;
  }
  if (message != NIM_ADD || Icon()) return 0;
  Icon().emplace(data);
  return 1;
}

}  // namespace platform
