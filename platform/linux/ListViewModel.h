#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <QAbstractTableModel>

#include "platform/ListView.h"

namespace platform {

/// A row's cells, bytes as they were given, in one block of memory: lists hold hundreds of
/// thousands of rows.
class ListRow {
 public:
  /// `added` tells the order in which rows were added.
  ListRow(int cells, std::uint32_t added);
  std::uint32_t Added() const { return block_[0]; }
  std::string_view Cell(int cell) const;
  void Cell(int cell, std::string_view text);

 private:
  struct Free {
    void operator()(std::uint32_t* block) const { std::free(block); }
  };

  std::size_t Begin(int cell) const { return cell == 0 ? 0 : Ends()[cell - 1]; }
  std::uint32_t* Ends() const { return block_.get() + 2; }
  int Cells() const { return static_cast<int>(block_[1]); }
  char* Bytes() const { return reinterpret_cast<char*>(Ends() + Cells()); }
  void Resize(std::size_t bytes);

  // The order of adding, the number of cells, where each cell ends, then the cells' bytes.
  std::unique_ptr<std::uint32_t[], Free> block_;
};

/// The rows of a list. To the view they stand still while a procedure of the program works on them:
/// a row added is announced by `Announce`, a row removed keeps its place until `Arrange`. To the
/// program, which counts positions from 1, both take effect at once.
class ListViewModel : public QAbstractTableModel {
 public:
  ListViewModel(const std::vector<ColumnHeader>& columns, QObject* parent);

  /// Characters of a cell that are shown: laying out a text takes time by its length. Whole texts
  /// are read as `Qt::AccessibleTextRole`.
  static constexpr int MostShown = 2000;

  /// The number of the cell behind the last column: a row's tag.
  int TagCell() const { return static_cast<int>(columns_.size()); }

  int Count() const { return static_cast<int>(rows_.size()) - removed_; }
  /// The row at a position; -1 when there is none.
  int RowAt(int position) const;
  int PositionOf(int row) const;

  /// Not while `HasRemoved`.
  void Add(std::string_view text);
  void Remove(int row);
  void Clear();
  bool IsRemoved(int row) const { return removed_ != 0 && gone_[static_cast<std::size_t>(row)]; }
  bool HasRemoved() const { return removed_ != 0; }

  /// An empty text for a cell that does not exist.
  std::string_view Cell(int row, int cell) const;
  void Cell(int row, int cell, std::string_view text);

  /// The rows that are not removed, as they stand.
  std::vector<std::uint32_t> Standing() const;
  /// The same by the text of a column, case ignored; equal ones in the order of adding.
  std::vector<std::uint32_t> Ordered(int column, bool descending) const;
  /// Puts the rows named into that order and drops all others. Resets the view.
  void Arrange(const std::vector<std::uint32_t>& order);
  /// Tells the view of the rows added and the cells written since the last time.
  void Announce();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  struct Column {
    QString Title;
    Qt::Alignment Alignment;
  };

  bool Exists(int row, int cell) const;
  const ListRow& Row(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  void ForgetRemoved();
  void AnnounceWritten();

  std::vector<Column> columns_;
  std::vector<ListRow> rows_;
  std::uint32_t nextAdded_ = 0;
  int announced_ = 0;
  // The rows written since the last announcement, first and last; none while first > last.
  int firstWritten_ = 0;
  int lastWritten_ = -1;
  // Rows removed, one flag each, and their counts in a Fenwick tree, which turns positions into
  // rows and back in logarithmic time. Both are empty while no row is removed.
  int removed_ = 0;
  std::vector<bool> gone_;
  std::vector<std::uint32_t> goneCounts_;
};

}  // namespace platform
