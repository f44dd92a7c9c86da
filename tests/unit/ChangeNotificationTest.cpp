#include <chrono>
#include <ctime>
#include <functional>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTimer>
#include <gtest/gtest.h>

#include "platform/ChangeNotification.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;
namespace fs = std::filesystem;

namespace {

constexpr std::uint32_t NamesAndWrites =
    FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE;

class ChangeNotification : public testing::Test {
 protected:
  ChangeNotification() {
    fs::create_directory(Watched());
    fs::create_directory(Watched() + "sub");
    folder_.Write("watched/sub/inside.txt");
    folder_.Write("outside.txt");
    folder_.Write("watched/a.txt");
    folder_.Write("watched/b.txt");
    Open();
  }
  ~ChangeNotification() override { FindCloseChangeNotification(handle_); }

  void Open(std::uint32_t filter = NamesAndWrites) {
    FindCloseChangeNotification(handle_);
    handle_ = FindFirstChangeNotificationA(Watched(), 0, filter);
  }
  std::string Watched() const { return folder_.Path("watched/"); }

  /// Whether a wait is signalled now; re-arms.
  bool Changed(std::uint32_t milliseconds = 0) {
    const bool changed = WaitForSingleObject(handle_, milliseconds) == WAIT_OBJECT_0;
    FindNextChangeNotification(handle_);
    return changed;
  }
  void Drain() {
    while (Changed()) {
    }
  }

  TemporaryFolder folder_;
  HANDLE handle_ = 0;
};

}  // namespace

TEST_F(ChangeNotification, WakesForFilesAndTheirWriteTimesOnly) {
  const struct {
    const char* What;
    std::function<void()> Act;
    bool Wakes;
  } cases[] = {
      {"nothing", [] {}, false},
      {"create", [&] { folder_.Write("watched/new.txt", ""); }, true},
      {"create of another kind", [&] { folder_.Write("watched/new.dat", ""); }, true},
      {"write", [&] { folder_.Write("watched/a.txt", "other"); }, true},
      {"append", [&] { std::ofstream(Watched() + "a.txt", std::ios::app) << "x"; }, true},
      {"truncate", [&] { fs::resize_file(Watched() + "a.txt", 0); }, true},
      {"touch to an old date", [&] { folder_.SetTime("watched/a.txt", 1'000'000'000); }, true},
      {"touch to the same date", [&] { folder_.SetTime("watched/a.txt", 1'000'000'000); }, false},
      {"touch to a later date", [&] { folder_.SetTime("watched/a.txt", 1'000'000'001); }, true},
      {"mode", [&] { chmod((Watched() + "a.txt").c_str(), 0600); }, false},
      {"mode of a new file", [&] { chmod((Watched() + "new.txt").c_str(), 0600); }, false},
      {"owner", [&] { EXPECT_EQ(chown((Watched() + "a.txt").c_str(), getuid(), getgid()), 0); },
       false},
      {"mode of the folder", [&] { chmod(Watched().c_str(), 0711); }, false},
      {"read", [&] { folder_.Read("watched/a.txt"); }, false},
      {"open to write, unused",
       [&] { std::ofstream(Watched() + "a.txt", std::ios::in | std::ios::out).flush(); }, false},
      {"rename", [&] { fs::rename(Watched() + "a.txt", Watched() + "c.txt"); }, true},
      {"move in", [&] { fs::rename(folder_.Path("outside.txt"), Watched() + "in.txt"); }, true},
      {"mode of a moved file", [&] { chmod((Watched() + "in.txt").c_str(), 0600); }, false},
      {"touch of a moved file", [&] { folder_.SetTime("watched/in.txt", 1'000'000'000); }, true},
      {"move out", [&] { fs::rename(Watched() + "in.txt", folder_.Path("out.txt")); }, true},
      {"second link", [&] { fs::create_hard_link(Watched() + "c.txt", folder_.Path("l")); }, false},
      {"end of the second link", [&] { fs::remove(folder_.Path("l")); }, false},
      {"new link", [&] { fs::create_symlink("c.txt", Watched() + "link.txt"); }, true},
      {"replace", [&] { fs::rename(folder_.Path("out.txt"), Watched() + "c.txt"); }, true},
      {"delete", [&] { fs::remove(Watched() + "c.txt"); }, true},
      {"create in a subfolder", [&] { folder_.Write("watched/sub/new.txt"); }, false},
      {"delete in a subfolder", [&] { fs::remove(Watched() + "sub/inside.txt"); }, false},
      {"new subfolder", [&] { fs::create_directory(Watched() + "more"); }, false},
      {"subfolder renamed", [&] { fs::rename(Watched() + "more", Watched() + "less"); }, false},
      {"subfolder gone", [&] { fs::remove(Watched() + "less"); }, false},
  };
  for (const auto& one : cases) {
    usleep(5000);  // Write times have the grain of the system's clock tick.
    one.Act();
    EXPECT_EQ(Changed(), one.Wakes) << one.What;
    Drain();
  }
}

TEST_F(ChangeNotification, TheSignalStaysUntilItIsRearmed) {
  folder_.Write("watched/new.txt");
  EXPECT_EQ(WaitForSingleObject(handle_, 0), WAIT_OBJECT_0);
  EXPECT_EQ(WaitForSingleObject(handle_, 0), WAIT_OBJECT_0);
  folder_.Write("watched/newer.txt");
  FindNextChangeNotification(handle_);
  EXPECT_TRUE(Changed()) << "a change before the re-arming satisfies the next wait";
  EXPECT_FALSE(Changed());
}

TEST_F(ChangeNotification, TheFilterIsKept) {
  Open(FILE_NOTIFY_CHANGE_FILE_NAME);
  folder_.Write("watched/a.txt", "other");
  folder_.SetTime("watched/a.txt", 1);
  EXPECT_FALSE(Changed());
  folder_.Write("watched/new.txt");
  EXPECT_TRUE(Changed());
  Open(FILE_NOTIFY_CHANGE_LAST_WRITE);
  fs::remove(Watched() + "new.txt");
  EXPECT_FALSE(Changed());
  folder_.SetTime("watched/a.txt", 2);
  EXPECT_TRUE(Changed());
}

TEST_F(ChangeNotification, AFolderThatIsLostIsWatchedAgain) {
  const std::string aside = folder_.Path("aside");
  const struct {
    const char* What;
    std::function<void()> Lose;
    std::function<void()> Restore;
  } cases[] = {
      {"removed", [&] { fs::remove_all(Watched()); }, [&] { fs::create_directory(Watched()); }},
      {"moved away and back", [&] { fs::rename(folder_.Path("watched"), aside); },
       [&] { fs::rename(aside, folder_.Path("watched")); }},
  };
  for (const auto& one : cases) {
    one.Lose();
    EXPECT_TRUE(Changed()) << one.What;
    EXPECT_FALSE(Changed()) << one.What;
    one.Restore();
    EXPECT_TRUE(Changed()) << one.What;
    EXPECT_FALSE(Changed()) << one.What;
    folder_.Write("watched/again.txt");
    EXPECT_TRUE(Changed()) << one.What;
    Drain();
  }
}

TEST_F(ChangeNotification, AFolderThatIsReplacedIsWatchedInItsNewPlace) {
  fs::create_directory(folder_.Path("parent"));
  fs::rename(folder_.Path("watched"), folder_.Path("parent/watched"));
  FindCloseChangeNotification(handle_);
  handle_ = FindFirstChangeNotificationA(folder_.Path("parent/watched"), 0, NamesAndWrites);
  fs::rename(folder_.Path("parent"), folder_.Path("aside"));
  fs::create_directories(folder_.Path("parent/watched"));
  EXPECT_TRUE(Changed()) << "no event tells of a renamed parent";
  Drain();
  folder_.Write("aside/watched/old.txt");
  EXPECT_FALSE(Changed());
  folder_.Write("parent/watched/new.txt");
  EXPECT_TRUE(Changed());
}

TEST_F(ChangeNotification, ADiskMountedOverTheFolderIsWatched) {
  if (mount("none", Watched().c_str(), "tmpfs", 0, "size=64k") != 0) {
    GTEST_SKIP() << "mounting a disk takes more rights";
  }
  EXPECT_TRUE(Changed());
  Drain();
  folder_.Write("watched/new.txt");
  EXPECT_TRUE(Changed());
  Drain();
  ASSERT_EQ(umount(Watched().c_str()), 0) << "the watch must not keep a disk from being taken off";
  EXPECT_TRUE(Changed());
  Drain();
  folder_.SetTime("watched/a.txt", 1);
  EXPECT_TRUE(Changed());
}

TEST_F(ChangeNotification, AnOverflowIsAChangeAndLosesNoTouch) {
  int limit = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
  ASSERT_GT(limit, 0);
  const std::string sub = Watched() + "sub";
  const std::string other = Watched() + "other";
  for (int i = 0; i <= limit / 2 + 1; ++i) {  // Two events a turn; by themselves no change.
    fs::rename(i % 2 == 0 ? sub : other, i % 2 == 0 ? other : sub);
  }
  folder_.SetTime("watched/a.txt", 1'000'000'000);
  EXPECT_TRUE(Changed());
  EXPECT_FALSE(Changed());
  chmod((Watched() + "a.txt").c_str(), 0600);
  EXPECT_FALSE(Changed()) << "the times are known again";
  folder_.SetTime("watched/a.txt", 1'000'000'001);
  EXPECT_TRUE(Changed());
}

TEST_F(ChangeNotification, AWaitEndsForWindowEventsAndHandsOutNone) {
  using Clock = std::chrono::steady_clock;
  int argc = 0;
  QCoreApplication application(argc, nullptr);
  QCoreApplication::processEvents();
  for (const HANDLE handle : {handle_, INVALID_HANDLE_VALUE}) {
    bool posted = false;
    bool ticked = false;
    QMetaObject::invokeMethod(
        &application, [&] { posted = true; }, Qt::QueuedConnection);
    const auto start = Clock::now();
    EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_TIMEOUT);
    EXPECT_FALSE(posted);
    QCoreApplication::processEvents();
    EXPECT_TRUE(posted);
    QTimer::singleShot(20, &application, [&] { ticked = true; });
    for (int turn = 0; !ticked && turn < 5; ++turn) {
      EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_TIMEOUT);
      EXPECT_FALSE(ticked);
      QCoreApplication::processEvents();
    }
    EXPECT_TRUE(ticked);
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
  }
  EXPECT_EQ(WaitForSingleObject(handle_, 50), WAIT_TIMEOUT);
  QMetaObject::invokeMethod(
      &application, [] {}, Qt::QueuedConnection);
  folder_.Write("watched/new.txt");
  EXPECT_EQ(WaitForSingleObject(handle_, 50), WAIT_OBJECT_0) << "a change comes before events";
}

TEST_F(ChangeNotification, AWaitAtRestUsesNoTime) {
  chmod((Watched() + "a.txt").c_str(), 0600);
  const std::clock_t before = std::clock();
  EXPECT_EQ(WaitForSingleObject(handle_, 300), WAIT_TIMEOUT);
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20);
}

TEST_F(ChangeNotification, HandlesThatAreNotOpenFail) {
  using Clock = std::chrono::steady_clock;
  const HANDLE closed = handle_;
  EXPECT_NE(FindCloseChangeNotification(closed), 0);
  EXPECT_EQ(FindCloseChangeNotification(closed), 0);
  auto start = Clock::now();
  for (const HANDLE handle : {closed, HANDLE{0}, HANDLE{12345}}) {
    EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_FAILED);
    EXPECT_EQ(FindNextChangeNotification(handle), 0);
  }
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(1));
  start = Clock::now();
  EXPECT_EQ(WaitForSingleObject(INVALID_HANDLE_VALUE, 100), WAIT_TIMEOUT);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(100));
  const WorkingFolder working(folder_.Path());
  for (const std::string& folder : {folder_.Path("none"), folder_.Path("outside.txt"),
                                    std::string("watched"), std::string("\\"), std::string()}) {
    EXPECT_EQ(FindFirstChangeNotificationA(folder, 0, NamesAndWrites), INVALID_HANDLE_VALUE)
        << folder;
  }
  EXPECT_EQ(FindFirstChangeNotificationA(Watched(), 1, NamesAndWrites), INVALID_HANDLE_VALUE);
  EXPECT_NE(FindFirstChangeNotificationA(Watched(), 0, NamesAndWrites), closed);
}
