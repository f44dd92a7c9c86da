#include "platform/linux/ColumnHeaders.h"

#include <QMouseEvent>

namespace platform {

ColumnHeaders::ColumnHeaders(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setStretchLastSection(false);
  setSectionsMovable(true);
  setFirstSectionMovable(true);
  setHighlightSections(false);
}

void ColumnHeaders::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) QHeaderView::mouseDoubleClickEvent(event);
}

}  // namespace platform
