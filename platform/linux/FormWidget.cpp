#include "platform/linux/FormWidget.h"

#include <algorithm>
#include <chrono>

#include <QAccessibleWidget>
#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QTimer>
#include <QWindow>

#include "platform/linux/Foreground.h"
#include "platform/linux/ThemeColours.h"
#include "platform/linux/Widgets.h"
#include "platform/linux/WindowManager.h"

namespace platform {

namespace {

using std::chrono_literals::operator""ms;

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

QAccessible::Role Role(const FormDesign& design) {
  if (design.ShowWithoutActivating) return QAccessible::Notification;
  return design.MinButton ? QAccessible::Window : QAccessible::Dialog;
}

}  // namespace

FormWidget::FormWidget(Form& form, const FormDesign& design)
    : QWidget(nullptr, Flags(design)),
      form_(&form),
      role_(Role(design)),
      inTaskbar_(design.ShowInTaskbar) {
  setObjectName(design.Name);
  setWindowTitle(design.Caption);
  // One icon for all windows: read for each, it would cost most of what a window costs.
  if (QApplication::windowIcon().isNull()) {
    QApplication::setWindowIcon(QIcon(":/assets/quillmere.ico"));
  }
  setMouseTracking(true);
  if (design.MaxButton) normalPlace_ = std::make_unique<NormalPlace>(*this);
  if (!main_) main_ = this;
}

QAccessibleInterface* FormWidget::NewAccessible() { return new QAccessibleWidget(this, role_); }

void FormWidget::closeEvent(QCloseEvent* event) {
  // The window goes by Unload alone, so that Form_Unload always runs first.
  event->ignore();
  if (form_) form_->Unload();
}

void FormWidget::resizeEvent(QResizeEvent*) {
  if (form_) form_->Form_Resize();
}

void FormWidget::changeEvent(QEvent* event) {
  if (event->type() == QEvent::WindowStateChange) StateChanged(event->spontaneous());
  if (event->type() == QEvent::PaletteChange) RenewThemeColours(*this);
  QWidget::changeEvent(event);
}

void FormWidget::StateChanged(bool byWindowManager) {
  // Qt 6.4.2 reads a window's state from two properties, and tells of a state between the two (seen
  // with IceWM 3.3: minimised, of a window that comes back). It tells of the right one afterwards.
  if (byWindowManager && IsMinimised(Id()) == !isMinimized()) return;
  const bool wasMinimised = std::exchange(isMinimised_, isMinimized());
  if (isVisible() && wasMinimised && !isMinimised_) CameBack();
  if (form_) form_->Form_Resize();
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
  if (!isVisible()) PrepareToShow();
  if (owner_) JoinOwner();
  const bool isThere =
      isVisible() && (isMinimized() || windowHandle()->isExposed() || IsOnOtherDesktop(Id()));
  wentAs_.reset();
  show();
  if (testAttribute(Qt::WA_ShowWithoutActivating)) return;
  if (isThere) {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    ComeForward(*this);
  }
  CameBack();
}

/// What window managers forget of a window that leaves the screen.
void FormWidget::PrepareToShow() {
  if (!inTaskbar_) LeaveTaskbar(Id());
  ComeUpIconic(Id(), isMinimised_);
  if (normalPlace_) normalPlace_->PrepareToShow();
}

/// Unless the owner is away: a window manager would keep a dialog off the screen together with it.
void FormWidget::JoinOwner() {
  const bool isOwned = windowType() != Qt::Dialog || owner_->IsInSight();
  QWindow* const owner = isOwned ? owner_->windowHandle() : nullptr;
  if (windowHandle()->transientParent() == owner) return;
  windowHandle()->setTransientParent(owner);
  if (isVisible()) SetOwner(Id(), isOwned ? owner_->Id() : xcb_window_t{XCB_NONE});
}

bool FormWidget::IsInSight() { return isVisible() && !isMinimized() && !IsOnOtherDesktop(Id()); }

void FormWidget::GoAway() {
  if (!wentAs_) wentAs_ = State();
  StayAway();
}

void FormWidget::HideInTaskbar(bool inTaskbar) {
  if (std::exchange(hidesInTaskbar_, inTaskbar) != inTaskbar && wentAs_) StayAway();
}

void FormWidget::StayAway() {
  if (!hidesInTaskbar_) return hide();
  setWindowState(State() | Qt::WindowMinimized);
  if (!isVisible()) PrepareToShow();
  show();
}

Qt::WindowStates FormWidget::State() const {
  if (wentAs_) return *wentAs_;
  Qt::WindowStates state = windowState();
  return state.setFlag(Qt::WindowMinimized, isMinimised_);
}

void FormWidget::BackToNormal() {
  if (wentAs_) wentAs_ = Qt::WindowNoState;
  if (normalPlace_) return normalPlace_->Restore();
  setWindowState(Qt::WindowNoState);
}

void FormWidget::CameBack() {
  wentAs_.reset();
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->windowType() == Qt::Window || !window->isVisible()) continue;
    auto* form = dynamic_cast<FormWidget*>(window);
    const bool isOwned = window->windowHandle()->transientParent() == windowHandle();
    const bool wasAlone = !isOwned && form && form->owner_ == this;
    if (!isOwned && !wasAlone) continue;
    window->windowHandle()->setTransientParent(windowHandle());
    // Of an owner that left the screen window managers forget what it owned.
    const auto id = static_cast<xcb_window_t>(window->winId());
    SetOwner(id, Id());
    ComeToThisDesktop(id);
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    if (wasAlone) QTimer::singleShot(100ms, form, [form] { form->StayAboveOwner(); });
  }
}

/// IceWM 3.3 leaves a window that hears of its owner late below it, and takes it for raised.
void FormWidget::StayAboveOwner() {
  if (isVisible() && owner_->IsInSight() && LiesBelow(Id(), owner_->Id())) Restack(Id());
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

}  // namespace platform
