#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Files.h"
#include "platform/linux/Trash.h"
#include "tests/unit/TemporaryFolder.h"

namespace {

namespace fs = std::filesystem;

class RecycleBin : public testing::Test {
 protected:
  RecycleBin() {
    setenv("HOME", Path("home").c_str(), 1);
    for (const char* name : {"home/trash/files", "home/trash/info"}) {
      fs::create_directories(Path(name));
    }
    top_.Write("outside/folder/file");  // None of the files outside may be touched.
    top_.Write("outside/files/file");
    top_.Write("outside/" + user_ + "/files/file");
    chmod(Path("outside").c_str(), 01777);
  }
  ~RecycleBin() override {
    for (const char* part : {"folder/file", "files/file"}) {
      EXPECT_TRUE(top_.Has(std::string("outside/") + part)) << part;
    }
    EXPECT_TRUE(top_.Has("outside/" + user_ + "/files/file"));
  }

  std::string Path(const std::string& name) const { return top_.Path(name); }
  void LinkToOutside(const std::string& name) const {
    fs::create_directories(fs::path(Path(name)).parent_path());
    fs::create_directory_symlink(Path("outside"), Path(name));
  }
  bool Empty(const std::vector<std::string>& volumes = {}) const {
    return platform::EmptyTrash({Path("home/trash"), volumes});
  }

  const std::string user_ = std::to_string(geteuid());
  TemporaryFolder top_;
};

TEST_F(RecycleBin, RemovesEverythingAndFollowsNoLink) {
  for (const char* name : {"files/file", "files/folder/below/file", "files/.hidden",
                           "files/read-only", "info/file.trashinfo", "directorysizes"}) {
    top_.Write(std::string("home/trash/") + name);
  }
  fs::permissions(Path("home/trash/files/read-only"), fs::perms::owner_read);
  mkfifo(Path("home/trash/files/pipe").c_str(), 0600);
  for (const char* name : {"files/link", "files/deep/link", "expunged"}) {
    LinkToOutside(std::string("home/trash/") + name);
  }
  fs::create_symlink(Path("outside/folder/file"), Path("home/trash/files/to-file"));
  fs::create_symlink("/nowhere", Path("home/trash/files/to-nothing"));
  fs::create_directory_symlink("..", Path("home/trash/files/up"));
  // Deeper than a path can be long.
  int at = open(Path("home/trash/files").c_str(), O_RDONLY);
  for (int depth = 0; depth < 2500; ++depth) {
    mkdirat(at, "d", 0700);
    const int next = openat(at, "d", O_RDONLY);
    close(at);
    at = next;
  }
  close(at);
  EXPECT_TRUE(Empty());
  EXPECT_TRUE(fs::is_empty(Path("home/trash/files")));
  EXPECT_TRUE(fs::is_empty(Path("home/trash/info")));
  EXPECT_FALSE(top_.Has("home/trash/directorysizes"));
  EXPECT_TRUE(Empty()) << "a trash that is empty already";
}

TEST_F(RecycleBin, RefusesATrashThatIsALinkOrHoldsTheHomeFolder) {
  fs::remove_all(Path("home/trash"));
  LinkToOutside("home/trash");
  EXPECT_FALSE(Empty());
  fs::remove(Path("home/trash"));
  fs::create_directory(Path("home/trash"));
  fs::create_directory_symlink(Path("outside/files"), Path("home/trash/files"));
  Empty();
  for (const char* home : {"outside", "outside/files", "outside/files/below"}) {
    fs::create_directories(Path(home));
    setenv("HOME", Path(home).c_str(), 1);
    EXPECT_FALSE(platform::EmptyTrash({Path("outside"), {}})) << home;
  }
}

TEST_F(RecycleBin, EmptiesOnVolumesOnlyWhatIsTheUsersOwn) {
  const std::string own[] = {"good/.Trash-" + user_ + "/files", "good/.Trash/" + user_ + "/files"};
  const std::string kept[] = {"good/.Trash/4242/files/file", "good/.Trash-4242/files/file",
                              "good/files/file", "not-sticky/.Trash/" + user_ + "/files/file"};
  for (const std::string& name : own) top_.Write(name + "/mine");
  for (const std::string& name : kept) top_.Write(name);
  chmod(Path("good/.Trash").c_str(), 01777);
  LinkToOutside("linked/.Trash-" + user_);
  LinkToOutside("linked/.Trash");
  const std::string foreign = "foreign/.Trash-" + user_;
  const bool given =
      chown(fs::path(top_.Write(foreign + "/files/file")).parent_path().c_str(), 4242, 4242) == 0 &&
      chown(Path(foreign).c_str(), 4242, 4242) == 0;  // Only root can do so.
  EXPECT_TRUE(Empty({Path("good"), Path("not-sticky"), Path("linked"), Path("gone")}));
  Empty({Path("foreign")});
  for (const std::string& name : own) EXPECT_TRUE(fs::is_empty(Path(name))) << name;
  for (const std::string& name : kept) EXPECT_TRUE(top_.Has(name)) << name;
  EXPECT_TRUE(!given || top_.Has(foreign + "/files/file"));
}

TEST_F(RecycleBin, DoesNotEnterWhatIsMountedInside) {
  const std::string folder = Path("home/trash/files/folder/");
  top_.Write("home/trash/files/folder/file");
  top_.Write("home/trash/info/folder.trashinfo");
  top_.Write("home/trash/info/other.trashinfo");
  for (const char* name : {"other", "same"}) fs::create_directories(folder + name);
  if (mount("none", (folder + "other").c_str(), "tmpfs", 0, nullptr) != 0 ||
      mount(Path("outside").c_str(), (folder + "same").c_str(), nullptr, MS_BIND, nullptr) != 0) {
    GTEST_SKIP() << "mounting is not permitted";
  }
  top_.Write("home/trash/files/folder/other/kept");
  EXPECT_FALSE(Empty());
  EXPECT_TRUE(fs::exists(folder + "other/kept"));
  EXPECT_FALSE(fs::exists(folder + "file"));
  EXPECT_TRUE(top_.Has("home/trash/info/folder.trashinfo")) << "what stayed can be restored";
  EXPECT_FALSE(top_.Has("home/trash/info/other.trashinfo"));
  for (const char* name : {"other", "same"}) EXPECT_EQ(umount((folder + name).c_str()), 0);
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

TEST_F(RecycleBin, TellsWhichFoldersMayBeCleared) {
  const std::string home = Path("home");
  fs::create_directory(home + "/cookies");
  fs::create_directory_symlink(home + "/cookies", home + "/good-link");
  fs::create_directory_symlink(home, Path("home-link"));
  fs::create_directory_symlink("/", Path("root-link"));
  top_.Write("home/file");
  for (const char* folder : {"/cookies/", "/cookies", "/good-link/"}) {
    EXPECT_TRUE(platform::IsSafeToClear(home + folder)) << folder;
  }
  const WorkingFolder working(home);
  for (const std::string& folder :
       {std::string(), std::string("\\"), std::string("C:\\"), std::string("/"), std::string("//"),
        std::string("cookies/"), home, home + "/", Path(""), home + "/cookies/..", home + "/gone",
        home + "/file", Path("home-link/"), Path("root-link/")}) {
    EXPECT_FALSE(platform::IsSafeToClear(folder)) << folder;
  }
  setenv("HOME", Path("home-link").c_str(), 1);
  EXPECT_FALSE(platform::IsSafeToClear(home)) << "another way to the same folder";
}

}  // namespace
