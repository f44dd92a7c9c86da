#include <chrono>
#include <csignal>
#include <filesystem>
#include <set>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "platform/Files.h"
#include "tests/unit/TemporaryFolder.h"

using namespace std::chrono_literals;

namespace {

/// Saves settings without end in another process, and kills it in the midst of that.
void KillWhileSaving(std::chrono::microseconds after) {
  const pid_t child = fork();
  while (child == 0) {
    PublicDim.SaveLog = PublicDim.ToTray = !PublicDim.ToTray;
    SaveConfig();
  }
  std::this_thread::sleep_for(after);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

}  // namespace

TEST(Faults, AShortReadIsNotTheEndOfAFile) {
  // The kernel gives out this one a page at a time.
  platform::InputFile file("/proc/self/smaps");
  const std::string content = file.LineInput();
  EXPECT_GT(content.size(), 8192u);
  EXPECT_NE(content.find("[stack]"), std::string::npos);
}

TEST(Faults, AKilledProgramLeavesSettingsWhole) {
  const TemporaryFolder folder;
  PublicDim = {};
  PublicDim.AppPath = folder.Path();
  std::set<std::string> whole;
  for (const bool on : {false, true}) {
    PublicDim.SaveLog = PublicDim.ToTray = on;
    SaveConfig();
    whole.insert(folder.Read("config.ini"));
  }
  constexpr int Rounds = 40;
  for (int round = 0; round < Rounds; ++round) {
    KillWhileSaving(1ms + round * 137us);
    EXPECT_TRUE(whole.contains(folder.Read("config.ini"))) << folder.Read("config.ini");
  }
  SaveConfig();
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1)
      << "what the killed ones left stays behind";
}
