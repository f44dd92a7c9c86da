#include <algorithm>
#include <array>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <valgrind/callgrind.h>
#include <vector>

#include <QApplication>
#include <QLabel>
#include <QTimer>

#include "bench/CookieWork.h"
#include "bench/MakeCookieFolder.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Application.h"
#include "ui/FormMain.h"

// cost work FOLDER: does each piece of work once more, on two thousand files made in that folder.
// cost rest FOLDER: the program with its data in that folder, watching while nothing happens.
// cost rest-bare FOLDER: a window of the toolkit's that does the same with no program around it.
// Callgrind counts the instructions; cost_guard reads the counts. What is "bare" is plain work of
// the same kind, so that a count can be told as a multiple of it: another compiler, toolkit or
// library moves both.

namespace {

constexpr int Files = 2000;

void WorkBare() {
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

/// The names, sizes and times of the folder's files, and a look for events at each.
void ScanBare() {
  std::vector<std::array<std::string, 3>> rows;
  const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(PublicDim.CookieDir.c_str()), closedir);
  while (const dirent* entry = readdir(folder.get())) {
    struct stat info{};
    if (fstatat(dirfd(folder.get()), entry->d_name, &info, 0) != 0) continue;
    rows.push_back({entry->d_name, std::to_string(info.st_size), std::to_string(info.st_mtime)});
    QCoreApplication::processEvents();
  }
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
    Count("scan-bare", ScanBare);
    Count("read", [] {
      ClearCookieRows();
      ReadCookies();
    });
    Count("work-bare", WorkBare);
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

void BeginRest() {
  CALLGRIND_START_INSTRUMENTATION;
  CALLGRIND_ZERO_STATS;
}

void EndRest(const char* name, bool rested) {
  CALLGRIND_DUMP_STATS_AT(name);
  std::_Exit(rested ? 0 : 1);
}

/// In milliseconds. What a start sets off is over after the first.
constexpr int Settling = 3000, Resting = 5000;

/// The main window as it is, watching.
class RestingForm : public FormMain {
 public:
  RestingForm() {
    begin_.Tick = [this] {
      if (!std::exchange(watched_, PublicDim.WatchHandle > 0)) return;
      begin_.Enabled(false);
      end_.Enabled(true);
      BeginRest();
    };
    end_.Tick = [] { EndRest("rest", PublicDim.WatchHandle > 0); };
  }

 private:
  bool watched_ = false;  ///< At the tick before, too.
  platform::Timer begin_{Settling, true};
  platform::Timer end_{Resting, false};
};

/// Two timers of 500 milliseconds, and one of 100 in place of the program's wait.
int RestBare(int argc, char** argv) {
  QApplication application(argc, argv);
  QLabel window("Quillmere");
  window.show();
  std::array<QTimer, 3> timers;
  for (QTimer& timer : timers) {
    QObject::connect(&timer, &QTimer::timeout, &window, [] {});
    timer.start(&timer == timers.data() ? 100 : 500);
  }
  QTimer::singleShot(Settling, BeginRest);
  QTimer::singleShot(Settling + Resting, [] { EndRest("rest-bare", true); });
  for (;;) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  if (argv[1] == std::string("rest-bare")) return RestBare(argc, argv);
  if (argv[1] == std::string("rest")) {
    setenv("XDG_DATA_HOME", argv[2], 1);
    return platform::RunApplication(argc, argv, [] { return std::make_unique<RestingForm>(); });
  }
  MakeCookieFolder(argv[2], Files);
  UseCookieFolder(argv[2]);
  return platform::RunApplication(argc, argv, [] { return std::make_unique<CostForm>(); });
}
