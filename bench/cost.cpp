#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <valgrind/callgrind.h>
#include <vector>

#include "bench/CookieWork.h"
#include "bench/MakeCookieFolder.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Application.h"

// cost FOLDER: does each piece of work once more, on two thousand files made in that folder, for
// Callgrind to count its instructions. cost_guard reads the counts.

namespace {

constexpr int Files = 2000;

/// Plain work of the same kind, so that a count can be told as a multiple of it: another compiler
/// or library moves both.
void DoReferenceWork() {
  std::map<std::string, std::size_t> firstRows;
  std::vector<CookieRow> rows = PublicDim.CookieRows;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    firstRows.try_emplace(rows[i].CookieFile + rows[i].CookieName, i);
  }
  std::sort(rows.begin(), rows.end(), [](const CookieRow& one, const CookieRow& other) {
    return one.CookieValue < other.CookieValue;
  });
  std::string text;
  for (const auto& [name, row] : firstRows) text += name + rows[row].Server + std::to_string(row);
}

void Count(const char* name, const std::function<void()>& work) {
  work();  // what only the first time takes is not counted
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
  work();
  CALLGRIND_DUMP_STATS_AT(name);
  CALLGRIND_STOP_INSTRUMENTATION;
}

/// Never shown: painting a screenful would outweigh the work on a few thousand rows.
class CostForm : public CookieLists {
 public:
  void Form_Load() override {
    StyleLists(*this);
    Count("scan", TakeFirstSnapshot);
    Count("read", [] {
      ClearCookieRows();
      ReadCookies();
    });
    Count("reference", DoReferenceWork);
    const Snapshot rows = PublicDim.KnownRows;
    const Snapshot renamed = Renamed(rows);
    Count("compare, nothing changed", [&] { Compare(rows, rows); });
    Count("compare, everything changed", [&] { Compare(rows, renamed); });
    Count("fill", [this] { FillList(ListVCookie, PublicDim.CookieRows.size() - 1); });
    Count("search", [this] { Search(*this, 3, "qx7"); });
    Count("sort by text", [this] { SortColumn(ListVCookie, 4); });
    Count("sort by number", [this] { SortColumn(ListVCookie, 6); });
    platform::End();
  }
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  MakeCookieFolder(argv[1], Files);
  UseCookieFolder(argv[1]);
  return platform::RunApplication(argc, argv, [] { return std::make_unique<CostForm>(); });
}
