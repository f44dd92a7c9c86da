#include "platform/windows/SystemWindows.h"

#include "platform/windows/Widget.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "platform/Shell.h"
#include "platform/windows/EventLoop.h"
#include "platform/windows/Fonts.h"
#include "platform/windows/FormWidget.h"
#include "platform/windows/ToolTips.h"

namespace platform {

namespace {

constexpr int TwipsPerInch = 1440;
constexpr std::uint32_t ThemeBit = 0x80000000;

std::unordered_map<std::uint32_t, Control*>& Handles() {
  static auto& handles = *new std::unordered_map<std::uint32_t, Control*>;
  return handles;
}

/// Of the program's own, and not a property of the window's: the server is asked for each of those
/// under Wine, and a list tells its window of every cell.
std::unordered_map<HWND, NativeWidget*>& Widgets() {
  static auto& widgets = *new std::unordered_map<HWND, NativeWidget*>;
  return widgets;
}

}  // namespace

std::uint32_t NextHandle() {
  static std::uint32_t last = 0;
  return ++last;
}

Control* ControlByHandle(std::uint32_t handle) {
  const auto found = Handles().find(handle);
  return found == Handles().end() ? nullptr : found->second;
}

HINSTANCE Module() { return GetModuleHandleW(nullptr); }

COLORREF SystemColour(std::uint32_t colour) {
  if ((colour & ThemeBit) != 0) {
    // The face of a window is what the classic scroll bar was.
    return colour == vbScrollBars ? GetSysColor(COLOR_BTNFACE) : GetSysColor(COLOR_WINDOW);
  }
  return RGB((colour >> 16) & 0xFF, (colour >> 8) & 0xFF, colour & 0xFF);
}

// --- The window behind a widget ------------------------------------------------------------------

void NativeWidget::Discard() {
  if (window_ == nullptr) return;
  Widgets().erase(window_);
  DestroyWindow(std::exchange(window_, nullptr));
}

NativeWidget::~NativeWidget() {
  Discard();
  if (brush_ != nullptr) DeleteObject(brush_);
}

void NativeWidget::Create(const wchar_t* windowClass, DWORD style, DWORD extendedStyle) {
  const auto number = static_cast<INT_PTR>(TabIndex);
  Adopt(CreateWindowExW(extendedStyle, windowClass, Caption.c_str(),
                        style | WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, 0, 0, 0, 0,
                        parent_->Window(), reinterpret_cast<HMENU>(number), Module(), nullptr));
  Move(at_);
}

void NativeWidget::Adopt(HWND window) {
  window_ = window;
  Widgets().emplace(window, this);
  SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
  RenewFont();
}

NativeWidget* WidgetOf(HWND window) {
  const auto found = Widgets().find(window);
  return found == Widgets().end() ? nullptr : found->second;
}

int NativeWidget::Dpi() const {
  return static_cast<int>(window_ != nullptr ? GetDpiForWindow(window_) : GetDpiForSystem());
}
int NativeWidget::ToPixels(int twips) const { return MulDiv(twips, Dpi(), TwipsPerInch); }
int NativeWidget::ToTwips(int pixels) const { return MulDiv(pixels, TwipsPerInch, Dpi()); }

void NativeWidget::Move(const Place& to) {
  at_ = to;
  if (window_ == nullptr) return;
  ::SetWindowPos(window_, nullptr, ToPixels(to.Left), ToPixels(to.Top), ToPixels(to.Width),
                 ToPixels(to.Height), SWP_NOZORDER | SWP_NOACTIVATE);
}

void NativeWidget::Show(bool visible) {
  visible_ = visible;
  if (window_ == nullptr) return;
  if (!visible) Top().KeyboardLeaves(*this);
  ShowWindow(window_, visible ? SW_SHOWNA : SW_HIDE);
  if (visible) Top().KeyboardReturns(*this);
}

void NativeWidget::Enable(bool enabled) {
  if (!enabled) Top().KeyboardLeaves(*this);
  EnableWindow(window_, enabled);
}

bool NativeWidget::IsReachable() const {
  for (const NativeWidget* each = this; each->parent_ != nullptr; each = each->parent_) {
    if (!each->visible_ || !IsWindowEnabled(each->window_)) return false;
  }
  return true;
}

HFONT NativeWidget::Font() const { return DialogFont(Dpi(), underlined_); }

void NativeWidget::RenewFont() {
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(Font()), TRUE);
}

void NativeWidget::Underline(bool underline) {
  underlined_ = underline;
  RenewFont();
}

// --- Colours -------------------------------------------------------------------------------------

void NativeWidget::BackColor(std::uint32_t colour) {
  back_ = colour;
  if (window_ != nullptr) InvalidateRect(window_, nullptr, TRUE);
}

COLORREF NativeWidget::Background() const {
  if (back_) return SystemColour(*back_);
  return parent_ != nullptr ? parent_->Background() : GetSysColor(COLOR_BTNFACE);
}

HBRUSH NativeWidget::Brush() {
  const COLORREF wanted = Background();
  if (brush_ == nullptr || brushColour_ != wanted) {
    if (brush_ != nullptr) DeleteObject(brush_);
    brush_ = CreateSolidBrush(wanted);
    brushColour_ = wanted;
  }
  return brush_;
}

LRESULT NativeWidget::Colour(HDC context) {
  SetBkColor(context, Background());
  SetTextColor(context, fore_ ? SystemColour(*fore_) : GetSysColor(COLOR_WINDOWTEXT));
  return reinterpret_cast<LRESULT>(Brush());
}

// --- Messages ------------------------------------------------------------------------------------

LRESULT CALLBACK NativeWidget::Procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  const auto ofClass = reinterpret_cast<WNDPROC>(GetClassLongPtrW(window, GCLP_WNDPROC));
  NativeWidget* const self = WidgetOf(window);
  if (self == nullptr) return CallWindowProcW(ofClass, window, message, w, l);
  const ProcedureRuns runs(self->Top());
  LRESULT result = 0;
  if (message == WM_MOUSEMOVE) self->TellCutText(l);
  if (self->Reflect(message, w, l, result) || self->OnMessage(message, w, l, result)) return result;
  return CallWindowProcW(ofClass, window, message, w, l);
}

void NativeWidget::DoLater(std::function<void()> action) const {
  Later([lives = std::weak_ptr(lives_), action = std::move(action)] {
    if (!lives.expired()) action();
  });
}

void NativeWidget::TellCutText(LPARAM pointer) {
  std::wstring text = CutTextAt({GET_X_LPARAM(pointer), GET_Y_LPARAM(pointer)});
  if (text == cutText_) return;
  cutText_ = std::move(text);
  ChangeToolTip(*this, cutText_);
}

bool NativeWidget::Fits(const std::wstring& text, int pixels) const {
  const HDC context = GetDC(window_);
  const HGDIOBJ before = SelectObject(context, Font());
  SIZE size{};
  GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &size);
  SelectObject(context, before);
  ReleaseDC(window_, context);
  return size.cx <= pixels;
}

bool NativeWidget::OnMessage(UINT, WPARAM, LPARAM, LRESULT&) { return false; }

/// Hands on what a control tells the window that it lies in.
bool NativeWidget::Reflect(UINT message, WPARAM w, LPARAM l, LRESULT& result) {
  switch (message) {
    case WM_COMMAND:
      if (NativeWidget* control = WidgetOf(reinterpret_cast<HWND>(l))) {
        control->OnCommand(HIWORD(w));
        return true;
      }
      return false;
    case WM_NOTIFY: {
      auto& header = *reinterpret_cast<NMHDR*>(l);
      NativeWidget* control = WidgetOf(header.hwndFrom);
      return control != nullptr && control != this && control->OnNotify(header, result);
    }
    case WM_CTLCOLORBTN:
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORSTATIC: {
      NativeWidget* control = WidgetOf(reinterpret_cast<HWND>(l));
      const bool own = control != nullptr && (message != WM_CTLCOLOREDIT || control->back_);
      if (own) result = control->Colour(reinterpret_cast<HDC>(w));
      return own;
    }
    case WM_ERASEBKGND: {
      if (!paintsBack_) return false;
      RECT area;
      GetClientRect(window_, &area);
      FillRect(reinterpret_cast<HDC>(w), &area, Brush());
      result = 1;
      return true;
    }
    default:
      return false;
  }
}

// --- Control -------------------------------------------------------------------------------------

Control::Control(NativeWidget* native) : native_(native), handle_(NextHandle()) {
  Handles().emplace(handle_, this);
}

Control::Control(Container&, const Design& design, NativeWidget* native) : Control(native) {
  Move(design.At);
  if (*design.AccessibleName != '\0') NameForReaders(native->Window(), design.AccessibleName);
  native->Top().AddTabStop(*native);
}

Control::~Control() {
  Handles().erase(handle_);
  if (native_->Parent() != nullptr) native_->Top().RemoveTabStop(*native_);
  delete native_;
}

int Control::Left() const { return native_->At().Left; }
int Control::Top() const { return native_->At().Top; }
int Control::Width() const { return native_->At().Width; }
int Control::Height() const { return native_->At().Height; }

void Control::Left(int twips) { Move({twips, Top(), Width(), Height()}); }
void Control::Top(int twips) { Move({Left(), twips, Width(), Height()}); }
void Control::Width(int twips) { Move({Left(), Top(), std::max(0, twips), Height()}); }
void Control::Height(int twips) { Move({Left(), Top(), Width(), std::max(0, twips)}); }
void Control::Move(const Place& to) { native_->Move(to); }

bool Control::Visible() const { return native_->Visible(); }
void Control::Visible(bool visible) { native_->Show(visible); }
bool Control::Enabled() const { return IsWindowEnabled(native_->Window()) != FALSE; }
void Control::Enabled(bool enabled) { native_->Enable(enabled); }

std::uint32_t Control::BackColor() const {
  const COLORREF colour = native_->Background();
  return (std::uint32_t{GetRValue(colour)} << 16) | (std::uint32_t{GetGValue(colour)} << 8) |
         std::uint32_t{GetBValue(colour)};
}
void Control::BackColor(std::uint32_t colour) { native_->BackColor(colour); }
void Control::ForeColor(std::uint32_t colour) { native_->ForeColor(colour); }
void Control::FontUnderline(bool underline) { native_->Underline(underline); }
void Control::ToolTipText(std::string_view text) {
  ShowToolTip(*native_, Wide(text));
  DescribeForReaders(native_->Window(), std::string(text));
}
void Control::SetFocus() { ::SetFocus(native_->Window()); }
bool Control::HasFocus() const { return native_->Top().Keyboard() == native_->Window(); }

}  // namespace platform
