#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "core/ModRegistry.h"
#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "platform/Files.h"
#include "tests/unit/TemporaryFolder.h"

using namespace std::chrono_literals;

namespace {

/// Lets another process write without end, and kills it in the midst of it.
template <class Write>
void KillWhile(Write write, std::chrono::microseconds after) {
  const pid_t child = fork();
  if (child == 0) {
    for (bool odd = false;; odd = !odd) write(odd);
  }
  std::this_thread::sleep_for(after);
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

constexpr int Rounds = 40;

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
  SaveConfig();
  const std::string before = folder.Read("config.ini");
  PublicDim.SaveLog = PublicDim.ToTray = PublicDim.PlaySound1 = PublicDim.PlaySound2 = true;
  SaveConfig();
  const std::string after = folder.Read("config.ini");
  ASSERT_NE(before, after);
  for (int round = 0; round < Rounds; ++round) {
    KillWhile(
        [](bool odd) {
          PublicDim.SaveLog = PublicDim.ToTray = PublicDim.PlaySound1 = PublicDim.PlaySound2 = odd;
          SaveConfig();
        },
        1ms + round * 137us);
    const std::string content = folder.Read("config.ini");
    EXPECT_TRUE(content == before || content == after) << content;
  }
  SaveConfig();
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1)
      << "what the killed ones left stays behind";
}

TEST(Faults, AKilledProgramLeavesTheRegistryWhole) {
  const std::string key = "Software\\Quillmere\\Faults";
  const std::string texts[] = {std::string(20'000, 'a'), std::string(50'000, 'b')};
  CreateRegKey(platform::HKEY_CURRENT_USER, key);
  WriteRegValue(platform::HKEY_CURRENT_USER, key, "Other", platform::REG_SZ, std::string("kept"));
  WriteRegValue(platform::HKEY_CURRENT_USER, key, "Text", platform::REG_SZ, texts[0]);
  for (int round = 0; round < Rounds; ++round) {
    KillWhile(
        [&](bool odd) {
          WriteRegValue(platform::HKEY_CURRENT_USER, key, "Text", platform::REG_SZ,
                        texts[odd ? 1 : 0]);
        },
        5ms + round * 137us);
    const RegValue other = ReadRegValue(platform::HKEY_CURRENT_USER, key, "Other");
    EXPECT_EQ(std::get<std::string>(other), "kept");
    const RegValue text = ReadRegValue(platform::HKEY_CURRENT_USER, key, "Text");
    EXPECT_TRUE(std::get<std::string>(text) == texts[0] || std::get<std::string>(text) == texts[1]);
  }
}
