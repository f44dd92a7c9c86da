#include "platform/windows/SystemWindows.h"

#include "platform/windows/FormWidget.h"

#include <algorithm>
#include <utility>

#include "platform/Shell.h"
#include "platform/windows/EventLoop.h"
#include "platform/windows/Resources.h"

namespace platform {

namespace {

constexpr const wchar_t* FormClass = L"QuillmereForm";
constexpr int TwipsPerInch = 1440;
// A window's frame counts this much, in twips, whatever the desktop draws around it.
constexpr int FrameWidth = 120;
constexpr int FrameHeight = 420;

/// Owns what has no button in the task bar.
HWND HiddenOwner() {
  static const HWND owner =
      CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr, Module(), nullptr);
  return owner;
}

void RegisterFormClass() {
  static const ATOM known = [] {
    WNDCLASSEXW design{};
    design.cbSize = sizeof design;
    design.lpfnWndProc = DefWindowProcW;
    design.hInstance = Module();
    design.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    design.lpszClassName = FormClass;
    return RegisterClassExW(&design);
  }();
  static_cast<void>(known);
}

// Places count from the primary screen's corner, in that screen's scale.
int ScreenPixels(int twips) {
  return MulDiv(twips, static_cast<int>(GetDpiForSystem()), TwipsPerInch);
}
int ScreenTwips(int pixels) {
  return MulDiv(pixels, TwipsPerInch, static_cast<int>(GetDpiForSystem()));
}

}  // namespace

FormWidget::FormWidget(Form& form, const FormDesign& design)
    : NativeWidget(nullptr), design_(design), title_(Wide(design.Caption)) {
  paintsBack_ = true;
  all_.push_back(this);
  if (main_ == nullptr) main_ = this;
  NotePlace({0, 0, design.ClientWidth + FrameWidth, design.ClientHeight + FrameHeight});
  if (!design.ShowWithoutActivating) Realise();
  form_ = &form;  // which is told nothing before: it is only about to be made
}

FormWidget::~FormWidget() {
  std::erase(all_, this);
  for (FormWidget* window : all_) {
    if (window->belongsTo_ == this) window->BelongTo(nullptr);
  }
  if (main_ == this) main_ = nullptr;
}

void FormWidget::Realise() {
  if (Window() != nullptr) return;
  RegisterFormClass();
  HWND owner = nullptr;
  if (!design_.ShowInTaskbar) owner = HiddenOwner();
  Adopt(CreateWindowExW(ExtendedStyle(), FormClass, title_.c_str(), Style(), 0, 0, 0, 0, owner,
                        nullptr, Module(), nullptr));
  const RECT outer = Outer(At());
  ::SetWindowPos(Window(), nullptr, outer.left, outer.top, outer.right - outer.left,
                 outer.bottom - outer.top, SWP_NOZORDER | SWP_NOACTIVATE);
  for (const auto& [kind, metric] : {std::pair(ICON_SMALL, SM_CXSMICON), {ICON_BIG, SM_CXICON}}) {
    const int size = GetSystemMetricsForDpi(metric, static_cast<UINT>(Dpi()));
    SendMessageW(Window(), WM_SETICON, static_cast<WPARAM>(kind),
                 reinterpret_cast<LPARAM>(IconOfSize("quillmere.ico", size)));
  }
}

DWORD FormWidget::Style() const {
  DWORD style = WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN;
  if (design_.MinButton) style |= WS_MINIMIZEBOX;
  if (design_.MaxButton) style |= WS_MAXIMIZEBOX;
  if (design_.Border == BorderStyle::Sizable) style |= WS_THICKFRAME;
  return style;
}

DWORD FormWidget::ExtendedStyle() const {
  DWORD style = WS_EX_CONTROLPARENT;
  if (design_.Border == BorderStyle::FixedDialog) style |= WS_EX_DLGMODALFRAME;
  if (topmost_) style |= WS_EX_TOPMOST;
  return style;
}

// --- Place and state -----------------------------------------------------------------------------

RECT FormWidget::Outer(const Place& place) const {
  RECT area{0, 0, ToPixels(place.Width - FrameWidth), ToPixels(place.Height - FrameHeight)};
  AdjustWindowRectExForDpi(&area, Style(), FALSE, ExtendedStyle(), static_cast<UINT>(Dpi()));
  OffsetRect(&area, ScreenPixels(place.Left) - area.left, ScreenPixels(place.Top) - area.top);
  return area;
}

void FormWidget::Move(const Place& to) {
  if (Window() == nullptr) return NativeWidget::Move(to);
  const RECT outer = Outer(to);
  const bool sized = to.Width != At().Width || to.Height != At().Height;
  const bool moved = to.Left != At().Left || to.Top != At().Top;
  ::SetWindowPos(
      Window(), nullptr, outer.left, outer.top, outer.right - outer.left, outer.bottom - outer.top,
      SWP_NOZORDER | SWP_NOACTIVATE | (sized ? 0u : SWP_NOSIZE) | (moved ? 0u : SWP_NOMOVE));
}

/// The system's window is where it is now: that is the place.
void FormWidget::Moved() {
  if (IsIconic(Window())) return;
  RECT outer;
  RECT client;
  GetWindowRect(Window(), &outer);
  GetClientRect(Window(), &client);
  NotePlace({ScreenTwips(outer.left), ScreenTwips(outer.top), ToTwips(client.right) + FrameWidth,
             ToTwips(client.bottom) + FrameHeight});
}

void FormWidget::LimitSize(MINMAXINFO& limits) const {
  if (design_.MinWidth == 0) return;
  const RECT least = Outer({0, 0, design_.MinWidth, design_.MinHeight});
  limits.ptMinTrackSize = {least.right - least.left, least.bottom - least.top};
}

void FormWidget::ChangeScale(const RECT& suggested) {
  ::SetWindowPos(Window(), nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
                 suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
  const auto renew = [](HWND child, LPARAM) -> BOOL {
    if (NativeWidget* widget = WidgetOf(child)) {
      widget->RenewFont();
      widget->Move(widget->At());
    }
    return TRUE;
  };
  EnumChildWindows(Window(), renew, 0);
  InvalidateRect(Window(), nullptr, TRUE);
}

int FormWidget::WindowState() const {
  if (Window() == nullptr) return vbNormalState;
  if (IsIconic(Window())) return vbMinimized;
  return IsZoomed(Window()) ? vbMaximized : vbNormalState;
}

void FormWidget::WindowState(int state) {
  if (Window() == nullptr || state == WindowState()) return;
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  GetWindowPlacement(Window(), &placement);
  placement.flags = 0;  // or one minimised from its full size would come back to that
  placement.showCmd = state == vbMinimized   ? static_cast<UINT>(SW_SHOWMINIMIZED)
                      : state == vbMaximized ? static_cast<UINT>(SW_SHOWMAXIMIZED)
                                             : static_cast<UINT>(SW_SHOWNORMAL);
  SetWindowPlacement(Window(), &placement);
  // Wine 8 does not heed the flags.
  if (state != WindowState()) SetWindowPlacement(Window(), &placement);
}

void FormWidget::Title(const std::wstring& title) {
  title_ = title;
  if (Window() != nullptr) SetWindowTextW(Window(), title.c_str());
}

void FormWidget::Topmost() {
  topmost_ = true;
  if (Window() == nullptr) return;
  ::SetWindowPos(Window(), reinterpret_cast<HWND>(INT_PTR{-1}), 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

// --- On the screen and off it --------------------------------------------------------------------

void FormWidget::ComeUp() {
  Realise();
  if (!std::exchange(cameUp_, true) && form_ != nullptr) form_->Form_FirstShow();
  if (design_.ShowWithoutActivating) {
    ShowWindow(Window(), SW_SHOWNOACTIVATE);
    return;
  }
  const bool isThere = IsOnScreen();
  if (IsIconic(Window())) {
    ShowWindow(Window(), isThere ? SW_RESTORE : SW_SHOWMINNOACTIVE);
  } else {
    ShowWindow(Window(), SW_SHOW);
  }
  if (isThere) ::SetForegroundWindow(Window());
}

void FormWidget::GoAway() {
  if (Window() != nullptr) ShowWindow(Window(), SW_HIDE);
}

/// It may come up again, and then makes what is on it anew.
void FormWidget::PutAway() {
  GoAway();
  if (ProceduresRunning > 0 || form_ == nullptr) return;
  form_->Form_PutAway();
  Discard();
  cameUp_ = false;
}

void FormWidget::BelongTo(FormWidget* owner) {
  belongsTo_ = owner;
  if (design_.MinButton || !design_.ShowInTaskbar) return;  // goes its own ways
  const HWND above = owner != nullptr && owner->IsOnScreen() && !IsIconic(owner->Window())
                         ? owner->Window()
                         : nullptr;
  SetWindowLongPtrW(Window(), GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(above));
}

// --- The keyboard --------------------------------------------------------------------------------

namespace {

/// What had the keyboard when it was hidden, until the next event.
NativeWidget* hiddenWithKeyboard = nullptr;

void TakeKeyboard(const NativeWidget& widget) {
  SetFocus(widget.Window());
  const bool selects = (SendMessageW(widget.Window(), WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0;
  const bool hasLines = (GetWindowLongW(widget.Window(), GWL_STYLE) & ES_MULTILINE) != 0;
  if (selects && !hasLines) SendMessageW(widget.Window(), EM_SETSEL, 0, -1);
}

}  // namespace

void FormWidget::AddTabStop(NativeWidget& widget) {
  const auto after = std::upper_bound(
      tabStops_.begin(), tabStops_.end(), widget.TabIndex,
      [](int index, const NativeWidget* other) { return index < other->TabIndex; });
  if (widget.TabIndex >= 0) tabStops_.insert(after, &widget);
}

void FormWidget::RemoveTabStop(NativeWidget& widget) {
  std::erase(tabStops_, &widget);
  if (hiddenWithKeyboard == &widget) hiddenWithKeyboard = nullptr;
  if (CancelButton == &widget) CancelButton = nullptr;
}

void FormWidget::FocusNext(bool backwards) {
  const auto count = static_cast<int>(tabStops_.size());
  const auto now = std::find(tabStops_.begin(), tabStops_.end(), WidgetOf(GetFocus()));
  const int step = backwards ? count - 1 : 1;
  int at = now != tabStops_.end() ? static_cast<int>(now - tabStops_.begin())
                                  : (backwards ? 0 : count - 1);
  for (int i = 0; i < count; ++i) {
    at = (at + step) % count;
    const NativeWidget& widget = *tabStops_[static_cast<std::size_t>(at)];
    if (widget.TakesKeyboard && widget.IsReachable()) return TakeKeyboard(widget);
  }
}

HWND FormWidget::Keyboard() const {
  const HWND focus = GetFocus();
  return focus != nullptr && IsChild(Window(), focus) ? focus : lastKeyboard_;
}

void FormWidget::KeyboardLeaves(NativeWidget& widget) {
  const HWND focus = GetFocus();
  if (focus == nullptr || (focus != widget.Window() && !IsChild(widget.Window(), focus))) return;
  hiddenWithKeyboard = &widget;
  Later([] { hiddenWithKeyboard = nullptr; });
  FocusNext(false);
}

void FormWidget::KeyboardReturns(NativeWidget& widget) {
  if (hiddenWithKeyboard == &widget) SetFocus(widget.Window());
}

void FormWidget::ForgetKeyboard() {
  if (Window() != nullptr && IsChild(Window(), GetFocus())) SetFocus(nullptr);
  lastKeyboard_ = nullptr;
}

void FormWidget::KeepKeyboard(bool active) {
  if (!active) {
    const HWND focus = GetFocus();
    if (focus != nullptr && IsChild(Window(), focus)) lastKeyboard_ = focus;
    return;
  }
  if (IsIconic(Window())) return;
  const NativeWidget* last = IsWindow(lastKeyboard_) ? WidgetOf(lastKeyboard_) : nullptr;
  if (last != nullptr && last->IsReachable()) {
    SetFocus(lastKeyboard_);
  } else {
    FocusNext(false);
  }
}

// --- Messages ------------------------------------------------------------------------------------

bool FormWidget::OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) {
  switch (message) {
    case WM_CLOSE:
      if (form_ != nullptr) form_->Unload();
      return true;
    case WM_WINDOWPOSCHANGED:
      Moved();
      return false;
    case WM_SIZE:
      if (form_ != nullptr) form_->Form_Resize();
      return false;
    case WM_MOUSEMOVE:
      if (form_ != nullptr) form_->Form_MouseMove(static_cast<float>(ToTwips(GET_X_LPARAM(l))));
      return false;
    case WM_GETMINMAXINFO:
      LimitSize(*reinterpret_cast<MINMAXINFO*>(l));
      return true;
    case WM_DPICHANGED:
      ChangeScale(*reinterpret_cast<const RECT*>(l));
      return true;
    case WM_ACTIVATE:
      KeepKeyboard(LOWORD(w) != WA_INACTIVE);
      return true;
    case WM_QUERYENDSESSION:
      result = TRUE;
      return true;
    case WM_ENDSESSION:
      if (w != FALSE && this == main_ && form_ != nullptr) form_->Unload();
      return true;
    default:
      return false;
  }
}

}  // namespace platform
