#include <algorithm>
#include <malloc.h>
#include <map>
#include <utility>

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QMenu>
#include <QScreen>
#include <QWindow>

#include "platform/Forms.h"
#include "platform/linux/FormWidget.h"
#include "platform/linux/Handles.h"
#include "platform/linux/MenuPlace.h"
#include "platform/linux/PopupWindows.h"
#include "platform/linux/Widgets.h"

namespace platform {

struct Form::State {
  FormDesign Design;
  FormWidget* Window;
  bool Loaded = false;
  bool Unloading = false;
  bool KeptByFramework = false;
};

/// Frees a window that nobody owns. As a deferred deletion it waits until the stack has come back
/// to where the window's own procedure was called from.
class FormReaper : public QObject {
 public:
  explicit FormReaper(std::unique_ptr<Form> form) : form_(std::move(form)) { ++waiting_; }
  ~FormReaper() override;

 private:
  inline static std::size_t waiting_ = 0;
  std::unique_ptr<Form> form_;
};

namespace {

std::map<Form*, std::unique_ptr<Form>>& KeptForms() {
  // Never freed: where the process ends with windows open, they end with it.
  static auto& forms = *new std::map<Form*, std::unique_ptr<Form>>;
  return forms;
}

/// Gives the memory of a storm of windows back to the system, which the allocator would keep.
void GiveBackMemory(std::size_t stillKept) {
  constexpr std::size_t Storm = 1000;
  static std::size_t most = 0;
  most = std::max(most, stillKept);
  if (stillKept > 0 || most < Storm) return;
  most = 0;
  malloc_trim(0);
}

}  // namespace

FormReaper::~FormReaper() {
  form_.reset();
  GiveBackMemory(KeptForms().size() + --waiting_);
}

Form::Form(const FormDesign& design)
    : Container(::platform::Native(new FormWidget(*this, design))),
      state_(std::make_unique<State>()) {
  state_->Design = design;
  state_->Window = static_cast<FormWidget*>(Widget(*this));
  const QSize client(ToPixels(design.ClientWidth), ToPixels(design.ClientHeight));
  if (design.Border == BorderStyle::Sizable) {
    state_->Window->setMinimumSize(ToPixels(std::max(0, design.MinWidth - FrameWidth)),
                                   ToPixels(std::max(0, design.MinHeight - FrameHeight)));
    state_->Window->resize(client);
  } else {
    state_->Window->setFixedSize(client);
  }
  state_->Window->setAttribute(Qt::WA_ShowWithoutActivating, design.ShowWithoutActivating);
}

// The widget goes with the base class; no event of it may find this object half gone.
Form::~Form() {
  TakeOffPile(*state_->Window);
  state_->Window->Forget();
}

void Form::Load() {
  if (std::exchange(state_->Loaded, true)) return;
  if (state_->Design.CenterScreen) {
    const ScreenInfo screen = Screen();
    Left((screen.Width - Width()) / 2);
    Top((screen.Height - Height()) / 2);
  }
  Form_Load();
}

void Form::Show(const Form* owner) {
  Load();
  if (state_->Unloading) return;
  if (owner) state_->Window->Owner(*static_cast<FormWidget*>(Widget(*owner)));
  if (state_->Design.ShowWithoutActivating) return PutOnPile(*state_->Window);
  state_->Window->ComeUp();
}

void Form::Hide() {
  TakeOffPile(*state_->Window);
  state_->Window->GoAway();
}

void Form::Unload() {
  if (std::exchange(state_->Unloading, true)) return;
  Form_Unload();
  Hide();
  // Shown again, it starts with the keyboard at its first control.
  if (QWidget* focused = state_->Window->focusWidget()) focused->clearFocus();
  state_->Unloading = false;
  state_->Loaded = false;
  if (!state_->KeptByFramework) return;
  state_->Unloading = true;
  const auto kept = KeptForms().extract(this);
  (new FormReaper(std::move(kept.mapped())))->deleteLater();
}

// The toolkit takes "[*]" in a title for the place of its mark of change, and two of them for one.
std::string Form::Caption() const {
  return ToText(state_->Window->windowTitle().replace("[*][*]", "[*]"));
}
void Form::Caption(std::string_view text) {
  state_->Window->setWindowTitle(FromText(text).replace("[*]", "[*][*]"));
}

int Form::WindowState() const {
  const Qt::WindowStates state = state_->Window->State();
  if (state & Qt::WindowMinimized) return vbMinimized;
  return (state & Qt::WindowMaximized) ? vbMaximized : vbNormalState;
}

void Form::WindowState(int state) {
  switch (state) {
    case vbMinimized:
      return state_->Window->setWindowState(Qt::WindowMinimized);
    case vbMaximized:
      return state_->Window->setWindowState(Qt::WindowMaximized);
    default:
      return state_->Window->BackToNormal();
  }
}

void Form::PopupMenu(const Menu& menu) {
  auto* popup = static_cast<QMenu*>(Widget(menu.Native()));
  // A tray can ask for the menu while it is open; a second loop would take the first one's end.
  if (!popup->isVisible()) popup->exec(MenuPlace::Take());
}

void ShowNew(std::unique_ptr<Form> form, const Form* owner) {
  Form& kept = *form;
  kept.state_->KeptByFramework = true;
  KeptForms().emplace(&kept, std::move(form));
  kept.Show(owner);
}

ScreenInfo Screen() {
  const QSize size = QGuiApplication::primaryScreen()->size();
  return {ToTwips(size.width()), ToTwips(size.height()), TwipsPerPixel, TwipsPerPixel};
}

void DoEvents() {
  // One pass leaves out what its own handlers set off, and all that has a lower rank.
  constexpr int MostPasses = 20;
  QAbstractEventDispatcher* events = QAbstractEventDispatcher::instance();
  if (!events) return;  // a tool without windows
  for (int pass = 0; pass < MostPasses && !ProcessEnds; ++pass) {
    if (!events->processEvents(QEventLoop::AllEvents)) return;
  }
}

int SetWindowPos(std::uint32_t window, std::int32_t after, int x, int y, int cx, int cy,
                 std::uint32_t flags) {
  Control* control = ControlByHandle(window);
  if (!control || after != HWND_TOPMOST || flags != 0) return 0;
  QWidget* widget = Widget(*control);
  widget->setWindowFlag(Qt::WindowStaysOnTopHint);
  widget->move(QPoint(x, y) + Origin(*widget));
  control->Width(ToTwips(cx));
  control->Height(ToTwips(cy));
  return 1;
}

}  // namespace platform
