#include "platform/linux/FocusFrame.h"

#include <QPainter>

namespace platform {

void ShowFocusOnFrame(QAbstractScrollArea& area, const QEvent& event) {
  const bool changes = event.type() == QEvent::FocusIn || event.type() == QEvent::FocusOut;
  if (changes) area.update();
  if (event.type() != QEvent::Paint || !area.hasFocus()) return;
  QPainter painter(&area);
  painter.setPen(area.palette().color(QPalette::Highlight));
  painter.drawRect(area.rect().adjusted(0, 0, -1, -1));
}

}  // namespace platform
