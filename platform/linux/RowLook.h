#pragma once

#include <QFontMetrics>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeView>

// How a list of rows under column headers looks: rows of one height, marks on the selected and the
// current one, grid lines.

namespace platform {

int RowHeight(const QFontMetrics& metrics);

class CellDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

struct RowMarks {
  bool FullRow;  ///< The marks are drawn over all cells, else on the first one.
  bool Selected;
  bool Current;
};

/// Draws the row of `index` into the height of `option`.
void DrawRow(QPainter& painter, const QTreeView& view, const QStyleOptionViewItem& option,
             const QModelIndex& index, const RowMarks& marks);

/// Draws lines between rows and columns, also where there are no rows.
void DrawGrid(const QTreeView& view);

}  // namespace platform
