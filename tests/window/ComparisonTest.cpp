#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "monitor/Comparison.h"
#include "monitor/ScanDisk.h"
#include "platform/Regional.h"
#include "tests/CookieFolder.h"

namespace {

/// Writes the reports down in their order.
class NotedReports : public ChangeReports {
 public:
  void ReportModified(std::size_t oldRow, std::size_t newRow) override {
    Note("~", oldRow, newRow);
  }
  void ReportAdded(std::size_t newRow) override { Note("+", 0, newRow); }
  void ReportRemoved(std::size_t oldRow) override { Note("-", oldRow, 0); }

  std::vector<std::string> Lines;

 private:
  void Note(const char* kind, std::size_t oldRow, std::size_t newRow) {
    Lines.push_back(kind + std::to_string(oldRow) + ":" + std::to_string(newRow));
  }
};

/// What two plain nested searches report.
std::vector<std::string> Expected(const Snapshot& known, const Snapshot& current) {
  const auto match = [](const CookieFileRow& a, const CookieFileRow& b) {
    return platform::FoldCase(a.FileName) == platform::FoldCase(b.FileName);
  };
  NotedReports reports;
  for (std::size_t c = 0; c < current.size(); ++c) {
    if (current[c].FileName.empty()) continue;
    std::size_t k = 0;
    while (k < known.size() && !match(known[k], current[c])) ++k;
    k < known.size() ? reports.ReportModified(k, c) : reports.ReportAdded(c);
  }
  for (std::size_t k = 0; k < known.size(); ++k) {
    if (known[k].FileName.empty()) continue;
    std::size_t c = 0;
    while (c < current.size() && !match(known[k], current[c])) ++c;
    if (c == current.size()) reports.ReportRemoved(k);
  }
  return reports.Lines;
}

TEST(Comparison, ReportsAsTheNestedSearchDoesWhateverTheNames) {
  const std::vector<std::string> names = {"a.txt",     "A.TXT",     "b.txt",    "Ärger.txt",
                                          "ärger.txt", "ÄRGER.Txt", "\xFF.txt", "\xFE.txt",
                                          "Ω.txt",     "ω.txt"};
  const CookieFolder folder;
  std::mt19937 random(20041220);
  TakeFirstSnapshot();
  for (int round = 0; round < 200; ++round) {
    for (int step = 0; step < 4; ++step) {
      const std::string& name = names[random() % names.size()];
      if (random() % 2 == 0) {
        std::filesystem::remove(folder.Path(name));
      } else {
        folder.Write(name, std::string(random() % 3, 'x'));
      }
    }
    const Snapshot before = PublicDim.KnownRows;
    NotedReports reports;
    CompareSnapshots(reports);
    EXPECT_EQ(reports.Lines, Expected(before, PublicDim.CurrentRows)) << round;
  }
}

}  // namespace
