#include <chrono>
#include <csignal>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "platform/FileSearch.h"
#include "platform/Files.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;
using namespace std::chrono_literals;

namespace {

/// A folder with one of everything that can lie in one.
struct Mixture : TemporaryFolder {
  Mixture() {
    for (const char* name : {"a.txt", "B.TXT", "star*.txt", "starred.txt", ".hidden.txt", "plain",
                             "locked.txt", "sub.txt/inside.txt"}) {
      Write(name);
    }
    chmod(Path("locked.txt").c_str(), 0444);
    symlink("a.txt", Path("link.txt").c_str());
    symlink("locked.txt", Path("tolocked.txt").c_str());
    symlink("nowhere", Path("broken.txt").c_str());
    symlink("sub.txt", Path("tosub.txt").c_str());
    mkfifo(Path("pipe.txt").c_str(), 0600);
  }
};

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

TEST(Files, WhatIsNoAbsolutePathNamesNothing) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.Path());
  folder.Write("here.txt", "kept");
  folder.Write("\\here.txt", "kept");
  const std::string cut = folder.Path("here.txt") + std::string("\0x", 2);
  for (const std::string& path : {std::string(), std::string("here.txt"), std::string("./here.txt"),
                                  std::string("\\here.txt"), std::string("\\*.txt"),
                                  std::string("*.*"), cut, std::string("C:\\here.txt")}) {
    WIN32_FIND_DATA data;
    EXPECT_EQ(FindFirstFileA(path, data), INVALID_HANDLE_VALUE) << path;
    EXPECT_EQ(Dir(path, vbDirectory | vbHidden), "") << path;
    EXPECT_FALSE(Kill(path)) << path;
    EXPECT_FALSE(MkDir(path + "new")) << path;
    EXPECT_FALSE(InputFile(path).IsOpen()) << path;
    EXPECT_FALSE(ReplaceFile(path, "new")) << path;
    EXPECT_FALSE(AppendFile(path, "new")) << path;
  }
  EXPECT_EQ(folder.Read("here.txt") + folder.Read("\\here.txt"), "keptkept");
  EXPECT_EQ(folder.Entries().size(), 2u);
}

TEST(Files, KillTakesOneFileAndNothingElse) {
  const struct {
    std::string Name;
    bool Gone;
  } cases[] = {{"a.txt", true},       {"star*.txt", true},    {".hidden.txt", true},
               {"link.txt", true},    {"tolocked.txt", true}, {"broken.txt", true},
               {"locked.txt", false}, {"sub.txt", false},     {"sub.txt/", false},
               {"pipe.txt", false},   {"none.txt", false}};
  for (const auto& one : cases) {
    const Mixture folder;
    Names left = folder.Entries();
    EXPECT_EQ(Kill(folder.Path(one.Name)), one.Gone) << one.Name;
    if (one.Gone) left.erase(one.Name);
    EXPECT_EQ(folder.Entries(), left) << one.Name;
  }
}

TEST(Files, InputOpensOrdinaryFilesOnlyAlsoInAFolderAtHand) {
  const Mixture folder;
  const auto opens = [&folder](const char* name) { return InputFile(folder.Path(name)).IsOpen(); };
  const auto expect = [&opens] {
    for (const char* name : {"a.txt", "link.txt", "locked.txt"}) EXPECT_TRUE(opens(name)) << name;
    for (const char* name : {".hidden.txt", "pipe.txt", "sub.txt", "broken.txt", "none.txt", ""}) {
      EXPECT_FALSE(opens(name)) << name;
    }
  };
  expect();
  const FolderAtHand atHand(folder.Path("*.txt"));
  expect();
  expect();  // in another order than that of the directory
  folder.Write("none.txt");
  EXPECT_TRUE(opens("none.txt")) << "it came since";
}

TEST(Files, AFolderAtHandGivesTheContentOfEveryFile) {
  const TemporaryFolder folder;
  const auto content = [](const std::string& name) {
    return std::string(name == "7.txt" ? 600'000 : 20'000, name[0]) + name;  // 7: more than a block
  };
  for (int i = 0; i < 300; ++i) {
    const std::string name = std::to_string(i) + ".txt";
    folder.Write(name, content(name));
  }
  WIN32_FIND_DATA data;
  const HANDLE search = FindFirstFileA(folder.Path("*.txt"), data);
  const FolderAtHand atHand(folder.Path("*.txt"));
  int i = 0;
  do {
    const std::string name = data.cFileName.data();
    if (++i % 7 == 0) continue;  // passed over
    const bool deleted = i % 7 == 1 && Kill(folder.Path(name));
    InputFile file(folder.Path(name));
    const std::string read = file.LineInput();
    EXPECT_TRUE(read == content(name) || (deleted && !file.IsOpen())) << name;
  } while (FindNextFileA(search, data) != 0);
  FindClose(search);
}

TEST(Files, ReplaceKeepsModeAndLinksAndLeavesNothingBehind) {
  const TemporaryFolder folder;
  chmod(folder.Write("old.ini", "a longer text than the new one").c_str(), 0640);
  symlink("old.ini", folder.Path("link.ini").c_str());
  symlink("ring.ini", folder.Path("ring.ini").c_str());
  chmod(folder.Write("locked.ini", "old").c_str(), 0444);
  mkfifo(folder.Path("pipe.ini").c_str(), 0600);
  const Names before = folder.Entries();
  EXPECT_TRUE(ReplaceFile(folder.Path("link.ini"), "new"));
  for (const char* name : {"ring.ini", "locked.ini", "pipe.ini", "none/new.ini", ""}) {
    EXPECT_FALSE(ReplaceFile(folder.Path(name), "new")) << name;
  }
  EXPECT_EQ(folder.Read("old.ini") + folder.Read("locked.ini"), "newold");
  EXPECT_EQ(std::filesystem::status(folder.Path("old.ini")).permissions(),
            std::filesystem::perms{0640});
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.ini")));
  EXPECT_EQ(folder.Entries(), before);
}

TEST(Files, AKilledProgramLeavesSettingsWhole) {
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
  EXPECT_EQ(folder.Entries(), Names{"config.ini"}) << "what the killed ones left stays behind";
}

TEST(Files, AShortReadIsNotTheEndOfAFile) {
  // The kernel gives out this one a page at a time.
  InputFile file("/proc/self/smaps");
  const std::string content = file.LineInput();
  EXPECT_GT(content.size(), 8192u);
  EXPECT_NE(content.find("[stack]"), std::string::npos);
}

// The kernel begins a listing of tmpfs anew when the file where it paused is gone with all older
// ones.
TEST(Files, AFolderThatIsBeingEmptiedGivesEveryFileOnce) {
  const TemporaryFolder folder("/dev/shm");
  const auto name = [](int number) { return std::to_string(number) + ".txt"; };
  for (int i = 0; i < 5000; ++i) folder.Write(name(i));
  WIN32_FIND_DATA data;
  const HANDLE search = FindFirstFileA(folder.Path("*.txt"), data);
  for (int i = 0; i < 4000; ++i) unlink(folder.Path(name(i)).c_str());
  Names found;
  while (FindNextFileA(search, data) != 0) found.insert(data.cFileName.data());
  FindClose(search);
  for (int i = 4000; i < 4990; ++i) EXPECT_EQ(found.count(name(i)), 1u) << i;
}
