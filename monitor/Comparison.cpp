#include "monitor/Comparison.h"

#include <bit>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Regional.h"

namespace {

/// The file names of a snapshot with the case of their letters folded away, in one text.
class FoldedNames {
 public:
  explicit FoldedNames(const Snapshot& rows) {
    ends_.reserve(rows.size());
    for (const CookieFileRow& row : rows) {
      text_ += platform::FoldCase(row.FileName);
      ends_.push_back(text_.size());
    }
  }

  std::size_t Count() const { return ends_.size(); }

  std::string_view operator[](std::size_t row) const {
    const std::size_t begin = row == 0 ? 0 : ends_[row - 1];
    return std::string_view(text_).substr(begin, ends_[row] - begin);
  }

 private:
  std::string text_;
  std::vector<std::size_t> ends_;
};

/// Finds the first row of a snapshot that has a name, as a search from its top would. A table of
/// numbers that is at most half full: with a hundred thousand rows, what does not lie close
/// together costs many times what it costs with a thousand.
class FirstRowByName {
 public:
  explicit FirstRowByName(const FoldedNames& names)
      : names_(names), slots_(std::bit_ceil(2 * names.Count() + 1)) {
    for (std::size_t row = 0; row < names.Count(); ++row) {
      const std::uint64_t hash = HashOf(names[row]);
      Slot& slot = slots_[SlotOf(names[row], hash)];
      if (slot.RowFromOne == 0) slot = {Tag(hash), static_cast<std::uint32_t>(row + 1)};
    }
  }

  std::optional<std::size_t> Find(std::string_view name) const {
    const Slot& slot = slots_[SlotOf(name, HashOf(name))];
    if (slot.RowFromOne == 0) return std::nullopt;
    return slot.RowFromOne - 1;
  }

 private:
  struct Slot {
    std::uint32_t Tag = 0;
    std::uint32_t RowFromOne = 0;  ///< 0 in a free slot.
  };

  static std::uint64_t HashOf(std::string_view name) { return std::hash<std::string_view>{}(name); }
  static std::uint32_t Tag(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

  /// The slot that holds the name, or the free one where it belongs.
  std::size_t SlotOf(std::string_view name, std::uint64_t hash) const {
    const std::size_t last = slots_.size() - 1;
    std::size_t at = hash & last;
    while (slots_[at].RowFromOne != 0 &&
           (slots_[at].Tag != Tag(hash) || names_[slots_[at].RowFromOne - 1] != name)) {
      at = (at + 1) & last;
    }
    return at;
  }

  const FoldedNames& names_;
  std::vector<Slot> slots_;
};

// A name is empty in the placeholder row alone.

void ReportPresent(const FoldedNames& known, const FoldedNames& current,
                   DifferenceReports& reports) {
  const FirstRowByName knownRows(known);
  for (std::size_t newRow = 0; newRow < current.Count(); ++newRow) {
    if (current[newRow].empty()) continue;
    if (const auto oldRow = knownRows.Find(current[newRow])) {
      reports.ReportModified(*oldRow, newRow);
    } else {
      reports.ReportAdded(newRow);
    }
  }
}

void ReportGone(const FoldedNames& known, const FoldedNames& current, DifferenceReports& reports) {
  const FirstRowByName currentRows(current);
  for (std::size_t oldRow = 0; oldRow < known.Count(); ++oldRow) {
    if (known[oldRow].empty()) continue;
    if (!currentRows.Find(known[oldRow])) reports.ReportRemoved(oldRow);
  }
}

}  // namespace

void ReportDifferences(const Snapshot& known, const Snapshot& current, DifferenceReports& reports) {
  const FoldedNames knownNames(known);
  const FoldedNames currentNames(current);
  ReportPresent(knownNames, currentNames, reports);
  ReportGone(knownNames, currentNames, reports);
}

void CompareSnapshots(DifferenceReports& reports) {
  PublicDim.CurrentRows = TakeSnapshot();
  ReportDifferences(PublicDim.KnownRows, PublicDim.CurrentRows, reports);
  PublicDim.KnownRows = PublicDim.CurrentRows;
}
