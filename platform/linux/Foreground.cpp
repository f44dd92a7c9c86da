#include "platform/linux/Foreground.h"

#include <QApplication>

#include "platform/Forms.h"
#include "platform/linux/Handles.h"
#include "platform/linux/Widgets.h"
#include "platform/linux/WindowManager.h"

namespace platform {

namespace {

void BringToFront(QWidget& window) {
  const auto id = static_cast<xcb_window_t>(window.winId());
  ComeToThisDesktop(id);
  window.raise();
  window.activateWindow();
  AskForFront(id);
}

bool IsPopup(const QWidget& window) { return window.testAttribute(Qt::WA_ShowWithoutActivating); }

}  // namespace

void ComeForward(QWidget& window) {
  BringToFront(window);
  QWidget* question = QApplication::activeModalWidget();
  if (question && question != &window) BringToFront(*question);
}

int SetForegroundWindow(std::uint32_t window) {
  const Control* control = ControlByHandle(window);
  if (!control) return 0;
  QWidget* widget = Widget(*control);
  // A request for one that is not on the screen would bring it there, now or later.
  if (!widget->isVisible() || widget->isMinimized() ||
      IsOnOtherDesktop(static_cast<xcb_window_t>(widget->winId()))) {
    return 0;
  }
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

}  // namespace platform
