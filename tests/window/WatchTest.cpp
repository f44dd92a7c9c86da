#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "ui/FormMain.h"

namespace {

/// The main window over a folder of its own. The folder is resolved at its load, through the
/// environment.
class Watch : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder_.Path("quillmere/cookies"));
    qputenv("XDG_DATA_HOME", folder_.Path("").parent_path().c_str());
    cookies_ = folder_.Path("quillmere/cookies");
    // Runs inside every yield, as whatever the user does would.
    QObject::connect(&inYield_, &QTimer::timeout, [this] {
      PublicDim.MsgEnabled = false;
      // A copy: an act may put another in its place.
      if (const auto act = act_) act();
    });
    inYield_.start(0);
  }

  void MakeFiles(int count) const {
    for (int i = 0; i < count; ++i) MakeFile("f" + std::to_string(i));
  }

  void MakeFile(const std::string& name) const {
    std::ofstream(cookies_ / (name + ".txt")) << name;
  }

  template <class Condition>
  bool WaitFor(Condition condition) {
    return QTest::qWaitFor(condition, 10000);
  }

  CookieFolder folder_;
  std::filesystem::path cookies_;
  std::function<void()> act_;
  QTimer inYield_;
};

TEST_F(Watch, AStopInsideTheFirstScanIsHonouredRightAfterIt) {
  MakeFiles(300);
  FormMain form;
  bool clicked = false;
  act_ = [&] {
    if (clicked || PublicDim.ScanRowCount < 100) return;
    clicked = true;
    EXPECT_TRUE(form.CmdStop.Enabled());
    form.CmdStop.Click();
    EXPECT_TRUE(form.CmdStart.Enabled()) << "the click shows no effect";
    EXPECT_FALSE(form.CmdStop.Enabled());
  };
  form.Load();  // would not return if a watch ran
  EXPECT_TRUE(clicked);
  EXPECT_EQ(PublicDim.KnownRows.size(), 300u);
  EXPECT_TRUE(form.CmdStart.Enabled());
  EXPECT_FALSE(form.CmdStop.Enabled());
  EXPECT_TRUE(PublicDim.WatchStopping);
  EXPECT_EQ(PublicDim.WatchHandle, 0);
  act_ = nullptr;
  EXPECT_TRUE(WaitFor([&] { return form.ListVCookie.Count() == 0 && !PublicDim.CookieListStale; }))
      << "the first list is still built";
}

TEST_F(Watch, AStartTakesBackAStopInsideTheFirstScan) {
  MakeFiles(300);
  FormMain form;
  double rows = 0;
  bool watched = false;
  act_ = [&] {
    EXPECT_GE(PublicDim.ScanRowCount, rows) << "a second scan was begun";
    if (rows == 0 && PublicDim.ScanRowCount >= 100) {
      rows = PublicDim.ScanRowCount;
      form.CmdStop.Click();
      form.CmdStart.Click();
      EXPECT_FALSE(form.CmdStart.Enabled());
      EXPECT_TRUE(form.CmdStop.Enabled());
    }
    if (PublicDim.WatchHandle <= 0) return;
    watched = true;
    form.CmdStop.Click();
  };
  form.Load();
  EXPECT_TRUE(watched);
  EXPECT_TRUE(form.CmdStart.Enabled());
  EXPECT_FALSE(form.CmdStop.Enabled());
}

TEST_F(Watch, TheFirstListIsBuiltAlsoWhenTheCleanerComesBeforeIt) {
  MakeFiles(300);
  folder_.Write("quillmere/cookies/survivor.txt", Record("id", "42", "shop.example/"));
  FormMain form;
  bool reset = false;
  act_ = [&] {
    if (PublicDim.WatchHandle > 0) return form.CmdStop.Click();
    if (reset || PublicDim.ScanRowCount < 100) return;
    reset = true;
    PublicDim.KnownRows = PublicDim.CurrentRows = Snapshot(1);
    PublicDim.BaselineReset = PublicDim.CookieListStale = true;
    form.TimerCookie.Tick();
  };
  form.Load();
  act_ = nullptr;
  EXPECT_TRUE(reset);
  EXPECT_TRUE(WaitFor([&] { return form.ListVCookie.Count() == 1; }));
}

TEST_F(Watch, AStartInsideAComparisonsScanWaitsForItsEndAndTheTimerTicksOn) {
  MakeFiles(300);
  FormMain form;
  act_ = [&] {
    if (PublicDim.WatchHandle > 0) form.CmdStop.Click();
  };
  form.Load();
  PublicDim.ChangePending = true;
  const auto reportThenStop = [&] {
    if (form.ListLog.ListCount() > 0) form.CmdStop.Click();
  };
  const auto changeTheFolder = [&] {
    if (PublicDim.WatchHandle <= 0) return;
    MakeFile("new");
    act_ = reportThenStop;
  };
  act_ = [&] {
    if (!PublicDim.ScanRunning || PublicDim.ScanRowCount < 100) return;
    const double rows = PublicDim.ScanRowCount;
    form.CmdStart.Click();
    EXPECT_EQ(PublicDim.ScanRowCount, rows) << "a second scan ran inside the first";
    EXPECT_FALSE(form.CmdStart.Enabled());
    EXPECT_TRUE(form.CmdStop.Enabled());
    act_ = changeTheFolder;
  };
  ASSERT_TRUE(WaitFor([&] { return form.ListLog.ListCount() > 0 && form.CmdStart.Enabled(); }));
  EXPECT_EQ(form.ListLog.ListCount(), 1);
  EXPECT_NE(form.ListLog.List(0).find("added: new.txt"), std::string::npos);
}

TEST_F(Watch, StopAndStartOverAndOverDoNotPileUpOnTheStack) {
  MakeFiles(3);
  FormMain form;
  std::uintptr_t lowest = UINTPTR_MAX;
  std::uintptr_t highest = 0;
  int rounds = 0;
  act_ = [&] {
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    lowest = std::min(lowest, here);
    highest = std::max(highest, here);
    form.CmdStop.Click();
    EXPECT_NE(form.CmdStart.Enabled(), form.CmdStop.Enabled());
    if (++rounds < 1000) {
      form.CmdStart.Click();
    } else {
      act_ = nullptr;
    }
  };
  form.Load();
  EXPECT_EQ(rounds, 1000);
  EXPECT_LT(highest - lowest, 64 * 1024u);
  EXPECT_TRUE(form.CmdStart.Enabled());
}

TEST_F(Watch, TheCleanersResetMakesAScanUnderWayVoid) {
  MakeFiles(300);
  FormMain form;
  bool reset = false;
  act_ = [&] {
    if (PublicDim.WatchHandle > 0) form.CmdStop.Click();
  };
  form.Load();
  PublicDim.ChangePending = true;
  act_ = [&] {
    if (reset || !PublicDim.ScanRunning || PublicDim.ScanRowCount < 100) return;
    reset = true;
    PublicDim.KnownRows = PublicDim.CurrentRows = Snapshot(1);
    PublicDim.BaselineReset = true;
    for (int i = 0; i < 300; ++i)
      std::filesystem::remove(cookies_ / ("f" + std::to_string(i) + ".txt"));
  };
  EXPECT_TRUE(WaitFor([&] { return reset && !PublicDim.ScanRunning; }));
  EXPECT_EQ(form.ListLog.ListCount(), 0) << "files are reported that the cleaner deleted";
}

}  // namespace
