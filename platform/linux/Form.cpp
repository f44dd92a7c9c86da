#include <algorithm>
#include <malloc.h>
#include <map>
#include <utility>

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QWindow>

#include "platform/Forms.h"
#include "platform/linux/FormWidget.h"
#include "platform/linux/PopupPile.h"
#include "platform/linux/Widgets.h"
#include "platform/linux/XServer.h"

namespace platform {

namespace {

Qt::WindowFlags Flags(const FormDesign& design) {
  // Only of a dialog do window managers learn the owner.
  Qt::WindowFlags flags = !design.ShowInTaskbar ? Qt::Tool
                          : design.MinButton    ? Qt::Window
                                                : Qt::Dialog;
  flags |= Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowCloseButtonHint;
  if (design.MinButton) flags |= Qt::WindowMinimizeButtonHint;
  if (design.MaxButton) flags |= Qt::WindowMaximizeButtonHint;
  return flags;
}

}  // namespace

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

/// To the front; over it the question that is open, if any, which alone can be used then.
void ComeForward(QWidget& window) {
  window.raise();
  window.activateWindow();
  QWidget* question = QApplication::activeModalWidget();
  if (!question || question == &window) return;
  question->raise();
  question->activateWindow();
}

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

FormWidget::FormWidget(Form& form, const FormDesign& design)
    : QWidget(nullptr, Flags(design)), form_(&form), inTaskbar_(design.ShowInTaskbar) {
  setObjectName(design.Name);
  setWindowTitle(design.Caption);
  // One icon for all windows: read for each, it would cost most of what a window costs.
  if (QApplication::windowIcon().isNull()) {
    QApplication::setWindowIcon(QIcon(":/assets/quillmere.ico"));
  }
  setMouseTracking(true);
  if (!main_) main_ = this;
}

void FormWidget::closeEvent(QCloseEvent* event) {
  // The window goes by Unload alone, so that Form_Unload always runs first.
  event->ignore();
  if (form_) form_->Unload();
}

void FormWidget::moveEvent(QMoveEvent*) { MovedOnPile(*this); }

void FormWidget::resizeEvent(QResizeEvent*) {
  if (form_) form_->Form_Resize();
}

void FormWidget::changeEvent(QEvent* event) {
  if (form_ && event->type() == QEvent::WindowStateChange) form_->Form_Resize();
  if (event->type() == QEvent::PaletteChange) RenewThemeColours(*this);
  QWidget::changeEvent(event);
}

void FormWidget::mouseMoveEvent(QMouseEvent* event) {
  if (!form_) return;
  form_->Form_MouseMove(static_cast<float>(ToTwips(event->position().toPoint().x())));
}

void FormWidget::AddTabStop(int index, QWidget* widget) { tabStops_.emplace_back(index, widget); }

void FormWidget::ComeUp() {
  if (!std::exchange(cameUp_, true)) {
    if (form_) form_->Form_FirstShow();
    ApplyTabOrder();
  }
  // Window managers forget it of a window that leaves the screen.
  if (!inTaskbar_ && !isVisible()) LeaveTaskbar(static_cast<xcb_window_t>(winId()));
  const bool isThere = isVisible() && (isMinimized() || windowHandle()->isExposed());
  show();
  if (testAttribute(Qt::WA_ShowWithoutActivating)) return;
  if (isThere) {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    ComeForward(*this);
  }
  BringOwnedBack();
}

void FormWidget::BringOwnedBack() const {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->windowType() == Qt::Window || !window->isVisible() || !window->isMinimized() ||
        window->windowHandle()->transientParent() != windowHandle()) {
      continue;
    }
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
  }
}

void FormWidget::ApplyTabOrder() {
  std::stable_sort(tabStops_.begin(), tabStops_.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  QWidget* before = nullptr;
  for (const auto& [index, widget] : tabStops_) {
    const QWidget* target = widget->focusProxy() ? widget->focusProxy() : widget;
    if (target->focusPolicy() == Qt::NoFocus) continue;
    if (before) setTabOrder(before, widget);
    before = widget;
  }
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
  const QWidget* window = state_->Window;
  if (owner && !window->isVisible()) {
    const QWidget* holder = Widget(*owner);
    // A window manager would keep a dialog off the screen together with its owner.
    const bool isOwned =
        window->windowType() != Qt::Dialog || (holder->isVisible() && !holder->isMinimized());
    window->winId();  // makes the native window, which alone can have an owner
    window->windowHandle()->setTransientParent(isOwned ? holder->windowHandle() : nullptr);
  }
  if (state_->Design.ShowWithoutActivating) return PutOnPile(*state_->Window);
  state_->Window->ComeUp();
}

void Form::Hide() {
  TakeOffPile(*state_->Window);
  state_->Window->hide();
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
  const Qt::WindowStates state = state_->Window->windowState();
  if (state & Qt::WindowMinimized) return vbMinimized;
  return (state & Qt::WindowMaximized) ? vbMaximized : vbNormalState;
}

void Form::WindowState(int state) {
  const Qt::WindowStates wanted = state == vbMinimized   ? Qt::WindowMinimized
                                  : state == vbMaximized ? Qt::WindowMaximized
                                                         : Qt::WindowNoState;
  state_->Window->setWindowState(wanted);
}

void Form::PopupMenu(const Menu& menu) {
  auto* popup = static_cast<QMenu*>(Widget(menu.Native()));
  // A tray can ask for the menu while it is open; a second loop would take the first one's end.
  if (!popup->isVisible()) popup->exec(QCursor::pos());
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

namespace {

bool IsPopup(const QWidget& window) { return window.testAttribute(Qt::WA_ShowWithoutActivating); }

int openBoxes = 0;

}  // namespace

bool InsideMsgBox() { return openBoxes > 0; }

int MsgBox(const std::string& text, int flags) {
  QWidget* parent = FormWidget::Main();
  QMessageBox box(parent);
  box.setWindowTitle(QCoreApplication::applicationName());
  box.setText(FromText(text));
  box.setIcon(flags & MB_ICONQUESTION      ? QMessageBox::Question
              : flags & MB_ICONINFORMATION ? QMessageBox::Information
                                           : QMessageBox::NoIcon);
  if (flags & MB_YESNO) {
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
  }
  // The main window and those that it owns are blocked. Popups can be used, and what they open.
  if (parent) box.setWindowModality(Qt::WindowModal);
  ++openBoxes;
  const int answer = box.exec();
  --openBoxes;
  switch (answer) {
    case QMessageBox::Yes:
      return IDYES;
    case QMessageBox::No:
      return IDNO;
    default:
      return IDOK;
  }
}

int SetForegroundWindow(std::uint32_t window) {
  const Control* control = ControlByHandle(window);
  if (!control) return 0;
  QWidget* widget = Widget(*control);
  // A request for one that is not on the screen would bring it there, now or later.
  if (!widget->isVisible() || widget->isMinimized()) return 0;
  ComeForward(*widget);
  return 1;
}

bool AppActivate(const std::string& title) {
  const QString wanted = FromText(title);
  QWidget* found = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (!window->isVisible() || window->windowTitle() != wanted) continue;
    // Popups have the main window's title, and are only taken when there is nothing else.
    if (!found || IsPopup(*found)) found = window;
  }
  if (!found) return false;
  ComeForward(*found);
  return true;
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
