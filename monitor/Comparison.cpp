#include "monitor/Comparison.h"

#include <optional>
#include <string>
#include <unordered_map>

#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Regional.h"

namespace {

/// Finds the first row of a snapshot whose name matches, as a search from its top would.
class FirstRowByName {
 public:
  explicit FirstRowByName(const Snapshot& rows) {
    rows_.reserve(rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
      rows_.try_emplace(platform::FoldCase(rows[row].FileName), row);
    }
  }

  std::optional<std::size_t> Find(const std::string& name) const {
    const auto found = rows_.find(platform::FoldCase(name));
    if (found == rows_.end()) return std::nullopt;
    return found->second;
  }

 private:
  std::unordered_map<std::string, std::size_t> rows_;
};

bool IsPlaceholder(const CookieFileRow& row) { return row.FileName.empty(); }

void ReportPresent(const Snapshot& known, const Snapshot& current, ChangeReports& reports) {
  const FirstRowByName knownRows(known);
  for (std::size_t newRow = 0; newRow < current.size(); ++newRow) {
    if (IsPlaceholder(current[newRow])) continue;
    if (const auto oldRow = knownRows.Find(current[newRow].FileName)) {
      reports.ReportModified(*oldRow, newRow);
    } else {
      reports.ReportAdded(newRow);
    }
  }
}

void ReportGone(const Snapshot& known, const Snapshot& current, ChangeReports& reports) {
  const FirstRowByName currentRows(current);
  for (std::size_t oldRow = 0; oldRow < known.size(); ++oldRow) {
    if (IsPlaceholder(known[oldRow])) continue;
    if (!currentRows.Find(known[oldRow].FileName)) reports.ReportRemoved(oldRow);
  }
}

}  // namespace

void ReportDifferences(const Snapshot& known, const Snapshot& current, ChangeReports& reports) {
  ReportPresent(known, current, reports);
  ReportGone(known, current, reports);
}

void CompareSnapshots(ChangeReports& reports) {
  PublicDim.CurrentRows = TakeSnapshot();
  ReportDifferences(PublicDim.KnownRows, PublicDim.CurrentRows, reports);
  PublicDim.KnownRows = PublicDim.CurrentRows;
}
