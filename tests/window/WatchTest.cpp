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
    MakeFiles();
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

  void MakeFiles() const {
    for (int i = 0; i < 300; ++i) MakeFile("f" + std::to_string(i));
  }

  static bool InsideAScan() { return PublicDim.ScanRunning && PublicDim.ScanRowCount >= 100; }
  static bool ShowsStopped(FormMain& form) {
    return form.CmdStart.Enabled() && !form.CmdStop.Enabled();
  }

  CookieFolder folder_;
  std::function<void()> act_;
  QTimer inYield_;
};

TEST_F(Watch, AStartInsideAComparisonsScanWaitsForItsEndAndTheTimerTicksOn) {
  FormMain form;
  act_ = [&] {
    if (PublicDim.WatchHandle > 0) form.CmdStop.Click();
  };
  form.Load();
  PublicDim.ChangePending = true;
  const auto changeTheFolderThenStop = [&] {
    if (PublicDim.WatchHandle > 0 && !folder_.Has("quillmere/cookies/new.txt")) MakeFile("new");
    if (form.ListLog.ListCount() > 0) form.CmdStop.Click();
  };
  act_ = [&] {
    if (!InsideAScan()) return;
    const double rows = PublicDim.ScanRowCount;
    form.CmdStart.Click();
    EXPECT_EQ(PublicDim.ScanRowCount, rows) << "a second scan ran inside the first";
    act_ = changeTheFolderThenStop;
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
    std::filesystem::remove_all(folder_.Path("quillmere/cookies"));
    folder_.Write("quillmere/cookies/survivor.txt", Record("id", "42", "shop.example/"));
    return true;
  };
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

  MakeFiles();
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
