#include "platform/linux/RowLook.h"

#include <QHeaderView>
#include <QStyleOptionFocusRect>

namespace platform {

int RowHeight(const QFontMetrics& metrics) {
  constexpr int Room = 4;  // a pixel above and below, the focus frame and the grid line
  return metrics.height() + Room;
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  return {QStyledItemDelegate::sizeHint(option, index).width(), RowHeight(option.fontMetrics)};
}

namespace {

void DrawFocusFrame(QPainter& painter, const QTreeView& view, const QRect& row, bool selected) {
  QStyleOptionFocusRect frame;
  frame.initFrom(&view);
  frame.rect = QRect(-view.header()->offset(), row.y(), view.header()->length(), row.height() - 1);
  frame.state |= QStyle::State_KeyboardFocusChange | QStyle::State_HasFocus;
  frame.backgroundColor = view.palette().color(selected ? QPalette::Highlight : QPalette::Base);
  view.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, &painter, &view);
}

}  // namespace

void DrawRow(QPainter& painter, const QTreeView& view, const QStyleOptionViewItem& option,
             const QModelIndex& index, const RowMarks& marks) {
  QStyleOptionViewItem cell = option;
  cell.showDecorationSelected = true;
  cell.state &= ~(QStyle::State_MouseOver | QStyle::State_HasFocus);
  for (int column = 0; column < view.header()->count(); ++column) {
    cell.rect = QRect(view.columnViewportPosition(column), option.rect.y(),
                      view.columnWidth(column), option.rect.height());
    if (!cell.rect.intersects(view.viewport()->rect())) continue;
    const bool marked = marks.FullRow || column == 0;
    cell.state.setFlag(QStyle::State_Selected, marks.Selected && marked);
    cell.state.setFlag(QStyle::State_HasFocus, marks.Current && !marks.FullRow && marked);
    view.itemDelegate()->paint(&painter, cell, index.sibling(index.row(), column));
  }
  if (marks.Current && marks.FullRow) DrawFocusFrame(painter, view, option.rect, marks.Selected);
}

void DrawGrid(const QTreeView& view) {
  QStyleOptionViewItem option;
  option.initFrom(&view);
  const int colour = view.style()->styleHint(QStyle::SH_Table_GridLineColor, &option, &view);
  const QRect area = view.viewport()->rect();
  QPainter painter(view.viewport());
  painter.setPen(QColor::fromRgba(static_cast<QRgb>(colour)));
  const int height = RowHeight(view.fontMetrics());
  for (int y = height - 1; y < area.height(); y += height) {
    painter.drawLine(0, y, area.width(), y);
  }
  for (int column = 0; column < view.header()->count(); ++column) {
    const int x = view.columnViewportPosition(column) + view.columnWidth(column) - 1;
    painter.drawLine(x, 0, x, area.height());
  }
}

}  // namespace platform
