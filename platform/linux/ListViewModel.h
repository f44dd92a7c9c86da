#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include <QAbstractTableModel>

#include "platform/ListView.h"
#include "platform/common/ListRows.h"

namespace platform {

/// The rows of a list as the toolkit's view asks for them. A row added or a cell written is
/// announced to it by `Announce`, a row removed keeps its place until `Arrange`.
class ListViewModel : public QAbstractTableModel {
 public:
  ListViewModel(const std::vector<ColumnHeader>& columns, QObject* parent);

  /// Characters of a cell that are shown: laying out a text takes time by its length. Whole texts
  /// are read as `Qt::AccessibleTextRole`.
  static constexpr int MostShown = 2000;

  int TagCell() const { return rows_.TagCell(); }
  int Count() const { return rows_.Count(); }
  int RowAt(int position) const { return rows_.RowAt(position); }
  int PositionOf(int row) const { return rows_.PositionOf(row); }

  void Add(const SharedText& text) { rows_.Add(text); }
  void Remove(int row) { rows_.Remove(row); }
  void Clear();
  bool IsRemoved(int row) const { return rows_.IsRemoved(row); }
  bool HasRemoved() const { return rows_.HasRemoved(); }

  std::string_view Cell(int row, int cell) const { return rows_.Cell(row, cell); }
  void Cell(int row, int cell, const SharedText& text) {
    rows_.Cell(row, cell, text);
    if (row < announced_) NoteWritten(row, cell);
  }

  std::vector<std::uint32_t> Standing() const { return rows_.Standing(); }
  /// By the text of a column, case ignored.
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

  void NoteWritten(int row, int cell);
  void AnnounceWritten();

  std::vector<Column> columns_;
  ListRows rows_;
  int announced_ = 0;
  // The rows written since the last announcement, first and last; none while first > last.
  int firstWritten_ = 0;
  int lastWritten_ = -1;
};

}  // namespace platform
