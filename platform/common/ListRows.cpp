#include "platform/common/ListRows.h"

#include <algorithm>
#include <bit>
#include <numeric>

namespace platform {

namespace {

/// The span that an entry of a Fenwick tree covers.
std::size_t Span(std::size_t entry) { return entry & (~entry + 1); }

}  // namespace

// --- Rows by position --------------------------------------------------------------------------

int ListRows::RowAmongRemoved(int position) const {
  auto left = static_cast<std::size_t>(position);
  std::size_t row = 0;
  for (std::size_t step = std::bit_floor(order_.size()); step != 0; step /= 2) {
    if (row + step > order_.size()) continue;
    const std::size_t standing = step - goneCounts_[row + step];
    if (standing >= left) continue;
    left -= standing;
    row += step;
  }
  return static_cast<int>(row);
}

int ListRows::PositionOf(int row) const {
  std::size_t position = static_cast<std::size_t>(row) + 1;
  if (removed_ == 0) return static_cast<int>(position);
  for (std::size_t i = position; i != 0; i -= Span(i)) position -= goneCounts_[i];
  return static_cast<int>(position);
}

void ListRows::Add(const SharedText& text) {
  const std::size_t first = cells_.size();
  order_.push_back(static_cast<std::uint32_t>(first / static_cast<std::size_t>(columns_)));
  if (!tags_.empty()) tags_.emplace_back();
  cells_.resize(first + static_cast<std::size_t>(columns_));
  cells_[first] = text;
}

void ListRows::Remove(int row) {
  if (removed_ == 0) {
    gone_.assign(order_.size(), false);
    goneCounts_.assign(order_.size() + 1, 0);
  }
  ++removed_;
  const auto index = static_cast<std::size_t>(row);
  gone_[index] = true;
  for (std::size_t i = index + 1; i <= order_.size(); i += Span(i)) ++goneCounts_[i];
}

void ListRows::ForgetRemoved() {
  removed_ = 0;
  gone_ = {};
  goneCounts_ = {};
}

void ListRows::Clear() { *this = ListRows(columns_); }

// --- Cells -------------------------------------------------------------------------------------

std::string_view ListRows::Cell(int row, int cell) const {
  if (!Exists(row, cell)) return {};
  const std::uint32_t added = Added(static_cast<std::size_t>(row));
  if (cell != TagCell()) return cells_[FirstCell(added) + static_cast<std::size_t>(cell)];
  if (tags_.empty()) return {};
  return tags_[added];
}

void ListRows::Tag(std::uint32_t added, const SharedText& text) {
  if (tags_.empty()) {
    if (text.empty()) return;
    tags_.resize(cells_.size() / static_cast<std::size_t>(columns_));
  }
  if (!text.empty()) ++tagged_;
  if (!tags_[added].empty()) --tagged_;
  tags_[added] = text;
  if (tagged_ == 0) tags_ = {};
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

std::vector<std::uint32_t> ListRows::Standing() const {
  std::vector<std::uint32_t> rows(order_.size());
  std::iota(rows.begin(), rows.end(), 0u);
  std::erase_if(rows, [this](std::uint32_t row) { return IsRemoved(static_cast<int>(row)); });
  return rows;
}

std::vector<std::uint32_t> ListRows::Ordered(int column, bool descending,
                                             std::string (*fold)(std::string_view)) const {
  std::vector<std::uint32_t> rows = Standing();
  std::string keys;
  std::vector<std::size_t> ends;
  ends.reserve(rows.size());
  for (const std::uint32_t row : rows) {
    keys += fold(Cell(static_cast<int>(row), column));
    ends.push_back(keys.size());
  }

  std::vector<SortEntry> entries;
  entries.reserve(rows.size());
  std::size_t begin = 0;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const std::string_view key = std::string_view(keys).substr(begin, ends[i] - begin);
    entries.push_back({0, key, Added(rows[i]), rows[i]});
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

void ListRows::Arrange(const std::vector<std::uint32_t>& order) {
  for (std::size_t row = 0; row < order_.size() && removed_ != 0; ++row) {
    for (int cell = 0; cell <= TagCell() && gone_[row]; ++cell) {
      Cell(static_cast<int>(row), cell, {});
    }
  }
  std::vector<std::uint32_t> arranged(order.size());
  std::transform(order.begin(), order.end(), arranged.begin(),
                 [this](std::uint32_t row) { return Added(row); });
  order_ = std::move(arranged);
  ForgetRemoved();
}

}  // namespace platform
