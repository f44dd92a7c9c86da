#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/FileSearch.h"
#include "platform/Files.h"
#include "tests/support/TemporaryFolder.h"

using namespace platform;

TEST(Files, WhatIsNoAbsolutePathNamesNothing) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.Path());
  folder.Write("here.txt", "kept");
  folder.Write("\\here.txt", "kept");  // no name where that divides names
  const Names before = folder.Entries();
  const auto contents = [&] { return folder.Read("here.txt") + folder.Read("\\here.txt"); };
  const std::string kept = contents();
  const std::string cut = folder.Path("here.txt") + std::string("\0x", 2);
  for (const std::string& path :
       Names{"", "here.txt", "./here.txt", "\\here.txt", "\\*.txt", "*.*", cut, "C:here.txt"}) {
    WIN32_FIND_DATA data;
    EXPECT_EQ(FindFirstFileA(path, data), INVALID_HANDLE_VALUE) << path;
    EXPECT_EQ(Dir(path, vbDirectory | vbHidden), "") << path;
    EXPECT_FALSE(Kill(path)) << path;
    EXPECT_FALSE(MkDir(path + "new")) << path;
    EXPECT_FALSE(InputFile(path).IsOpen()) << path;
    EXPECT_FALSE(WriteFileWhole(path, "new")) << path;
    EXPECT_FALSE(AppendFile(path, "new")) << path;
  }
  EXPECT_EQ(contents(), kept);
  EXPECT_EQ(folder.Entries(), before);
}

TEST(Files, KillTakesWhatIsNamedAndNothingElse) {
  const std::pair<std::string, Names> cases[] = {{"a.txt", {"a.txt"}},
                                                 {"star*.txt", {"star*.txt"}},
                                                 {"*.*", {"a.txt", "star*.txt", "starred.txt"}},
                                                 {"locked.txt", {}},
                                                 {"none.txt", {}}};
  for (const auto& [name, gone] : cases) {
    const TemporaryFolder folder;
    // Not every machine can have one with a star.
    for (const char* file : {"a.txt", "star*.txt", "starred.txt", ".hidden.txt", "locked.txt"}) {
      folder.Write(file);
    }
    machine::ReadOnly(folder.Path("locked.txt"), true);
    machine::Hide(folder.Path(".hidden.txt"));
    Names left = folder.Entries();
    const bool takesOne = gone.size() == 1 && left.contains(*gone.begin());
    EXPECT_EQ(Kill(folder.Path(name)), takesOne) << name;
    for (const std::string& file : gone) left.erase(file);
    EXPECT_EQ(folder.Entries(), left) << name;
  }
}

TEST(Files, TellsWhichFoldersMayBeCleared) {
  const TemporaryFolder folder;
  folder.Write("home/cookies/a.txt");
  folder.Write("home/file");
  machine::UseHome(folder.Path("home"));
  for (const char* safe : {"home/cookies/", "home/cookies"}) {
    EXPECT_TRUE(IsSafeToClear(folder.Path(safe))) << safe;
  }
  const WorkingFolder working(folder.Path("home"));
  Names unsafe{"", "\\", "C:\\", "/", "//", "cookies"};
  for (const char* name : {"", "home", "home/", "home/cookies/..", "home/gone", "home/file"}) {
    unsafe.insert(folder.Path(name));
  }
  for (const std::string& path : unsafe) EXPECT_FALSE(IsSafeToClear(path)) << path;
}
