#include "platform/linux/ListViewModel.h"

#include <algorithm>
#include <utility>

#include "platform/Regional.h"
#include "platform/linux/ListText.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

Qt::Alignment ToQt(ColumnAlignment alignment) {
  switch (alignment) {
    case ColumnAlignment::Right:
      return Qt::AlignRight | Qt::AlignVCenter;
    case ColumnAlignment::Center:
      return Qt::AlignHCenter | Qt::AlignVCenter;
    default:
      return Qt::AlignLeft | Qt::AlignVCenter;
  }
}

}  // namespace

ListViewModel::ListViewModel(const std::vector<ColumnHeader>& columns, QObject* parent)
    : QAbstractTableModel(parent), rows_(static_cast<int>(columns.size())) {
  for (const ColumnHeader& column : columns) {
    columns_.push_back({FromText(column.Text), ToQt(column.Alignment)});
  }
}

// --- Rows --------------------------------------------------------------------------------------

void ListViewModel::Clear() {
  beginResetModel();
  rows_.Clear();
  announced_ = 0;
  lastWritten_ = -1;
  endResetModel();
}

void ListViewModel::NoteWritten(int row, int cell) {
  if (!rows_.Exists(row, cell) || cell == TagCell()) return;
  const bool none = firstWritten_ > lastWritten_;
  firstWritten_ = none ? row : std::min(firstWritten_, row);
  lastWritten_ = none ? row : std::max(lastWritten_, row);
}

std::vector<std::uint32_t> ListViewModel::Ordered(int column, bool descending) const {
  return rows_.Ordered(column, descending, FoldCase);
}

void ListViewModel::Arrange(const std::vector<std::uint32_t>& order) {
  beginResetModel();
  rows_.Arrange(order);
  announced_ = rows_.Shown();
  lastWritten_ = -1;
  firstWritten_ = 0;
  endResetModel();
}

void ListViewModel::Announce() {
  AnnounceWritten();
  const int count = rows_.Shown();
  if (announced_ == count) return;
  beginInsertRows({}, announced_, count - 1);
  announced_ = count;
  endInsertRows();
}

void ListViewModel::AnnounceWritten() {
  const int first = std::exchange(firstWritten_, 0);
  const int last = std::exchange(lastWritten_, -1);
  if (first <= last) emit dataChanged(index(first, 0), index(last, TagCell() - 1));
}

// --- What the view asks ------------------------------------------------------------------------

int ListViewModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : announced_;
}

int ListViewModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : TagCell();
}

QVariant ListViewModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const std::string_view cell = Cell(index.row(), index.column());
  if (role == Qt::AccessibleTextRole) return DisplayText(cell);
  if (role == Qt::DisplayRole) {
    // A character has three bytes at most, or four for two; one more may be cut in two.
    constexpr std::size_t MostBytes = 3 * (static_cast<std::size_t>(MostShown) + 1);
    return DisplayText(cell.substr(0, MostBytes)).left(MostShown);
  }
  if (role != Qt::TextAlignmentRole) return {};
  return QVariant::fromValue(columns_[static_cast<std::size_t>(index.column())].Alignment);
}

QVariant ListViewModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= TagCell()) return {};
  const Column& column = columns_[static_cast<std::size_t>(section)];
  if (role == Qt::DisplayRole) return column.Title;
  if (role == Qt::TextAlignmentRole) return QVariant::fromValue(column.Alignment);
  return {};
}

Qt::ItemFlags ListViewModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

}  // namespace platform
