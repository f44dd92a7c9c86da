#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SharedText.h"

namespace platform {

/// The rows of a table of texts. To what shows them they stand still while a procedure of the
/// program works on them: a row removed keeps its place until `Arrange`. To the program, which
/// counts positions from 1, a removal takes effect at once.
class ListRows {
 public:
  explicit ListRows(int columns) : columns_(columns) {}

  /// The number of the cell behind the last column: a row's tag.
  int TagCell() const { return columns_; }

  /// The rows that show, removed ones among them.
  int Shown() const { return static_cast<int>(order_.size()); }
  int Count() const { return Shown() - removed_; }
  /// The row at a position; -1 when there is none.
  int RowAt(int position) const {
    if (position < 1 || position > Count()) return -1;
    return removed_ == 0 ? position - 1 : RowAmongRemoved(position);
  }
  int PositionOf(int row) const;

  /// Not while `HasRemoved`.
  void Add(const SharedText& text);
  void Remove(int row);
  void Clear();
  bool IsRemoved(int row) const { return removed_ != 0 && gone_[static_cast<std::size_t>(row)]; }
  bool HasRemoved() const { return removed_ != 0; }

  bool Exists(int row, int cell) const {
    return row >= 0 && row < Shown() && cell >= 0 && cell <= TagCell();
  }
  /// An empty text for a cell that does not exist.
  std::string_view Cell(int row, int cell) const;
  void Cell(int row, int cell, const SharedText& text) {
    if (!Exists(row, cell)) return;
    const std::uint32_t added = Added(static_cast<std::size_t>(row));
    if (cell == TagCell()) return Tag(added, text);
    cells_[FirstCell(added) + static_cast<std::size_t>(cell)] = text;
  }

  /// The rows that are not removed, as they stand.
  std::vector<std::uint32_t> Standing() const;
  /// The same by the text of a column, folded; equal ones in the order of adding.
  std::vector<std::uint32_t> Ordered(int column, bool descending,
                                     std::string (*fold)(std::string_view)) const;
  /// Puts the rows named into that order and drops all others.
  void Arrange(const std::vector<std::uint32_t>& order);

 private:
  std::uint32_t Added(std::size_t row) const { return order_[row]; }
  std::size_t FirstCell(std::uint32_t added) const {
    return std::size_t{added} * static_cast<std::size_t>(columns_);
  }
  int RowAmongRemoved(int position) const;
  void Tag(std::uint32_t added, const SharedText& text);
  void ForgetRemoved();

  int columns_;
  // The cells of every row in the order of adding, and the rows' numbers in that order as they
  // stand: a new order moves numbers alone.
  std::vector<SharedText> cells_;
  std::vector<std::uint32_t> order_;
  // One each row while any has one.
  std::vector<SharedText> tags_;
  std::size_t tagged_ = 0;
  // Rows removed, one flag each, and their counts in a Fenwick tree, which turns positions into
  // rows and back in logarithmic time. Both are empty while no row is removed.
  int removed_ = 0;
  std::vector<bool> gone_;
  std::vector<std::uint32_t> goneCounts_;
};

}  // namespace platform
