#include "platform/linux/SizeSteps.h"

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace platform {

SizeSteps::SizeSteps() { qApp->installEventFilter(this); }

bool SizeSteps::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Show || !watched->isWidgetType()) return false;
  auto* window = static_cast<QWidget*>(watched);
  if (!window->isWindow() || !window->windowHandle()) return false;
  // From the smallest one, so that this is one of them, and so is the only one of a fixed size.
  window->setBaseSize(window->minimumSize());
  window->windowHandle()->setBaseSize(window->minimumSize());
  return false;
}

}  // namespace platform
