#include "platform/windows/SystemWindows.h"

#include "platform/windows/Keyboard.h"

#include "platform/windows/FormWidget.h"

namespace platform {

namespace {

bool IsDown(int key) { return GetKeyState(key) < 0; }

/// The letter behind the caption's single "&", in upper case; 0 for none.
wchar_t Mnemonic(const std::wstring& caption) {
  for (std::size_t at = caption.find(L'&'); at + 1 < caption.size(); at = caption.find(L'&', at)) {
    if (caption[at + 1] != L'&') {
      const auto upper = reinterpret_cast<ULONG_PTR>(
          CharUpperW(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(caption[at + 1]))));
      return static_cast<wchar_t>(upper);
    }
    at += 2;
  }
  return 0;
}

bool PressMnemonic(const FormWidget& form, wchar_t letter) {
  const wchar_t wanted[] = {L'&', letter, 0};
  for (NativeWidget* widget : form.TabStops()) {
    const wchar_t own = Mnemonic(widget->Caption);
    if (own == 0 || own != Mnemonic(wanted) || !widget->IsReachable()) continue;
    SetFocus(widget->Window());
    return widget->Press();
  }
  return false;
}

void ShowCues(HWND window) {
  SendMessageW(window, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS | UISF_HIDEACCEL), 0);
}

bool PressAccelerator(const FormWidget& form, WPARAM key) {
  const int shift = (IsDown(VK_SHIFT) ? vbShiftMask : 0) | (IsDown(VK_CONTROL) ? vbCtrlMask : 0);
  for (const FormWidget::Accelerator& accelerator : form.Accelerators) {
    if (static_cast<WPARAM>(accelerator.Key) != key || accelerator.Shift != shift) continue;
    if (IsWindowEnabled(form.Window())) accelerator.Pressed();
    return true;
  }
  return false;
}

bool PressKey(FormWidget& form, WPARAM key, HWND focus) {
  if (PressAccelerator(form, key)) return true;
  switch (key) {
    case VK_TAB:
      ShowCues(form.Window());
      form.FocusNext(IsDown(VK_SHIFT));
      return true;
    case VK_ESCAPE:
      return form.CancelButton != nullptr && form.CancelButton->IsReachable() &&
             form.CancelButton->Press();
    case VK_RETURN: {
      NativeWidget* widget = WidgetOf(focus);
      return widget != nullptr && widget->Press();
    }
    default:
      return false;
  }
}

}  // namespace

bool TranslateKeys(const MSG& message) {
  if (message.message != WM_KEYDOWN && message.message != WM_SYSKEYDOWN &&
      message.message != WM_SYSCHAR) {
    return false;
  }
  auto* form = dynamic_cast<FormWidget*>(WidgetOf(GetAncestor(message.hwnd, GA_ROOT)));
  if (form == nullptr) return false;
  const ProcedureRuns runs(*form);
  if (message.message == WM_KEYDOWN) return PressKey(*form, message.wParam, message.hwnd);
  ShowCues(form->Window());
  return message.message == WM_SYSCHAR &&
         PressMnemonic(*form, static_cast<wchar_t>(message.wParam));
}

}  // namespace platform
