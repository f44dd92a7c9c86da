#pragma once

#include <cstddef>

/// What a comparison tells of the differences that it finds. Rows are numbers in `KnownRows` (old)
/// and `CurrentRows` (new), both of which stand still from the first report to the last.
class ChangeReports {
 public:
  ChangeReports() = default;
  ChangeReports(const ChangeReports&) = delete;
  ChangeReports& operator=(const ChangeReports&) = delete;
  virtual ~ChangeReports() = default;

  /// Two rows carry the same name; whether they differ is for this procedure to find out.
  virtual void ReportModified(std::size_t oldRow, std::size_t newRow) = 0;
  virtual void ReportAdded(std::size_t newRow) = 0;
  virtual void ReportRemoved(std::size_t oldRow) = 0;
};

/// Takes a fresh snapshot, reports how it differs from the baseline, and makes it the baseline.
/// First the modified and added files in the order of the scan, then the removed ones in the order
/// of the baseline. Names match whatever the case of their letters; of several rows that match, the
/// first counts. Yields only during the scan.
void CompareSnapshots(ChangeReports& reports);
