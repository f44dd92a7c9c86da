#include "platform/windows/SystemWindows.h"

#include <map>
#include <utility>

#include "platform/windows/EventLoop.h"
#include "platform/windows/FormWidget.h"
#include "platform/windows/PopupWindows.h"

namespace platform {

struct Form::State {
  bool Loaded = false;
  bool Unloading = false;
  bool KeptByFramework = false;
};

namespace {

FormWidget& WindowOf(const Form& form) { return WidgetAs<FormWidget>(form); }

std::map<Form*, std::unique_ptr<Form>>& KeptForms() {
  // Never freed: where the process ends with windows open, they end with it.
  static auto& forms = *new std::map<Form*, std::unique_ptr<Form>>;
  return forms;
}

/// To the front; over it the question that is open, if any, which alone can be used then.
void ComeForward(HWND window) { ::SetForegroundWindow(GetLastActivePopup(window)); }

}  // namespace

Form::Form(const FormDesign& design)
    : Container(new FormWidget(*this, design)), state_(std::make_unique<State>()) {}

Form::~Form() {
  FormWidget& window = WindowOf(*this);
  TakeOffPile(window);
  window.Forget();
}

void Form::Load() {
  if (std::exchange(state_->Loaded, true)) return;
  if (WindowOf(*this).Design().CenterScreen) {
    const ScreenInfo screen = Screen();
    Left((screen.Width - Width()) / 2);
    Top((screen.Height - Height()) / 2);
  }
  Form_Load();
}

void Form::Show(const Form* owner) {
  Load();
  if (state_->Unloading) return;
  FormWidget& window = WindowOf(*this);
  if (owner != nullptr && !window.IsOnScreen()) window.BelongTo(&WindowOf(*owner));
  if (window.Design().ShowWithoutActivating) return PutOnPile(window);
  window.ComeUp();
}

void Form::Hide() {
  TakeOffPile(WindowOf(*this));
  WindowOf(*this).GoAway();
}

void Form::Unload() {
  if (std::exchange(state_->Unloading, true)) return;
  Form_Unload();
  Hide();
  WindowOf(*this).ForgetKeyboard();
  state_->Unloading = false;
  state_->Loaded = false;
  if (!state_->KeptByFramework) return;
  state_->Unloading = true;
  FreeLater(std::move(KeptForms().extract(this).mapped()));
}

std::string Form::Caption() const { return Narrow(WindowOf(*this).Title()); }
void Form::Caption(std::string_view text) { WindowOf(*this).Title(Wide(text)); }

void Form::Accelerator(int KeyCode, int Shift, std::function<void()> Pressed) {
  WindowOf(*this).Accelerators.push_back({KeyCode, Shift, std::move(Pressed)});
}

int Form::WindowState() const { return WindowOf(*this).WindowState(); }
void Form::WindowState(int state) { WindowOf(*this).WindowState(state); }

void ShowNew(std::unique_ptr<Form> form, const Form* owner) {
  Form& kept = *form;
  kept.state_->KeptByFramework = true;
  KeptForms().emplace(&kept, std::move(form));
  kept.Show(owner);
}

ScreenInfo Screen() {
  constexpr int TwipsPerDot = 15;
  constexpr int TwipsPerInch = 1440;
  const auto twips = [](int metric) {
    return MulDiv(GetSystemMetrics(metric), TwipsPerInch, static_cast<int>(GetDpiForSystem()));
  };
  return {twips(SM_CXSCREEN), twips(SM_CYSCREEN), TwipsPerDot, TwipsPerDot};
}

int SetForegroundWindow(std::uint32_t window) {
  const Control* control = ControlByHandle(window);
  if (control == nullptr || Widget(*control).Window() == nullptr) return 0;
  ComeForward(Widget(*control).Window());
  return 1;
}

bool AppActivate(const std::string& title) {
  const std::wstring wanted = Wide(title);
  const FormWidget* found = nullptr;
  for (const FormWidget* window : FormWidget::All()) {
    if (!window->IsOnScreen() || window->Title() != wanted) continue;
    // Popups have the main window's title, and are only taken when there is nothing else.
    if (found == nullptr || found->Design().ShowWithoutActivating) found = window;
  }
  if (found == nullptr) return false;
  ComeForward(found->Window());
  return true;
}

int SetWindowPos(std::uint32_t window, std::int32_t after, int x, int y, int cx, int cy,
                 std::uint32_t flags) {
  Control* control = ControlByHandle(window);
  auto* form = control != nullptr ? dynamic_cast<FormWidget*>(control->Native()) : nullptr;
  if (form == nullptr || after != HWND_TOPMOST || flags != 0) return 0;
  const ScreenInfo screen = Screen();
  form->Topmost();
  const bool sizable = form->Design().Border == BorderStyle::Sizable;
  form->Move({x * screen.TwipsPerPixelX, y * screen.TwipsPerPixelY,
              sizable ? cx * screen.TwipsPerPixelX : form->At().Width,
              sizable ? cy * screen.TwipsPerPixelY : form->At().Height});
  return 1;
}

}  // namespace platform
