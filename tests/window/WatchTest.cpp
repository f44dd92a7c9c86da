#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "tests/support/Application.h"
#include "tests/support/CookieFolder.h"
#include "tests/support/Yields.h"
#include "tests/window/Answers.h"
#include "tests/window/CookieLists.h"
#include "ui/FormMain.h"

namespace {

class Watch : public testing::Test {
 protected:
  Watch() {
    KeepCookiesIn(folder_.Path("cookies"));
    MakeFiles();
    // As what the user does would. An act may put another in its place.
    InYield = [this] {
      if (std::exchange(acting_, true)) return;
      PublicDim.MsgEnabled = false;
      if (const auto act = act_) act();
      acting_ = false;
    };
  }
  ~Watch() override { InYield = nullptr; }

  void LoadAndStop(FormMain& form) {
    act_ = [&] {
      if (PublicDim.WatchHandle > 0) form.CmdStop.Click();
    };
    form.Load();
  }

  void MakeFiles() const {
    for (int i = 0; i < 300; ++i) folder_.Write(cookies_ + "f" + std::to_string(i) + ".txt");
  }

  static bool InsideAScan() { return WatchFlags.ScanRunning && PublicDim.ScanRowCount >= 100; }

  const std::string cookies_ = "cookies/";
  CookieFolder folder_;
  std::function<void()> act_;
  bool acting_ = false;
};

TEST_F(Watch, AStartInsideAComparisonsScanWaitsForItsEndAndTheTimerTicksOn) {
  FormMain form;
  LoadAndStop(form);
  PublicDim.ChangePending = true;
  act_ = [&] {
    if (!InsideAScan()) return;
    form.CmdStart.Click();
    act_ = [&] {
      if (PublicDim.WatchHandle > 0 && !folder_.Has(cookies_ + "n.txt")) {
        folder_.Write(cookies_ + "n.txt");
      }
      if (form.ListLog.ListCount() > 0) form.CmdStop.Click();
    };
  };
  EXPECT_TRUE(
      machine::WaitFor([&] { return form.ListLog.ListCount() == 1 && form.CmdStart.Enabled(); }));
}

TEST_F(Watch, AStartInsideAQuestionWaitsForTheAnswer) {
  FormMain form;
  LoadAndStop(form);
  platform::Timer start(1, true);
  start.Tick = [&] {
    start.Enabled(false);
    form.CmdStart.Click();
  };
  platform::Timer answer(100, true);
  answer.Tick = [] { machine::PressInBox(platform::IDNO); };
  form.Check1.Value(1);
  form.CmdClean.Click();
  answer.Enabled(false);
  EXPECT_TRUE(WatchFlags.StartRequested) << "the answer would come when the watch ends";
  EXPECT_TRUE(machine::WaitFor([] { return !WatchFlags.StartRequested; }));
}

TEST_F(Watch, StopAndStartOverAndOverDoNotPileUpOnTheStack) {
  std::filesystem::remove_all(folder_.Native("cookies"));  // so that no scan takes the clicks
  FormMain form;
  const auto* const top = static_cast<char*>(__builtin_frame_address(0));
  int rounds = 0;
  act_ = [&] {
    EXPECT_LT(top - static_cast<char*>(__builtin_frame_address(0)), 256 * 1024);
    form.CmdStop.Click();
    if (++rounds < 1000) return form.CmdStart.Click();
    act_ = nullptr;
  };
  form.Load();
  EXPECT_EQ(rounds, 1000);
}

// The first one, with a tick of the list in it, and a comparison's.
TEST_F(Watch, AScanThatTheCleanerDisturbsIsMadeAgain) {
  FormMain form;
  const Answers yes;
  bool cleaned = false;
  const auto clean = [&] {
    if (cleaned || !InsideAScan()) return;
    cleaned = true;
    form.Check1.Value(1);
    form.CmdClean.Click();
    form.TimerCookie.Tick();
    folder_.Write(cookies_ + "survivor.txt", Record("name", "value", "server/"));
  };
  act_ = [&] { return PublicDim.WatchHandle > 0 ? form.CmdStop.Click() : clean(); };
  form.Load();
  EXPECT_EQ(form.ListLog.ListCount(), 1);
  EXPECT_TRUE(machine::WaitFor([&] { return form.ListVCookie.Count() == 1; })) << "the first list";

  MakeFiles();
  cleaned = false;
  act_ = clean;
  PublicDim.ChangePending = true;
  EXPECT_TRUE(machine::WaitFor([&] { return cleaned && !WatchFlags.ScanRunning; }));
  EXPECT_EQ(form.ListLog.ListCount(), 3) << "what the cleaner deleted is no news";
  EXPECT_NE(form.ListLog.List(2).find("added: survivor.txt"), std::string::npos);
}

}  // namespace
