#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <string>
#include <utility>

#include <QApplication>
#include <QMetaObject>
#include <QWidget>
#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/model/Yields.h"
#include "ui/FormMain.h"

namespace fs = std::filesystem;

namespace {

/// What the process holds.
struct Held {
  long Kilobytes = 0;
  std::array<long, 3> Things{};  ///< Descriptors, threads, windows.

  static Held Now() {
    malloc_trim(0);
    const auto count = [](const char* folder) {
      return static_cast<long>(std::distance(fs::directory_iterator(folder), {}));
    };
    Held held{
        0,
        {count("/proc/self/fd"), count("/proc/self/task"), QApplication::topLevelWidgets().size()}};
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word && word != "VmRSS:";) continue;
    status >> held.Kilobytes;
    return held;
  }
};

/// The program's work over and over, each piece an event in a yield of the watch, as the user's
/// are.
class Month {
 public:
  Month() {
    fs::create_directories(folder_.Path("quillmere/cookies"));
    qputenv("XDG_DATA_HOME", folder_.Path("").parent_path().c_str());
  }

  /// `changes` files added or removed; a third of the rounds ends a watch and begins one.
  void Go(int changes) {
    rounds_ = changes / FilesARound;
    InYield = [this] {
      if (done_) return;
      QMetaObject::invokeMethod(
          qApp, [this] { Turn(); }, Qt::QueuedConnection);
    };
    form_.Load();
    while (!done_) platform::DoEvents();
    InYield = nullptr;
  }

  Held Warm{}, After{};
  int Reports = 0, Rebuilds = 0, Popups = 0;

 private:
  static constexpr int FilesARound = 10;

  void Turn() {
    if (PublicDim.ScanRunning || done_ || busy_) return;
    if (PublicDim.WatchHandle == 0) {  // the old watch may be on the stack still
      if (form_.CmdStart.Enabled()) form_.CmdStart.Click();
      return;
    }
    busy_ = true;
    Work(turn_++ % 6);
    if (turn_ % 6 == 0) EndRound(turn_ / 6);
    busy_ = false;
  }

  void EndRound(int round) {
    done_ = round >= rounds_;
    if (round == rounds_ / 5) Warm = Held::Now();
    if (done_) After = Held::Now();
    Reports = form_.ListLog.ListCount();
    if (round % 3 == 0 || done_) form_.CmdStop.Click();
  }

  void Work(int turn) {
    const int round = turn_ / 6;
    if (turn == 0) return Change(round % 2 == 0);
    if (turn == 3) {
      form_.TimerCompare.Tick();
      form_.TimerCookie.Tick();
      Rebuilds += form_.ListVCookie.Count() == (round % 2 == 0 ? FilesARound : 0) ? 1 : 0;
      form_.ListVCookie.ColumnClick(1 + round % 7);
      form_.CmdSearch.Click();
      form_.ListVCookie.DblClick();
    }
    if (turn == 4) CloseWindows();
  }

  void Change(bool appear) const {
    for (int i = 0; i < FilesARound; ++i) {
      const std::string name = "quillmere/cookies/f" + std::to_string(i) + ".txt";
      if (!appear) fs::remove(folder_.Path(name));
      if (appear) folder_.Write(name, Record("password", "v", "s/"));
    }
  }

  void CloseWindows() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      const bool popup = window->objectName() == "FormMsg";
      Popups += popup ? 1 : 0;
      if (popup || window->objectName() == "FormView") window->close();
    }
  }

  CookieFolder folder_;
  FormMain form_;
  int rounds_ = 0;
  int turn_ = 0;
  bool done_ = false;
  bool busy_ = false;
};

// ENDURANCE_CHANGES=100000 is the work of a month.
TEST(Endurance, HoldsNoMoreAfterAMonthsWork) {
  const char* const asked = std::getenv("ENDURANCE_CHANGES");
  const int changes = asked != nullptr ? std::stoi(asked) : 2000;
  Month month;
  month.Go(changes);
  for (const auto& [when, held] : {std::pair("before", month.Warm), {"after", month.After}}) {
    std::printf("%-6s %ld descriptors, %ld threads, %ld windows, %ld kB\n", when, held.Things[0],
                held.Things[1], held.Things[2], held.Kilobytes);
  }
  EXPECT_EQ(month.Reports, changes);
  EXPECT_EQ(month.Rebuilds, changes / 10);
  EXPECT_EQ(month.Popups, changes);
  EXPECT_EQ(month.After.Things, month.Warm.Things);
#ifndef __SANITIZE_ADDRESS__  // which keeps back what is freed
  constexpr long BytesALogLine = 100;
  constexpr long Kilobytes = 1500;
  const long log = (changes - changes / 5) * BytesALogLine / 1024;
  EXPECT_LT(month.After.Kilobytes, month.Warm.Kilobytes + log + Kilobytes);
#endif
}

}  // namespace
