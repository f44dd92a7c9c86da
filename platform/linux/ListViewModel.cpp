#include "platform/linux/ListViewModel.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <malloc.h>
#include <new>
#include <numeric>
#include <stdexcept>
#include <utility>

#include "platform/Regional.h"
#include "platform/linux/ListText.h"
#include "platform/linux/Widgets.h"

namespace platform {

// --- ListRow -----------------------------------------------------------------------------------

ListRow::ListRow(int cells, std::uint32_t added) {
  const auto numbers = static_cast<std::size_t>(cells) + 2;
  block_.reset(static_cast<std::uint32_t*>(std::calloc(numbers, sizeof(std::uint32_t))));
  if (!block_) throw std::bad_alloc();
  block_[0] = added;
  block_[1] = static_cast<std::uint32_t>(cells);
}

std::string_view ListRow::Cell(int cell) const {
  const std::size_t begin = Begin(cell);
  return {Bytes() + begin, Ends()[cell] - begin};
}

void ListRow::Cell(int cell, std::string_view text) {
  const std::size_t begin = Begin(cell);
  const std::size_t end = Ends()[cell];
  const std::size_t before = Ends()[Cells() - 1];
  const std::size_t after = before - (end - begin) + text.size();
  if (after > before) Resize(after);
  std::memmove(Bytes() + begin + text.size(), Bytes() + end, before - end);
  std::copy(text.begin(), text.end(), Bytes() + begin);
  if (after < before) Resize(after);
  const auto growth = static_cast<std::uint32_t>(after - before);  // wraps when the cell shrinks
  for (int i = cell; i < Cells(); ++i) Ends()[i] += growth;
}

void ListRow::Resize(std::size_t bytes) {
  if (bytes > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("row too long");
  const std::size_t numbers = static_cast<std::size_t>(Cells()) + 2;
  const std::size_t size = numbers * sizeof(std::uint32_t) + bytes;
  // A sort key comes into a cell and goes again: room for one stays.
  constexpr std::size_t Spare = 64;
  const std::size_t room = malloc_usable_size(block_.get());
  if (size <= room && room <= size + Spare) return;
  void* block = std::realloc(block_.get(), size);
  if (!block) throw std::bad_alloc();
  static_cast<void>(block_.release());
  block_.reset(static_cast<std::uint32_t*>(block));
}

// --- Rows by position --------------------------------------------------------------------------

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

/// The span that an entry of a Fenwick tree covers.
std::size_t Span(std::size_t entry) { return entry & (~entry + 1); }

}  // namespace

ListViewModel::ListViewModel(const std::vector<ColumnHeader>& columns, QObject* parent)
    : QAbstractTableModel(parent) {
  for (const ColumnHeader& column : columns) {
    columns_.push_back({FromText(column.Text), ToQt(column.Alignment)});
  }
}

int ListViewModel::RowAt(int position) const {
  if (position < 1 || position > Count()) return -1;
  if (removed_ == 0) return position - 1;
  auto left = static_cast<std::size_t>(position);
  std::size_t row = 0;
  for (std::size_t step = std::bit_floor(rows_.size()); step != 0; step /= 2) {
    if (row + step > rows_.size()) continue;
    const std::size_t standing = step - goneCounts_[row + step];
    if (standing >= left) continue;
    left -= standing;
    row += step;
  }
  return static_cast<int>(row);
}

int ListViewModel::PositionOf(int row) const {
  std::size_t position = static_cast<std::size_t>(row) + 1;
  if (removed_ == 0) return static_cast<int>(position);
  for (std::size_t i = position; i != 0; i -= Span(i)) position -= goneCounts_[i];
  return static_cast<int>(position);
}

void ListViewModel::Add(std::string_view text) {
  rows_.emplace_back(TagCell() + 1, nextAdded_++);
  rows_.back().Cell(0, text);
}

void ListViewModel::Remove(int row) {
  if (removed_ == 0) {
    gone_.assign(rows_.size(), false);
    goneCounts_.assign(rows_.size() + 1, 0);
  }
  ++removed_;
  const auto index = static_cast<std::size_t>(row);
  gone_[index] = true;
  for (std::size_t i = index + 1; i <= rows_.size(); i += Span(i)) ++goneCounts_[i];
}

void ListViewModel::ForgetRemoved() {
  removed_ = 0;
  gone_ = {};
  goneCounts_ = {};
}

void ListViewModel::Clear() {
  beginResetModel();
  rows_ = std::vector<ListRow>();
  nextAdded_ = 0;
  announced_ = 0;
  lastWritten_ = -1;
  ForgetRemoved();
  endResetModel();
}

// --- Cells -------------------------------------------------------------------------------------

bool ListViewModel::Exists(int row, int cell) const {
  return row >= 0 && row < static_cast<int>(rows_.size()) && cell >= 0 && cell <= TagCell();
}

std::string_view ListViewModel::Cell(int row, int cell) const {
  return Exists(row, cell) ? Row(row).Cell(cell) : std::string_view();
}

void ListViewModel::Cell(int row, int cell, std::string_view text) {
  if (!Exists(row, cell)) return;
  rows_[static_cast<std::size_t>(row)].Cell(cell, text);
  if (row >= announced_ || cell == TagCell()) return;
  const bool none = firstWritten_ > lastWritten_;
  firstWritten_ = none ? row : std::min(firstWritten_, row);
  lastWritten_ = none ? row : std::max(lastWritten_, row);
}

// --- Order -------------------------------------------------------------------------------------

namespace {

struct SortEntry {
  std::uint64_t Head;  ///< Eight bytes of the key, most significant first.
  std::string_view Key;
  std::uint32_t Added;
  std::uint32_t Row;
};

std::uint64_t HeadOf(std::string_view key) {
  std::uint64_t head = 0;
  for (std::size_t i = 0; i < sizeof head; ++i) {
    head = (head << 8) | (i < key.size() ? static_cast<unsigned char>(key[i]) : 0u);
  }
  return head;
}

/// How many bytes all keys begin with in common, empty ones left out.
std::size_t CommonPrefix(const std::vector<SortEntry>& entries) {
  std::string_view prefix;
  for (const SortEntry& entry : entries) {
    if (entry.Key.empty()) continue;
    if (prefix.empty()) prefix = entry.Key;
    const auto [end, other] =
        std::mismatch(prefix.begin(), prefix.end(), entry.Key.begin(), entry.Key.end());
    prefix = prefix.substr(0, static_cast<std::size_t>(end - prefix.begin()));
    if (prefix.empty()) break;
  }
  return prefix.size();
}

bool OrderedBefore(const SortEntry& one, const SortEntry& other, bool descending) {
  if (one.Head != other.Head) return (one.Head < other.Head) != descending;
  const int difference = one.Key.compare(other.Key);
  if (difference != 0) return (difference < 0) != descending;
  return one.Added < other.Added;
}

}  // namespace

std::vector<std::uint32_t> ListViewModel::Standing() const {
  std::vector<std::uint32_t> rows(rows_.size());
  std::iota(rows.begin(), rows.end(), 0u);
  std::erase_if(rows, [this](std::uint32_t row) { return IsRemoved(static_cast<int>(row)); });
  return rows;
}

std::vector<std::uint32_t> ListViewModel::Ordered(int column, bool descending) const {
  std::vector<std::uint32_t> rows = Standing();
  std::string keys;
  std::vector<std::size_t> ends;
  ends.reserve(rows.size());
  for (const std::uint32_t row : rows) {
    keys += FoldCase(Cell(static_cast<int>(row), column));
    ends.push_back(keys.size());
  }

  std::vector<SortEntry> entries;
  entries.reserve(rows.size());
  std::size_t begin = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string_view key = std::string_view(keys).substr(begin, ends[i] - begin);
    entries.push_back({0, key, rows_[rows[i]].Added(), rows[i]});
    begin = ends[i];
  }
  const std::size_t prefix = CommonPrefix(entries);
  for (SortEntry& entry : entries) {
    entry.Head = HeadOf(entry.Key.substr(std::min(prefix, entry.Key.size())));
  }
  std::sort(entries.begin(), entries.end(), [descending](const SortEntry& a, const SortEntry& b) {
    return OrderedBefore(a, b, descending);
  });
  std::transform(entries.begin(), entries.end(), rows.begin(),
                 [](const SortEntry& entry) { return entry.Row; });
  return rows;
}

void ListViewModel::Arrange(const std::vector<std::uint32_t>& order) {
  beginResetModel();
  std::vector<ListRow> rows;
  rows.reserve(order.size());
  for (const std::uint32_t row : order) rows.push_back(std::move(rows_[row]));
  rows_ = std::move(rows);
  announced_ = static_cast<int>(rows_.size());
  lastWritten_ = -1;
  firstWritten_ = 0;
  ForgetRemoved();
  endResetModel();
}

void ListViewModel::Announce() {
  AnnounceWritten();
  const int count = static_cast<int>(rows_.size());
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
