#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <valgrind/callgrind.h>
#include <vector>

#include "bench/CookieWork.h"
#include "bench/MakeCookieFolder.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Application.h"
#include "ui/FormMain.h"

// cost work FOLDER: does each piece of work once more, on two thousand files made in that folder.
// cost rest FOLDER: the program with its data in that folder, watching while nothing happens.
// Callgrind counts the instructions of both; cost_guard reads the counts.

namespace {

constexpr int Files = 2000;

/// Plain work of the same kind, so that a count can be told as a multiple of it: another compiler
/// or library moves both.
void DoReferenceWork() {
  std::map<std::string, std::size_t> firstRows;
  std::vector<std::array<std::string, 7>> rows;
  for (const CookieRow& row : PublicDim.CookieRows) {
    const auto text = [](std::string_view field) { return std::string(field); };
    rows.push_back({text(row.Server), text(row.CookieName), text(row.CookieValue),
                    text(row.ExpireDate), text(row.CookieFile), text(row.FileSize),
                    text(row.Modified)});
    firstRows.try_emplace(rows.back()[4] + rows.back()[1], rows.size() - 1);
  }
  std::sort(rows.begin(), rows.end(),
            [](const auto& one, const auto& other) { return one[2] < other[2]; });
  std::string text;
  for (const auto& [name, row] : firstRows) text += name + rows[row][0] + std::to_string(row);
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

/// The main window as it is, watching; what the start sets off is over after a while.
class RestingForm : public FormMain {
 public:
  RestingForm() {
    begin_.Tick = [this] {
      if (!std::exchange(watched_, PublicDim.WatchHandle > 0)) return;
      begin_.Enabled(false);
      end_.Enabled(true);
      CALLGRIND_START_INSTRUMENTATION;
      CALLGRIND_ZERO_STATS;
    };
    end_.Tick = [] {
      CALLGRIND_DUMP_STATS_AT("rest");
      std::_Exit(PublicDim.WatchHandle > 0 ? 0 : 1);
    };
  }

 private:
  bool watched_ = false;  ///< At the tick before, too.
  platform::Timer begin_{3000, true};
  platform::Timer end_{5000, false};
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  if (argv[1] == std::string("rest")) {
    setenv("XDG_DATA_HOME", argv[2], 1);
    return platform::RunApplication(argc, argv, [] { return std::make_unique<RestingForm>(); });
  }
  MakeCookieFolder(argv[2], Files);
  UseCookieFolder(argv[2]);
  return platform::RunApplication(argc, argv, [] { return std::make_unique<CostForm>(); });
}
