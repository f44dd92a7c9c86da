#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Files.h"
#include "platform/linux/Descriptor.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;

namespace {

using Names = std::multiset<std::string>;

Names AllNames(const std::string& pattern, int attributes) {
  Names names;
  for (std::string name = Dir(pattern, attributes); !name.empty(); name = Dir()) names.insert(name);
  return names;
}

/// A folder with one of everything that can lie in one.
struct Mixture : TemporaryFolder {
  Mixture() {
    Write("a.txt");
    Write("B.TXT");
    Write("star*.txt");
    Write("starred.txt");
    Write(".hidden.txt");
    Write("plain");
    chmod(Write("locked.txt").c_str(), 0444);
    mkdir(Path("sub.txt").c_str(), 0700);
    Write("sub.txt/inside.txt");
    symlink("a.txt", Path("link.txt").c_str());
    symlink("locked.txt", Path("tolocked.txt").c_str());
    symlink("nowhere", Path("broken.txt").c_str());
    symlink("sub.txt", Path("tosub.txt").c_str());
    mkfifo(Path("pipe.txt").c_str(), 0600);
  }
};

/// A disk of 64 kilobytes that is all but full.
class FullDisk {
 public:
  FullDisk() : mounted_(mount("none", folder_.Path().c_str(), "tmpfs", 0, "size=64k") == 0) {}
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    if (mounted_) umount(folder_.Path().c_str());
  }
  bool IsMounted() const { return mounted_; }
  const TemporaryFolder& Folder() const { return folder_; }

 private:
  TemporaryFolder folder_;
  bool mounted_;
};

}  // namespace

TEST(Files, WhatIsNoAbsolutePathNamesNothing) {
  const TemporaryFolder folder;
  const WorkingFolder working(folder.Path());
  folder.Write("here.txt", "kept");
  folder.Write("\\here.txt", "kept");
  const std::string cut = folder.Path("here.txt") + std::string("\0x", 2);
  for (const std::string& path :
       {std::string(), std::string("here.txt"), std::string("./here.txt"),
        std::string("\\here.txt"), std::string("\\*.txt"), std::string("\\/here.txt"),
        std::string("*.*"), cut, std::string("C:\\here.txt")}) {
    EXPECT_EQ(Dir(path, vbDirectory | vbHidden), "") << path;
    EXPECT_FALSE(Kill(path)) << path;
    EXPECT_FALSE(MkDir(path + "new")) << path;
    EXPECT_FALSE(InputFile(path).IsOpen()) << path;
    EXPECT_FALSE(ReplaceFile(path, "new")) << path;
    EXPECT_FALSE(AppendFile(path, "new")) << path;
  }
  EXPECT_EQ(folder.Read("here.txt") + folder.Read("\\here.txt"), "keptkept");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 2);
}

TEST(Files, DirFindsByNamePatternAndAttributes) {
  const Mixture folder;
  const Names texts = {"a.txt",      "B.TXT",    "star*.txt",   "starred.txt",
                       "locked.txt", "link.txt", "tolocked.txt"};
  Names everything = texts;
  everything.insert("plain");
  Names withHidden = texts;
  withHidden.insert(".hidden.txt");
  Names withFolders = texts;
  withFolders.insert({"sub.txt", "tosub.txt"});
  const struct {
    std::string Pattern;
    int Attributes;
    Names Expected;
  } cases[] = {
      {"*.txt", vbNormal, texts},
      {"*.TXT", vbNormal, texts},
      {"*.*", vbNormal, everything},
      {"*.txt", vbHidden, withHidden},
      {"*.txt", vbDirectory, withFolders},
      {"star*.txt", vbNormal, {"star*.txt"}},
      {"s*", vbNormal, {}},
      {"A.txt", vbNormal, {}},
      {".hidden.txt", vbNormal, {}},
      {".hidden.txt", vbHidden, {".hidden.txt"}},
      {"pipe.txt", vbNormal, {}},
      {"broken.txt", vbDirectory, {}},
      {"sub.txt", vbNormal, {}},
      {"sub.txt", vbDirectory, {"sub.txt"}},
      {"sub.txt/", vbNormal, {}},
      {"sub.txt/", vbDirectory, {"."}},
      {"none/", vbDirectory, {}},
      {"none/*.txt", vbNormal, {}},
      {"*.txt/inside.txt", vbNormal, {}},
  };
  for (const auto& one : cases) {
    EXPECT_EQ(AllNames(folder.Path(one.Pattern), one.Attributes), one.Expected)
        << one.Pattern << ' ' << one.Attributes;
  }
}

TEST(Files, DeletingOnTheWayLosesNoName) {
  const TemporaryFolder folder;
  constexpr int Count = 500;
  for (int i = 0; i < Count; ++i) folder.Write(std::to_string(i) + ".txt", "");
  int deleted = 0;
  for (std::string name = Dir(folder.Path("*.txt")); !name.empty(); name = Dir()) {
    deleted += Kill(folder.Path(name)) ? 1 : 0;
  }
  EXPECT_EQ(deleted, Count);
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
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
    const auto before = std::distance(std::filesystem::directory_iterator(folder.Path()), {});
    EXPECT_EQ(Kill(folder.Path(one.Name)), one.Gone) << one.Name;
    const auto after = std::distance(std::filesystem::directory_iterator(folder.Path()), {});
    EXPECT_EQ(before - after, one.Gone ? 1 : 0) << one.Name;
    EXPECT_FALSE(one.Gone && folder.Has(one.Name)) << one.Name;
    EXPECT_TRUE(one.Name == "a.txt" || folder.Has("a.txt")) << one.Name;
  }
}

TEST(Files, KillByWildcardTakesWhatCanBeDeleted) {
  const Mixture folder;
  EXPECT_FALSE(Kill(folder.Path("*.dat")));
  EXPECT_FALSE(Kill(folder.Path("*.txt"))) << "the read-only file stays";
  Names left;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    left.insert(entry.path().filename());
  }
  EXPECT_EQ(left, (Names{".hidden.txt", "plain", "locked.txt", "sub.txt", "tosub.txt", "broken.txt",
                         "pipe.txt"}));
  EXPECT_TRUE(folder.Has("sub.txt/inside.txt"));
  chmod(folder.Path("locked.txt").c_str(), 0644);
  EXPECT_TRUE(Kill(folder.Path("*.*")));
  EXPECT_FALSE(folder.Has("plain"));
}

TEST(Files, InputEndsLinesAtCarriageReturns) {
  const TemporaryFolder folder;
  const std::string large(20'000'000, 'x');
  const struct {
    std::string Content;
    std::vector<std::string> Lines;
  } cases[] = {
      {"", {}},
      {"one", {"one"}},
      {"one\r", {"one"}},
      {"one\r\ntwo\rthree\r\n", {"one", "two", "three"}},
      {"a\nb\n", {"a\nb\n"}},
      {"\r\r\n\n", {"", "", "\n"}},
      {std::string("n\0l\r\xFF", 5), {std::string("n\0l", 3), "\xFF"}},
      {large + "\r\n" + large, {large, large}},
  };
  for (const auto& one : cases) {
    InputFile file(folder.Write("lines.txt", one.Content));
    EXPECT_TRUE(file.IsOpen());
    std::vector<std::string> lines;
    while (!file.EndOfFile()) lines.push_back(file.LineInput());
    EXPECT_TRUE(lines == one.Lines) << one.Content.substr(0, 40);
    EXPECT_EQ(file.LineInput(), "");
  }
}

void ExpectOrdinaryFilesOnly(const TemporaryFolder& folder) {
  for (const char* name : {"a.txt", "link.txt", "locked.txt"}) {
    InputFile file(folder.Path(name));
    EXPECT_TRUE(file.IsOpen()) << name;
    EXPECT_EQ(file.LineInput(), folder.Read(name));
  }
  for (const char* name : {".hidden.txt", "pipe.txt", "sub.txt", "broken.txt", "none.txt", ""}) {
    InputFile file(folder.Path(name));
    EXPECT_FALSE(file.IsOpen() || !file.EndOfFile()) << name;
  }
  EXPECT_FALSE(InputFile("/dev/tty").IsOpen());
}

TEST(Files, InputOpensOrdinaryFilesOnly) {
  const Mixture folder;
  ExpectOrdinaryFilesOnly(folder);
}

TEST(Files, AFolderAtHandChangesNothingOfWhatInputFinds) {
  const Mixture folder;
  const FolderAtHand atHand(folder.Path());
  ExpectOrdinaryFilesOnly(folder);
  ExpectOrdinaryFilesOnly(folder);  // in another order than that of the directory
  EXPECT_TRUE(InputFile(folder.Write("later.txt", "made since")).IsOpen());
  std::filesystem::remove(folder.Path("a.txt"));
  EXPECT_FALSE(InputFile(folder.Path("a.txt")).IsOpen());
  const TemporaryFolder other;
  EXPECT_TRUE(InputFile(other.Write("link.txt", "of another folder")).IsOpen());
}

TEST(Files, ReplaceKeepsModeAndLinksAndLeavesNothingBehind) {
  const TemporaryFolder folder;
  folder.Write("old.ini", "a longer text than the new one");
  chmod(folder.Path("old.ini").c_str(), 0640);
  symlink("old.ini", folder.Path("link.ini").c_str());
  symlink("later.ini", folder.Path("ahead.ini").c_str());
  symlink("ring.ini", folder.Path("ring.ini").c_str());
  chmod(folder.Write("locked.ini", "old").c_str(), 0444);
  mkfifo(folder.Path("pipe.ini").c_str(), 0600);
  EXPECT_TRUE(ReplaceFile(folder.Path("link.ini"), "new"));
  EXPECT_TRUE(ReplaceFile(folder.Path("ahead.ini"), "first"));
  for (const char* name : {"ring.ini", "locked.ini", "pipe.ini", "none/new.ini", ""}) {
    EXPECT_FALSE(ReplaceFile(folder.Path(name), "new")) << name;
  }
  EXPECT_EQ(folder.Read("old.ini"), "new");
  EXPECT_EQ(folder.Read("later.ini"), "first");
  EXPECT_EQ(folder.Read("locked.ini"), "old");
  struct stat info;
  ASSERT_EQ(lstat(folder.Path("old.ini").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_TRUE(std::filesystem::is_symlink(folder.Path("link.ini")));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 7);
}

TEST(Files, AppendAddsAtTheEndAndNeverWaits) {
  const TemporaryFolder folder;
  EXPECT_TRUE(AppendFile(folder.Path("log.txt"), "one\r\n"));
  EXPECT_TRUE(AppendFile(folder.Path("log.txt"), "two\r\n"));
  EXPECT_EQ(folder.Read("log.txt"), "one\r\ntwo\r\n");
  mkfifo(folder.Path("pipe").c_str(), 0600);
  EXPECT_FALSE(AppendFile(folder.Path("pipe"), "text"));
  const Descriptor reader(open(folder.Path("pipe").c_str(), O_RDONLY | O_NONBLOCK));
  EXPECT_FALSE(AppendFile(folder.Path("pipe"), "text"));
  char byte;
  EXPECT_LE(read(reader.Number(), &byte, 1), 0) << "nothing may go into a pipe";
  EXPECT_FALSE(AppendFile(folder.Path("none/log.txt"), "text"));
}

TEST(Files, AFullDiskKeepsTheOldContent) {
  const FullDisk disk;
  if (!disk.IsMounted()) GTEST_SKIP() << "mounting a small disk takes more rights";
  const TemporaryFolder& folder = disk.Folder();
  folder.Write("config.ini", "old");
  const std::string much(100'000, 'x');
  EXPECT_FALSE(ReplaceFile(folder.Path("config.ini"), much));
  EXPECT_EQ(folder.Read("config.ini"), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
  folder.Write("log.txt", "one\r\n");
  EXPECT_FALSE(AppendFile(folder.Path("log.txt"), much));
  EXPECT_EQ(folder.Read("log.txt"), "one\r\n") << "a part of the text was added";
}
