#include <filesystem>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Files.h"
#include "platform/linux/Trash.h"
#include "tests/support/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

class RecycleBin : public testing::Test {
 protected:
  RecycleBin() {
    setenv("HOME", Path("home").c_str(), 1);
    for (const char* part : {"files", "info"}) fs::create_directories(Path("home/trash/") + part);
    for (const std::string& name : outside_) top_.Write(name);
    chmod(Path("outside").c_str(), 01777);
  }
  ~RecycleBin() override {
    for (const std::string& name : outside_) EXPECT_TRUE(top_.Has(name)) << name;
  }

  std::string Path(const std::string& name) const { return top_.Path(name); }
  void Link(const std::string& name, const std::string& target) const {
    fs::create_directories(fs::path(Path(name)).parent_path());
    fs::create_directory_symlink(target, Path(name));
  }
  bool Empty(const std::vector<std::string>& volumes = {}) const {
    return platform::EmptyTrash({Path("home/trash"), volumes});
  }

  const std::string user_ = std::to_string(geteuid());
  const Names outside_{"outside/folder/file", "outside/files/file",
                       "outside/" + user_ + "/files/file"};  // that none may touch
  TemporaryFolder top_;
};

TEST_F(RecycleBin, RemovesEverythingAndFollowsNoLink) {
  for (const char* name :
       {"files/file", "files/folder/below/file", "files/.hidden", "files/read-only",
        "info/file.trashinfo", "expunged/1/file", "directorysizes"}) {
    top_.Write(std::string("home/trash/") + name);
  }
  chmod(Path("home/trash/files/read-only").c_str(), 0400);
  chmod(Path("home/trash/files/folder/below").c_str(), 0);
  mkfifo(Path("home/trash/files/pipe").c_str(), 0600);
  for (const char* name : {"files/link", "files/deep/link"}) {
    Link(std::string("home/trash/") + name, Path("outside"));
  }
  Link("home/trash/files/to-file", Path("outside/folder/file"));
  Link("home/trash/files/to-nothing", "/nowhere");
  Link("home/trash/files/up", "..");
  {
    const WorkingFolder back(Path("home/trash/files"));
    for (int depth = 0; depth < 2500; ++depth) {  // deeper than a path can be long
      ASSERT_TRUE(mkdir("d", 0700) == 0 && chdir("d") == 0);
    }
  }
  EXPECT_TRUE(Empty());
  for (const char* part : {"files", "info", "expunged"}) {
    EXPECT_TRUE(fs::is_empty(Path(std::string("home/trash/") + part))) << part;
  }
  EXPECT_FALSE(top_.Has("home/trash/directorysizes"));
  EXPECT_TRUE(Empty()) << "a trash that is empty already";
}

TEST_F(RecycleBin, RefusesATrashThatIsALinkOrHoldsTheHomeFolder) {
  fs::remove_all(Path("home/trash"));
  Link("home/trash", Path("outside"));
  EXPECT_FALSE(Empty());
  fs::remove(Path("home/trash"));
  for (const char* part : {"files", "expunged"}) {
    Link(std::string("home/trash/") + part, Path("outside/files"));
  }
  top_.Write("home/trash/info/file.trashinfo");
  EXPECT_FALSE(Empty());
  EXPECT_TRUE(top_.Has("home/trash/info/file.trashinfo")) << "what stayed can be restored";
  for (const char* home : {"outside", "outside/files", "outside/files/below"}) {
    fs::create_directories(Path(home));
    setenv("HOME", Path(home).c_str(), 1);
    EXPECT_FALSE(platform::EmptyTrash({Path("outside"), {}})) << home;
  }
}

TEST_F(RecycleBin, EmptiesOnVolumesOnlyWhatIsTheUsersOwn) {
  const Names own{"good/.Trash-" + user_ + "/files", "good/.Trash/" + user_ + "/files"};
  Names kept{"good/.Trash/4242/files/file", "good/.Trash-4242/files/file", "good/files/file",
             "not-sticky/.Trash/" + user_ + "/files/file"};
  for (const std::string& name : own) top_.Write(name + "/mine");
  for (const std::string& name : kept) top_.Write(name);
  chmod(Path("good/.Trash").c_str(), 01777);
  Link("linked/.Trash", Path("outside"));
  Link("linked/.Trash-" + user_, Path("outside"));
  const std::string foreign = "foreign/.Trash-" + user_;
  top_.Write(foreign + "/files/file");
  if (chown(Path(foreign).c_str(), 4242, 4242) == 0) kept.insert(foreign + "/files/file");
  EXPECT_TRUE(
      Empty({Path("good"), Path("not-sticky"), Path("linked"), Path("foreign"), Path("gone")}));
  for (const std::string& name : own) EXPECT_TRUE(fs::is_empty(Path(name))) << name;
  for (const std::string& name : kept) EXPECT_TRUE(top_.Has(name)) << name;
}

TEST_F(RecycleBin, DoesNotEnterWhatIsMountedInside) {
  const std::string folder = "home/trash/files/folder/";
  for (const char* name : {"other/below", "same/below", "file"}) top_.Write(folder + name);
  for (const char* name : {"folder", "gone"}) {
    top_.Write("home/trash/info/" + std::string(name) + ".trashinfo");
  }
  const std::string other = Path(folder + "other");
  const std::string same = Path(folder + "same");
  if (mount("none", other.c_str(), "tmpfs", 0, nullptr) != 0 ||
      mount(Path("outside").c_str(), same.c_str(), nullptr, MS_BIND, nullptr) != 0) {
    GTEST_SKIP() << "mounting is not permitted";
  }
  top_.Write(folder + "other/kept");
  EXPECT_FALSE(Empty());
  EXPECT_TRUE(top_.Has(folder + "other/kept"));
  EXPECT_FALSE(top_.Has(folder + "file"));
  EXPECT_TRUE(top_.Has("home/trash/info/folder.trashinfo")) << "what stayed can be restored";
  EXPECT_FALSE(top_.Has("home/trash/info/gone.trashinfo"));
  EXPECT_EQ(umount(other.c_str()) + umount(same.c_str()), 0);
}

TEST_F(RecycleBin, ReadsTheMountPointsThatCanHoldATrash) {
  top_.Write("mountinfo",
             "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
             "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
             "30 27 8:1 / /media/My\\040Disk\\134 rw shared:1 master:2 - vfat /dev/sda1 rw\n"
             "31 27 0:50 / /net rw - autofs systemd-1 rw\n"
             "a line of another form\n");
  EXPECT_EQ(platform::MountPoints(Path("mountinfo")),
            (std::vector<std::string>{"/", "/media/My Disk\\"}));
}

TEST_F(RecycleBin, FoldersToClearAreLookedAtThroughLinks) {
  const std::string home = Path("home");
  fs::create_directory(home + "/cookies");
  Link("home/good-link", "cookies");
  Link("home-link", home);
  Link("root-link", "/");
  EXPECT_TRUE(platform::IsSafeToClear(home + "/good-link/"));
  for (const char* link : {"home-link/", "root-link/"}) {
    EXPECT_FALSE(platform::IsSafeToClear(Path(link))) << link;
  }
  setenv("HOME", Path("home-link").c_str(), 1);
  EXPECT_FALSE(platform::IsSafeToClear(home)) << "another way to the same folder";
}

}  // namespace
