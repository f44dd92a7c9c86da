#pragma once

#include <vector>

#include <QItemSelectionModel>

namespace platform {

/// The selection of a list of whole rows, in the toolkit's ranges and, for quick reading, as one
/// flag a row. What is written by the row is in the flags at once, and in the ranges with `Settle`.
class RowSelection : public QItemSelectionModel {
 public:
  RowSelection(QAbstractItemModel* rows, QObject* parent);

  bool IsSelected(int row) const;
  void Select(int row, bool selected);
  const std::vector<bool>& Flags() const;

  void Settle();
  /// Selects these rows and no others.
  void Restore(const std::vector<bool>& selected);
  /// The rows have gone, and their selection with them.
  void Forget();

  using QItemSelectionModel::select;
  void select(const QItemSelection& rows, SelectionFlags command) override;

 private:
  /// Selects these when nothing is selected. A range that the user then draws up with Ctrl and
  /// Shift joins them.
  void SelectRanges(const QItemSelection& ranges);
  QItemSelection WholeRows(const QItemSelection& ranges) const;
  QItemSelectionRange Rows(int first, int last) const;
  void Read() const;

  // A copy, which the ranges bring up to date; or, while `written_`, what they are about to be
  // told.
  mutable std::vector<bool> flags_;
  mutable bool read_ = false;
  bool written_ = false;
};

}  // namespace platform
