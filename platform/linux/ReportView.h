#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <QAccessible>
#include <QTreeView>

#include "platform/ListView.h"
#include "platform/linux/ListViewModel.h"
#include "platform/linux/RowSelection.h"
#include "platform/linux/TypedSearch.h"

namespace platform {

/// The widget of a `ListView`: rows under column headers, selected as whole rows.
///
/// What a procedure of the program does to the rows reaches the toolkit's view and selection in one
/// step, `Settle`: before the next event, or when something asks for the view's own state.
class ReportView : public QTreeView, private QAccessible::ActivationObserver {
 public:
  ReportView(QWidget* parent, ListView& owner, const std::vector<ColumnHeader>& columns);
  ~ReportView() override;

  ListViewModel& Rows() const { return *rows_; }
  void Add(const SharedText& text);
  void Remove(int row);
  void Clear();
  void Write(int row, int cell, const SharedText& text) {
    rows_->Cell(row, cell, text);
    SettleLater();
  }

  bool IsSelected(int row) const;
  void Select(int row, bool selected);
  /// The current row if it is selected, else the first selected one, else -1.
  int SelectedRow() const;

  int SortKey() const { return sortKey_; }
  int SortOrder() const { return sortOrder_; }
  bool Sorted() const { return sorted_; }
  void SortKey(int column);
  void SortOrder(int order);
  void Sorted(bool sorted);

  std::uint32_t Style() const { return style_; }
  void Style(std::uint32_t style);

  void Settle();

  void keyboardSearch(const QString& typed) override;

 protected:
  bool event(QEvent* event) override;
  bool viewportEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void dataChanged(const QModelIndex& first, const QModelIndex& last,
                   const QList<int>& roles) override;
  /// As the toolkit has it, but a range drawn up with Shift alone drops what was selected before.
  QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                       const QEvent* event) const override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void SetUpHeader(const std::vector<ColumnHeader>& columns);
  void RaiseColumnClick(int column);
  void SettleLater() {
    if (!std::exchange(settleScheduled_, true)) ScheduleSettle();
  }
  void ScheduleSettle();
  /// Rows that have never been on the screen are none yet to a screen reader.
  void accessibilityActiveChanged(bool active) override;
  /// Puts rows into a new order, or drops some; selection, current row and sideways scroll position
  /// follow. `top` is the row then on top.
  void Arrange(const std::vector<std::uint32_t>& order, int top);
  void MakeCurrent(int row, int column);
  void ShowSortArrow();
  /// Makes the row under the pointer the current one and sees that it is selected.
  void SelectUnder(const QMouseEvent& event);
  void RaiseMouseUp(Qt::MouseButton button);
  /// By a key.
  void AskForMenu();
  void CopySelected() const;
  bool ShowToolTip(const QPoint& at, const QPoint& global);

  ListView& owner_;
  ListViewModel* rows_;
  RowSelection* selection_;
  bool settleScheduled_ = false;
  bool settling_ = false;

  int sortKey_ = 0;
  int sortOrder_ = lvwAscending;
  bool sorted_ = false;
  std::uint32_t style_ = 0;

  TypedSearch typed_;
};

}  // namespace platform
