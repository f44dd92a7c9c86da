#pragma once

#include <cstddef>

#include "core/Rows.h"

/// What a comparison tells of the differences that it finds. Rows are numbers in `KnownRows` (old)
/// and `CurrentRows` (new), both of which stand still from the first report to the last.
class DifferenceReports {
 public:
  DifferenceReports() = default;
  DifferenceReports(const DifferenceReports&) = delete;
  DifferenceReports& operator=(const DifferenceReports&) = delete;
  virtual ~DifferenceReports() = default;

  /// Two rows carry the same name; whether they differ is for this procedure to find out.
  virtual void ReportModified(std::size_t oldRow, std::size_t newRow) = 0;
  virtual void ReportAdded(std::size_t newRow) = 0;
  virtual void ReportRemoved(std::size_t oldRow) = 0;
};

/// Reports how `current` differs from `known`: first the modified and added files in the order of
/// `current`, then the removed ones in the order of `known`. Names match whatever the case of their
/// letters; of several rows that match, the first counts.
void ReportDifferences(const Snapshot& known, const Snapshot& current, DifferenceReports& reports);

/// Takes a fresh snapshot, reports how it differs from the baseline, and makes it the baseline.
/// Yields only during the scan.
void CompareSnapshots(DifferenceReports& reports);
