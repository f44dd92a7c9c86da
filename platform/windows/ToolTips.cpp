#include "platform/windows/SystemWindows.h"

#include "platform/windows/ToolTips.h"

#include "platform/windows/FormWidget.h"

namespace platform {

namespace {

/// A window's tips live in a window of their own, which goes with it.
HWND TipsOf(HWND window) {
  constexpr const wchar_t* Property = L"QuillmereToolTips";
  constexpr LPARAM MostWide = 600;  // a longer text goes on in the next line
  if (const HANDLE known = GetPropW(window, Property)) return static_cast<HWND>(known);
  const HWND tips = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                    WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, window,
                                    nullptr, Module(), nullptr);
  SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0, MostWide);
  SetPropW(window, Property, tips);
  return tips;
}

void Tell(HWND tips, const TTTOOLINFOW& tool) {
  SendMessageW(tips, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

TTTOOLINFOW ToolFor(HWND control, std::wstring& text) {
  TTTOOLINFOW tool{};
  tool.cbSize = sizeof tool;
  tool.uFlags = TTF_SUBCLASS | TTF_IDISHWND;
  tool.hwnd = GetParent(control);
  tool.uId = reinterpret_cast<UINT_PTR>(control);
  tool.lpszText = text.data();
  return tool;
}

}  // namespace

void ShowToolTip(const NativeWidget& widget, const std::wstring& text) {
  std::wstring copy = text;
  const HWND tips = TipsOf(widget.Top().Window());
  Tell(tips, ToolFor(widget.Window(), copy));
  // Of a disabled control the pointer is told to the window below.
  TTTOOLINFOW place = ToolFor(widget.Window(), copy);
  place.uFlags = TTF_SUBCLASS;
  place.uId += 1;  // no window has that number
  GetWindowRect(widget.Window(), &place.rect);
  MapWindowPoints(nullptr, place.hwnd, reinterpret_cast<POINT*>(&place.rect), 2);
  Tell(tips, place);
}

void ChangeToolTip(const NativeWidget& widget, const std::wstring& text) {
  std::wstring copy = text;
  const HWND tips = TipsOf(widget.Top().Window());
  const TTTOOLINFOW tool = ToolFor(widget.Window(), copy);
  SendMessageW(tips, TTM_POP, 0, 0);
  Tell(tips, tool);
}

}  // namespace platform
