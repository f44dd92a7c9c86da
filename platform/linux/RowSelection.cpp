#include "platform/linux/RowSelection.h"

#include <algorithm>
#include <cstddef>

namespace platform {

RowSelection::RowSelection(QAbstractItemModel* rows, QObject* parent)
    : QItemSelectionModel(rows, parent) {
  connect(this, &QItemSelectionModel::selectionChanged, this, [this] { read_ = false; });
}

// --- By the row --------------------------------------------------------------------------------

void RowSelection::Read() const {
  if (read_) return;
  flags_.assign(static_cast<std::size_t>(model()->rowCount()), false);
  for (const QItemSelectionRange& range : selection()) {
    if (!range.isValid()) continue;
    std::fill(flags_.begin() + range.top(), flags_.begin() + range.bottom() + 1, true);
  }
  read_ = true;
}

const std::vector<bool>& RowSelection::Flags() const {
  Read();
  return flags_;
}

bool RowSelection::IsSelected(int row) const {
  Read();
  return row >= 0 && row < static_cast<int>(flags_.size()) && flags_[static_cast<std::size_t>(row)];
}

void RowSelection::Select(int row, bool selected) {
  Read();
  const auto index = static_cast<std::size_t>(row);
  if (index >= flags_.size()) flags_.resize(index + 1, false);
  flags_[index] = selected;
  written_ = true;
}

void RowSelection::Settle() {
  if (written_) Restore(std::vector<bool>(flags_));
}

void RowSelection::Forget() {
  flags_.clear();
  read_ = false;
  written_ = false;
}

// --- By the range ------------------------------------------------------------------------------

void RowSelection::Restore(const std::vector<bool>& selected) {
  QItemSelection ranges;
  for (auto end = selected.begin(); end != selected.end();) {
    const auto begin = std::find(end, selected.end(), true);
    if (begin == selected.end()) break;
    end = std::find(begin, selected.end(), false);
    ranges.append(Rows(static_cast<int>(begin - selected.begin()),
                       static_cast<int>(end - selected.begin()) - 1));
  }
  written_ = false;
  read_ = false;
  if (hasSelection()) select(QItemSelection(), Clear);
  if (!ranges.isEmpty()) SelectRanges(ranges);
}

/// After a sort a selection can consist of very many ranges. To find out what changed, the toolkit
/// compares each old one with each new one; dropping all old ones first leaves nothing to compare.
void RowSelection::select(const QItemSelection& rows, SelectionFlags command) {
  constexpr int ManyRanges = 100;
  QItemSelection ranges = selection();
  const bool drops = (command & Clear) != 0;
  if (ranges.size() <= ManyRanges || (!drops && (command & Current) != 0)) {
    return QItemSelectionModel::select(rows, command);
  }
  QItemSelectionModel::select(QItemSelection(), Clear);
  if (drops) return QItemSelectionModel::select(rows, command);
  ranges.merge(WholeRows(rows), command);
  SelectRanges(ranges);
}

void RowSelection::SelectRanges(const QItemSelection& ranges) {
  QItemSelectionModel::select(ranges, QItemSelectionModel::Select);
  QItemSelectionModel::select(QItemSelection(), QItemSelectionModel::Select);
}

QItemSelection RowSelection::WholeRows(const QItemSelection& ranges) const {
  QItemSelection rows;
  for (const QItemSelectionRange& range : ranges) rows.append(Rows(range.top(), range.bottom()));
  return rows;
}

QItemSelectionRange RowSelection::Rows(int first, int last) const {
  return {model()->index(first, 0), model()->index(last, model()->columnCount() - 1)};
}

}  // namespace platform
