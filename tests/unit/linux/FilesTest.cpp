#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/FileSearch.h"
#include "platform/Files.h"
#include "tests/support/TemporaryFolder.h"

using namespace platform;

TEST(LinuxFiles, ReplaceKeepsModeAndLinksAndIsWholeOrNone) {
  const TemporaryFolder folder;
  const std::string old = folder.Write("old.ini", "a longer text than the new one");
  chmod(old.c_str(), 0640);
  std::filesystem::create_hard_link(folder.Write("a.ini", "old"), folder.Path("twin.ini"));
  symlink("old.ini", folder.Path("link.ini").c_str());
  symlink("ring.ini", folder.Path("ring.ini").c_str());
  chmod(folder.Write("locked.ini", "old").c_str(), 0444);
  mkfifo(folder.Path("pipe.ini").c_str(), 0600);
  folder.Write(".quillmere-new-1");  // of a process that runs
  const Names before = folder.Entries();
  // Left by processes that were killed, the last one of the same number as this one.
  for (const pid_t process : {999'999'999, getpid()}) {
    folder.Write(".quillmere-new-" + std::to_string(process));
  }
  EXPECT_TRUE(WriteFileWhole(folder.Path("link.ini"), "new"));
  EXPECT_TRUE(WriteFileWhole(folder.Path("a.ini"), "whole"));
  for (const char* name : {"ring.ini", "locked.ini", "pipe.ini", "none/new.ini", ""}) {
    EXPECT_FALSE(WriteFileWhole(folder.Path(name), "new")) << name;
  }
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit usual{};
  getrlimit(RLIMIT_FSIZE, &usual);
  const rlimit nearlyFull{2, usual.rlim_max};
  setrlimit(RLIMIT_FSIZE, &nearlyFull);
  const bool replaced = WriteFileWhole(folder.Path("a.ini"), "new");
  setrlimit(RLIMIT_FSIZE, &usual);
  EXPECT_FALSE(replaced);
  EXPECT_EQ(folder.Read("a.ini") + folder.Read("twin.ini") + folder.Read("old.ini"), "wholeoldnew");
  EXPECT_EQ(folder.Read("locked.ini"), "old");
  EXPECT_EQ(std::filesystem::status(old).permissions(), std::filesystem::perms{0640});
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.ini")));
  EXPECT_EQ(folder.Entries(), before);
}

TEST(LinuxFiles, AFileWhoseFolderTakesNoOtherIsWrittenOver) {
  const TemporaryFolder folder;
  const std::string path = folder.Write("fixed/old.ini", "a longer text than the new one");
  // A mount stops root as the folder's rights stop a user.
  const bool mounted = mount(path.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0;
  if (geteuid() == 0 && !mounted) GTEST_SKIP() << "mounting is not permitted";
  chmod(folder.Path("fixed").c_str(), 0500);
  EXPECT_TRUE(WriteFileWhole(path, "new"));
  chmod(folder.Path("fixed").c_str(), 0700);
  if (mounted) umount(path.c_str());
  EXPECT_EQ(folder.Read("fixed/old.ini"), "new");
}

TEST(LinuxFiles, AShortReadIsNotTheEndOfAFile) {
  // The kernel gives out this one a page at a time.
  InputFile file("/proc/self/smaps");
  const std::string content = file.LineInput();
  EXPECT_GT(content.size(), 8192u);
  EXPECT_NE(content.find("[stack]"), std::string::npos);
}

TEST(LinuxFiles, WhatTakesANameWithinARebuildIsNotRead) {
  const TemporaryFolder folder;
  const std::string path = folder.Path("a.txt");
  const std::function<void()> exchanges[] = {[&] { symlink("/dev/zero", path.c_str()); },
                                             [&] { mkfifo(path.c_str(), 0600); }};
  for (const auto& exchange : exchanges) {
    folder.Write("a.txt");
    const FolderAtHand listed(folder.Path("*.txt"));
    unlink(path.c_str());
    exchange();
    EXPECT_FALSE(InputFile(path).IsOpen());
    unlink(path.c_str());
  }
}

TEST(LinuxFiles, WhatChangesAfterReadingBeganIsReadAsItIs) {
  const TemporaryFolder folder;
  const auto name = [](int number) { return "in/" + std::to_string(number) + ".txt"; };
  const std::function<void()> changes[] = {
      [&] {
        folder.Write(name(3), "soon"), folder.Write(name(4), "longer"), folder.Write(name(400));
        unlink(folder.Path(name(50)).c_str());
        rename(folder.Path(name(60)).c_str(), folder.Path(name(70)).c_str());
      },
      [&] { std::filesystem::rename(folder.Path("in"), folder.Path("out")); }};
  for (const auto& change : changes) {
    for (int i = 0; i < 300; ++i) folder.Write(name(i), std::to_string(i));
    FolderAtHand::ComesSoon(folder.Path("in/*.txt"));
    usleep(50'000);  // by then most has been read
    change();
    const FolderAtHand changed(folder.Path("in/*.txt"));
    for (int i = 0; i <= 400; ++i) {
      InputFile file(folder.Path(name(i)));
      EXPECT_EQ(file.IsOpen(), folder.Has(name(i))) << i;
      EXPECT_EQ(file.LineInput(), folder.Read(name(i))) << i;
    }
  }
}

// Between two calls of the kernel the place where a listing of tmpfs paused can be gone.
TEST(LinuxFiles, AFolderThatIsBeingEmptiedGivesEveryFileOnce) {
  const TemporaryFolder folder("/dev/shm");
  const auto name = [](int number) { return std::to_string(number) + ".txt"; };
  for (int i = 0; i < 5000; ++i) folder.Write(name(i));
  WIN32_FIND_DATA data;
  const HANDLE search = FindFirstFileA(folder.Path("*.txt"), data);
  for (int i = 0; i < 4000; ++i) unlink(folder.Path(name(i)).c_str());
  Names left = folder.Entries();
  left.erase(data.cFileName);
  Names found;
  while (FindNextFileA(search, data) != 0) found.insert(data.cFileName);
  FindClose(search);
  EXPECT_EQ(found, left);
}
