#include "platform/windows/SystemWindows.h"

#include "tests/window/Hands.h"

#include <array>
#include <utility>

#include "platform/Shell.h"
#include "platform/windows/Widget.h"

namespace hands {

namespace {

using platform::Widget;

template <typename Answer = LRESULT>
LRESULT Ask(const platform::Control& list, UINT message, WPARAM w = 0, Answer answer = {}) {
  return SendMessageW(Widget(list).Window(), message, w, reinterpret_cast<LPARAM>(answer));
}

/// A yield looks for events once a millisecond.
void LetEventsCome() {
  Sleep(2);
  platform::DoEvents();
}

/// For its length Shift and Ctrl are held down.
class KeysDown {
 public:
  explicit KeysDown(int shift) { Set(shift); }
  KeysDown(const KeysDown&) = delete;
  KeysDown& operator=(const KeysDown&) = delete;
  ~KeysDown() {
    LetEventsCome();
    Set(0);
  }

 private:
  static void Set(int shift) {
    std::array<BYTE, 256> keys{};
    GetKeyboardState(keys.data());
    constexpr BYTE Down = 0x80;
    keys[VK_SHIFT] = (shift & platform::vbShiftMask) != 0 ? Down : BYTE{0};
    keys[VK_CONTROL] = (shift & platform::vbCtrlMask) != 0 ? Down : BYTE{0};
    SetKeyboardState(keys.data());
  }
};

void Press(HWND window, POINT at, int button, bool second = false) {
  const bool left = button == 1;
  const LPARAM place = MAKELPARAM(at.x, at.y);
  const UINT down = left ? WM_LBUTTONDOWN : WM_RBUTTONDOWN;
  const UINT again = left ? platform::WM_LBUTTONDBLCLK : WM_RBUTTONDBLCLK;
  const WPARAM held = (left ? MK_LBUTTON : MK_RBUTTON) |
                      (GetKeyState(VK_SHIFT) < 0 ? MK_SHIFT : 0) |
                      (GetKeyState(VK_CONTROL) < 0 ? MK_CONTROL : 0);
  PostMessageW(window, second ? again : down, held, place);
  PostMessageW(window, left ? platform::WM_LBUTTONUP : platform::WM_RBUTTONUP, 0, place);
}

POINT PlaceOf(const platform::ListView& list, int row) {
  RECT area{};
  GetClientRect(Widget(list).Window(), &area);
  if (row < 0) return {20, area.bottom - 3};
  area.left = LVIR_LABEL;
  Ask(list, LVM_GETITEMRECT, static_cast<WPARAM>(row), &area);
  return {area.left + 10, (area.top + area.bottom) / 2};
}

HWND Header(const platform::ListView& list) {
  return reinterpret_cast<HWND>(Ask(list, LVM_GETHEADER));
}

bool IsReport(const platform::Control& list) {
  return dynamic_cast<const platform::ListView*>(&list) != nullptr;
}

}  // namespace

void ClickRow(const platform::ListView& list, int row, const Click& click) {
  LetEventsCome();
  const KeysDown keys(click.Shift);
  Press(Widget(list).Window(), PlaceOf(list, row), click.Button);
}

void DoubleClickRow(const platform::ListView& list, int row) {
  for (const bool second : {false, true}) {
    Press(Widget(list).Window(), PlaceOf(list, row), 1, second);
  }
  LetEventsCome();
}

void ClickHeader(const platform::ListView& list, int column, int button, bool quick) {
  RECT area{};
  SendMessageW(Header(list), HDM_GETITEMRECT, static_cast<WPARAM>(column),
               reinterpret_cast<LPARAM>(&area));
  Press(Header(list), {area.left + 20, 5}, button, quick);
  LetEventsCome();
}

void MoveFirstColumn(const platform::ListView& list, int to) {
  std::vector<int> order(
      static_cast<std::size_t>(SendMessageW(Header(list), HDM_GETITEMCOUNT, 0, 0)));
  Ask(list, LVM_GETCOLUMNORDERARRAY, order.size(), order.data());
  for (int i = 0; i < to; ++i) std::swap(order.at(i), order.at(i + 1));
  Ask(list, LVM_SETCOLUMNORDERARRAY, order.size(), order.data());
}

std::string Copied(const platform::Control& list) {
  {
    const KeysDown keys(platform::vbCtrlMask);
    PostMessageW(Widget(list).Window(), WM_KEYDOWN, 'C', 0);
  }
  OpenClipboard(nullptr);
  const HANDLE data = GetClipboardData(CF_UNICODETEXT);
  std::wstring text = data == nullptr ? L"" : static_cast<const wchar_t*>(GlobalLock(data));
  CloseClipboard();
  std::erase(text, L'\r');
  return platform::Narrow(text);
}

int TopRow(const platform::Control& list) {
  return static_cast<int>(Ask(list, IsReport(list) ? LVM_GETTOPINDEX : LB_GETTOPINDEX));
}
void TopRow(const platform::Control& list, int row) {
  if (!IsReport(list)) {
    Ask(list, LB_SETTOPINDEX, static_cast<WPARAM>(row));
    return;
  }
  RECT area{};
  area.left = LVIR_BOUNDS;
  Ask(list, LVM_GETITEMRECT, 0, &area);
  Ask(list, LVM_SCROLL, 0, static_cast<LPARAM>(row - TopRow(list)) * (area.bottom - area.top));
}

void SelectLines(const platform::ListBox& list, const std::vector<int>& lines) {
  for (const int line : lines) Ask(list, LB_SETSEL, TRUE, static_cast<LPARAM>(line));
}

std::vector<int> SelectedLines(const platform::ListBox& list) {
  std::vector<int> lines(static_cast<std::size_t>(Ask(list, LB_GETSELCOUNT)));
  Ask(list, LB_GETSELITEMS, lines.size(), lines.data());
  return lines;
}

}  // namespace hands
