#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

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
  Watch() {
    qputenv("XDG_DATA_HOME", folder_.Path("").parent_path().c_str());
    for (int i = 0; i < 300; ++i) MakeFile("f" + std::to_string(i));
    // Runs inside every yield, as whatever the user does would.
    QObject::connect(&inYield_, &QTimer::timeout, [this] {
      PublicDim.MsgEnabled = false;
      // A copy: an act may put another in its place.
      if (const auto act = act_) act();
    });
    inYield_.start(0);
  }

  void MakeFile(const std::string& name) const {
    folder_.Write("quillmere/cookies/" + name + ".txt");
  }

  static bool InsideAScan() { return PublicDim.ScanRunning && PublicDim.ScanRowCount >= 100; }
  static bool ShowsStopped(FormMain& form) {
    return form.CmdStart.Enabled() && !form.CmdStop.Enabled();
  }
  static bool ShowsWatching(FormMain& form) {
    return !form.CmdStart.Enabled() && form.CmdStop.Enabled();
  }

  CookieFolder folder_;
  std::function<void()> act_;
  QTimer inYield_;
};

TEST_F(Watch, AStopInsideTheFirstScanIsHonouredRightAfterIt) {
  FormMain form;
  bool clicked = false;
  act_ = [&] {
    if (clicked || !InsideAScan()) return;
    clicked = true;
    EXPECT_TRUE(ShowsWatching(form));
    form.CmdStop.Click();
    EXPECT_TRUE(ShowsStopped(form)) << "the click shows no effect";
  };
  form.Load();  // would not return if a watch ran
  EXPECT_TRUE(clicked);
  EXPECT_EQ(PublicDim.KnownRows.size(), 300u);
  EXPECT_TRUE(ShowsStopped(form));
  EXPECT_TRUE(PublicDim.WatchStopping);
  EXPECT_EQ(PublicDim.WatchHandle, 0);
  EXPECT_TRUE(QTest::qWaitFor([] { return !PublicDim.CookieListStale; }))
      << "the first list is still built";
}

TEST_F(Watch, AStartInsideAComparisonsScanWaitsForItsEndAndTheTimerTicksOn) {
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
    if (!InsideAScan()) return;
    const double rows = PublicDim.ScanRowCount;
    form.CmdStart.Click();
    EXPECT_EQ(PublicDim.ScanRowCount, rows) << "a second scan ran inside the first";
    EXPECT_TRUE(ShowsWatching(form));
    act_ = changeTheFolder;
  };
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return form.ListLog.ListCount() > 0 && ShowsStopped(form); }, 10000));
  EXPECT_EQ(form.ListLog.ListCount(), 1);
  EXPECT_NE(form.ListLog.List(0).find("added: new.txt"), std::string::npos);
}

TEST_F(Watch, StopAndStartOverAndOverDoNotPileUpOnTheStack) {
  std::filesystem::remove_all(folder_.Path("quillmere"));
  FormMain form;
  std::uintptr_t lowest = UINTPTR_MAX;
  std::uintptr_t highest = 0;
  int rounds = 0;
  act_ = [&] {
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    lowest = std::min(lowest, here);
    highest = std::max(highest, here);
    form.CmdStop.Click();
    if (++rounds < 1000) {
      form.CmdStart.Click();
    } else {
      act_ = nullptr;
    }
  };
  form.Load();
  EXPECT_EQ(rounds, 1000);
  EXPECT_LT(highest - lowest, 64 * 1024u);
  EXPECT_TRUE(ShowsStopped(form));
}

TEST_F(Watch, TheCleanerInsideAScan) {
  const auto clean = [this] {
    if (!InsideAScan()) return false;
    PublicDim.KnownRows = PublicDim.CurrentRows = Snapshot(1);
    PublicDim.BaselineReset = PublicDim.CookieListStale = true;
    for (int i = 0; i < 300; ++i) {
      std::filesystem::remove(folder_.Path("quillmere/cookies/f" + std::to_string(i) + ".txt"));
    }
    return true;
  };
  folder_.Write("quillmere/cookies/survivor.txt", Record("id", "42", "shop.example/"));
  FormMain form;
  bool first = false;
  act_ = [&] {
    if (PublicDim.WatchHandle > 0) return form.CmdStop.Click();
    if (first || !clean()) return;
    first = true;
    form.TimerCookie.Tick();
  };
  form.Load();
  EXPECT_TRUE(first);
  EXPECT_TRUE(QTest::qWaitFor([&] { return form.ListVCookie.Count() == 1; })) << "the first list";

  for (int i = 0; i < 300; ++i) MakeFile("f" + std::to_string(i));
  bool later = false;
  act_ = [&] { later = later || clean(); };
  PublicDim.ChangePending = true;
  EXPECT_TRUE(QTest::qWaitFor([&] { return later && !PublicDim.ScanRunning; }));
  for (int i = 0; i < form.ListLog.ListCount(); ++i) {
    EXPECT_EQ(form.ListLog.List(i).find("f1"), std::string::npos)
        << "a file is reported that the cleaner deleted";
  }
}

}  // namespace
