#include "platform/linux/FormWidget.h"

#include <algorithm>

#include <QAccessibleWidget>
#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QWindow>

#include "platform/linux/Foreground.h"
#include "platform/linux/ThemeColours.h"
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

}  // namespace platform
