#include <functional>
#include <map>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/common/FolderWatch.h"

using namespace platform;
using std::chrono::milliseconds;

namespace {

struct Fake {
  std::optional<FolderState> State = FolderState{1, 2, 3};
  std::map<std::size_t, FileStamp> Files{{1, 10}, {2, 20}};
  bool Granted = false;
  bool TellsAll = true;
  milliseconds PerFile{0};
};

class Reading final : public FolderReading {
 public:
  explicit Reading(Fake folder) : folder_(std::move(folder)) {}
  std::optional<FolderState> Folder() const override { return folder_.State; }
  bool Next(File& file) override {
    if (!folder_.State || folder_.Files.empty()) return false;
    std::this_thread::sleep_for(folder_.PerFile);
    const auto first = folder_.Files.extract(folder_.Files.begin());
    file = {first.key(), first.mapped()};
    return true;
  }

 private:
  Fake folder_;
};

class Watch final : public FolderWatch {
 public:
  Fake There;

 private:
  bool Ask() override { return There.State && There.Granted; }
  void GiveUp() override {}
  void TakeEvents() override {}
  bool IsInPlace() const override { return true; }
  bool TellsAll() const override { return There.TellsAll; }
  bool NeedsStamps() const override { return false; }
  std::unique_ptr<FolderReading> Read() const override { return std::make_unique<Reading>(There); }
};

}  // namespace

TEST(FolderWatch, WhatTheSystemDoesNotTellIsSeenWithinTwoSecondsAndSignalledOnce) {
  const Fake refused;
  const Fake missing{.State = {}};
  const Fake shared{.Granted = true, .TellsAll = false};
  const Fake watched{.Granted = true};
  struct Case {
    const char* What;
    Fake Before;
    std::function<void(Fake&)> Change;
    bool Signals = true;
    bool Watching = false;
  };
  const std::vector<Case> cases{
      {"nothing", refused, [](Fake&) {}, false},
      {"a file came", refused, [](Fake& now) { now.Files[3] = 30; }},
      {"a file went", refused, [](Fake& now) { now.Files.erase(1); }},
      {"the last file went", {.Files = {{1, 10}}}, [](Fake& now) { now.Files.clear(); }},
      {"a file was written", refused, [](Fake& now) { now.Files[2] = 21; }},
      {"a file was replaced by its like", refused, [](Fake& now) { now.State->Time = 4; }},
      {"the folder went", refused, [](Fake& now) { now.State.reset(); }},
      {"another took its place", refused, [](Fake& now) { now.State->Number = 5; }},
      {"the folder came", missing, [](Fake& now) { now.State = FolderState{}; }},
      {"it came and is watched", missing, [](Fake& now) { now = {.Files = {}, .Granted = true}; },
       true, true},
      {"the watch is granted", refused, [](Fake& now) { now.Granted = true; }, true, true},
      {"a share changed", shared, [](Fake& now) { now.Files[1] = 11; }, true, true},
      {"what is watched is not looked at", watched, [](Fake& now) { now.Files[1] = 11; }, false,
       true},
  };
  std::map<std::string, Watch> watches;
  for (const Case& tried : cases) {
    Watch& watch = watches[tried.What];
    watch.There = tried.Before;
    watch.Begin();
    EXPECT_FALSE(watch.TakeIn()) << tried.What;
    tried.Change(watch.There);
  }
  for (const bool again : {false, true}) {
    std::this_thread::sleep_for(milliseconds(2100));
    for (const Case& tried : cases) {
      Watch& watch = watches[tried.What];
      EXPECT_EQ(watch.TakeIn(), tried.Signals && !again) << tried.What;
      EXPECT_EQ(watch.IsWatching(), tried.Watching) << tried.What;
      EXPECT_EQ(watch.NextLook() == FolderWatch::Clock::time_point::max(),
                tried.Watching && watch.There.TellsAll);
      watch.Rearm();
    }
  }
}

TEST(FolderWatch, ASlowFolderIsLearntAndLookedAtInPieces) {
  Watch watch;
  for (std::size_t name = 0; name < 40; ++name) watch.There.Files[name] = name;
  watch.There.PerFile = milliseconds(5);
  watch.Begin();
  for (const char* what : {"what may have changed before it was learnt", "a change"}) {
    watch.There.Files[39] += 1;
    const auto begun = FolderWatch::Clock::now();
    while (!watch.IsSignalled() && FolderWatch::Clock::now() < begun + std::chrono::seconds(20)) {
      std::this_thread::sleep_for(milliseconds(1));
      const auto start = FolderWatch::Clock::now();
      watch.TakeIn();
      EXPECT_LT(FolderWatch::Clock::now() - start, milliseconds(100));
    }
    EXPECT_TRUE(watch.IsSignalled()) << what;
    watch.Rearm();
  }
}
