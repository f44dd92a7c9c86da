#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdlib.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Files.h"
#include "platform/linux/Trash.h"

namespace {

namespace fs = std::filesystem;

void Write(const fs::path& file, const std::string& text = "text") {
  fs::create_directories(file.parent_path());
  std::ofstream(file) << text;
}

/// Gives a mount back at the end of its scope.
class Mount {
 public:
  Mount(const char* type, const fs::path& source, const fs::path& at, unsigned long flags = 0)
      : at_(at), mounted_(mount(source.c_str(), at.c_str(), type, flags, nullptr) == 0) {}
  ~Mount() {
    if (mounted_) umount(at_.c_str());
  }
  explicit operator bool() const { return mounted_; }

 private:
  fs::path at_;
  bool mounted_;
};

class RecycleBinTest : public testing::Test {
 protected:
  RecycleBinTest() {
    std::string path = fs::temp_directory_path() / "trash-XXXXXX";
    top_ = mkdtemp(path.data());
    setenv("HOME", (top_ / "home").c_str(), 1);
    trash_ = top_ / "home/.local/share/Trash";
    fs::create_directories(trash_ / "files");
    fs::create_directories(trash_ / "info");
  }
  ~RecycleBinTest() override {
    setenv("HOME", home_.c_str(), 1);
    fs::remove_all(top_);
  }

  bool Empty() { return platform::EmptyTrash({trash_, volumes_}); }

  /// A folder of other files, of which none may be touched.
  fs::path Outside() {
    Write(top_ / "outside/folder/file");
    return top_ / "outside";
  }
  bool OutsideIsWhole() { return fs::exists(top_ / "outside/folder/file"); }

  const std::string home_ = getenv("HOME") ? getenv("HOME") : "/";
  fs::path top_;
  fs::path trash_;
  std::vector<std::string> volumes_;
};

TEST_F(RecycleBinTest, RemovesEverythingButTheFoldersOfTheTrash) {
  Write(trash_ / "files/file");
  Write(trash_ / "files/folder/below/file");
  Write(trash_ / "files/.hidden");
  Write(trash_ / "files/read-only");
  fs::permissions(trash_ / "files/read-only", fs::perms::owner_read);
  Write(trash_ / "info/file.trashinfo");
  Write(trash_ / "expunged/123/file");
  Write(trash_ / "directorysizes");
  mkfifo((trash_ / "files/pipe").c_str(), 0600);
  EXPECT_TRUE(Empty());
  for (const char* part : {"files", "info", "expunged"}) {
    EXPECT_TRUE(fs::is_empty(trash_ / part)) << part;
  }
  EXPECT_FALSE(fs::exists(trash_ / "directorysizes"));
  EXPECT_TRUE(Empty()) << "a trash that is empty already";
}

TEST_F(RecycleBinTest, RemovesLinksAndFollowsNone) {
  const fs::path outside = Outside();
  fs::create_directory_symlink(outside, trash_ / "files/to-folder");
  fs::create_symlink(outside / "folder/file", trash_ / "files/to-file");
  fs::create_symlink("/nowhere", trash_ / "files/to-nothing");
  fs::create_directory(trash_ / "files/deep");
  fs::create_directory_symlink(outside, trash_ / "files/deep/link");
  fs::create_directory_symlink("..", trash_ / "files/up");
  fs::create_directory_symlink(outside, trash_ / "expunged");
  EXPECT_TRUE(Empty());
  EXPECT_TRUE(fs::is_empty(trash_ / "files"));
  EXPECT_TRUE(OutsideIsWhole());
}

TEST_F(RecycleBinTest, RefusesATrashThatIsALinkOrHoldsTheHomeFolder) {
  Write(top_ / "outside/files/file");
  fs::remove_all(trash_);
  fs::create_directory_symlink(top_ / "outside", trash_);
  EXPECT_FALSE(Empty());
  fs::remove(trash_);
  fs::create_directory(trash_);
  fs::create_directory_symlink(top_ / "outside/files", trash_ / "files");
  Empty();
  EXPECT_TRUE(fs::exists(top_ / "outside/files/file"));

  trash_ = top_ / "outside";
  for (const fs::path& home : {trash_, trash_ / "files", trash_ / "files/below"}) {
    fs::create_directories(home);
    setenv("HOME", home.c_str(), 1);
    EXPECT_FALSE(Empty()) << home;
  }
  EXPECT_TRUE(fs::exists(top_ / "outside/files/file"));
}

TEST_F(RecycleBinTest, OpensClosedFoldersAndEndsInDeepOnes) {
  const fs::path closed = trash_ / "files/closed";
  Write(closed / "below/file");
  fs::permissions(closed / "below", fs::perms::owner_read);
  fs::permissions(closed, fs::perms::none);
  int at = open((trash_ / "files").c_str(), O_RDONLY);
  for (int depth = 0; depth < 2000; ++depth) {
    mkdirat(at, "d", 0700);
    const int next = openat(at, "d", O_RDONLY);
    close(at);
    at = next;
  }
  close(at);
  EXPECT_TRUE(Empty());
  EXPECT_TRUE(fs::is_empty(trash_ / "files"));
}

TEST_F(RecycleBinTest, EmptiesOnVolumesOnlyWhatIsTheUsersOwn) {
  const std::string user = std::to_string(geteuid());
  const fs::path good = top_ / "good";
  Write(good / (".Trash-" + user) / "files/mine");
  Write(good / ".Trash" / user / "files/mine");
  Write(good / ".Trash/4242/files/other");
  Write(good / ".Trash-4242/files/other");
  Write(good / "files/file");
  chmod((good / ".Trash").c_str(), 01777);
  const fs::path notSticky = top_ / "not-sticky";
  Write(notSticky / ".Trash" / user / "files/kept");
  const fs::path linked = top_ / "linked";
  Write(top_ / "outside/files/kept");
  Write(top_ / "outside" / user / "files/kept");
  fs::create_directory(linked);
  fs::create_directory_symlink(top_ / "outside", linked / (".Trash-" + user));
  fs::create_directory_symlink(top_ / "outside", linked / ".Trash");
  chmod((top_ / "outside").c_str(), 01777);

  volumes_ = {good, notSticky, linked, top_ / "gone"};
  EXPECT_TRUE(Empty());
  EXPECT_TRUE(fs::is_empty(good / (".Trash-" + user) / "files"));
  EXPECT_TRUE(fs::is_empty(good / ".Trash" / user / "files"));
  for (const fs::path& kept :
       {good / ".Trash/4242/files/other", good / ".Trash-4242/files/other", good / "files/file",
        notSticky / ".Trash" / user / "files/kept", top_ / "outside/files/kept",
        top_ / "outside" / user / "files/kept"}) {
    EXPECT_TRUE(fs::exists(kept)) << kept;
  }
}

TEST_F(RecycleBinTest, LeavesATrashThatBelongsToSomebodyElse) {
  const fs::path volume = top_ / "volume";
  const fs::path foreign = volume / (".Trash-" + std::to_string(geteuid()));
  Write(foreign / "files/kept");
  if (chown(foreign.c_str(), 4242, 4242) != 0) GTEST_SKIP() << "only root can give a folder away";
  volumes_ = {volume};
  Empty();
  EXPECT_TRUE(fs::exists(foreign / "files/kept"));
}

TEST_F(RecycleBinTest, DoesNotEnterWhatIsMountedInside) {
  Write(trash_ / "files/folder/file");
  Write(trash_ / "info/folder.trashinfo");
  Write(trash_ / "info/other.trashinfo");
  const fs::path outside = Outside();
  for (const char* name : {"other", "same"}) fs::create_directories(trash_ / "files/folder" / name);
  const Mount other("tmpfs", "tmpfs", trash_ / "files/folder/other");
  const Mount same(nullptr, outside, trash_ / "files/folder/same", MS_BIND);
  if (!other || !same) GTEST_SKIP() << "mounting is not permitted";
  Write(trash_ / "files/folder/other/kept");
  EXPECT_FALSE(Empty());
  EXPECT_TRUE(fs::exists(trash_ / "files/folder/other/kept"));
  EXPECT_TRUE(OutsideIsWhole());
  EXPECT_FALSE(fs::exists(trash_ / "files/folder/file"));
  EXPECT_TRUE(fs::exists(trash_ / "info/folder.trashinfo")) << "what stayed can be restored";
  EXPECT_FALSE(fs::exists(trash_ / "info/other.trashinfo"));
}

TEST_F(RecycleBinTest, ReadsTheMountPointsThatCanHoldATrash) {
  Write(top_ / "mountinfo",
        "22 27 0:21 / /proc rw,relatime - proc proc rw\n"
        "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw\n"
        "30 27 8:1 / /media/My\\040Disk\\134 rw shared:1 master:2 - vfat /dev/sda1 rw\n"
        "31 27 0:50 / /net rw - autofs systemd-1 rw\n"
        "a line of another form\n");
  EXPECT_EQ(platform::MountPoints(top_ / "mountinfo"),
            (std::vector<std::string>{"/", "/media/My Disk\\"}));
}

TEST_F(RecycleBinTest, TellsWhichFoldersMayBeCleared) {
  const fs::path home = top_ / "home";
  fs::create_directory(home / "cookies");
  fs::create_directory_symlink(home / "cookies", home / "good-link");
  fs::create_directory_symlink(home, top_ / "home-link");
  fs::create_directory_symlink("/", top_ / "root-link");
  Write(home / "file");
  for (const fs::path& folder : {home / "cookies/", home / "cookies", home / "good-link/"}) {
    EXPECT_TRUE(platform::IsSafeToClear(folder)) << folder;
  }
  for (const std::string& folder :
       {std::string(), std::string("\\"), std::string("C:\\"), std::string("/"), std::string("//"),
        std::string("cookies/"), std::string(home), home.string() + "/", std::string(top_),
        std::string(home / "cookies/.."), std::string(home / "gone"), std::string(home / "file"),
        std::string(top_ / "home-link/"), std::string(top_ / "root-link/")}) {
    EXPECT_FALSE(platform::IsSafeToClear(folder)) << folder;
  }
  // Another way to the same folder.
  setenv("HOME", (top_ / "home-link").c_str(), 1);
  EXPECT_FALSE(platform::IsSafeToClear(home));
}

}  // namespace
