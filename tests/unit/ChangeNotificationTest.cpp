#include <array>
#include <chrono>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTimer>
#include <gtest/gtest.h>

#include "platform/ChangeNotification.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

namespace {

class ChangeNotification : public testing::Test {
 protected:
  ChangeNotification() {
    folder_.Write("parent/watched/a.txt");
    folder_.Write("parent/watched/sub/inside.txt");
    handle_ = Open(Watched());
  }
  ~ChangeNotification() override { FindCloseChangeNotification(handle_); }

  static HANDLE Open(const std::string& folder) {
    return FindFirstChangeNotificationA(
        folder, 0, FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE);
  }
  std::string Watched(const std::string& name = {}) const {
    return folder_.Path("parent/watched/" + name);
  }
  void Touch(const std::string& name, std::time_t seconds) const {
    const std::array<timespec, 2> times{{{seconds, 0}, {seconds, 0}}};
    EXPECT_EQ(utimensat(AT_FDCWD, Watched(name).c_str(), times.data(), 0), 0);
  }

  /// Whether a wait is signalled now; re-arms.
  bool Changed(std::uint32_t milliseconds = 0) {
    const bool changed = WaitForSingleObject(handle_, milliseconds) == WAIT_OBJECT_0;
    FindNextChangeNotification(handle_);
    return changed;
  }
  bool SeesAWrite() {
    folder_.Write("parent/watched/later.txt");
    return Changed() && !Changed();
  }

  TemporaryFolder folder_;
  HANDLE handle_ = 0;
};

}  // namespace

TEST_F(ChangeNotification, AFolderThatIsLostOrReplacedIsWatchedAgain) {
  fs::remove_all(Watched());
  EXPECT_TRUE(Changed());
  EXPECT_FALSE(Changed() && Changed());
  fs::create_directory(Watched());
  EXPECT_TRUE(Changed());
  EXPECT_TRUE(SeesAWrite());
  // With its parent, of which no event tells.
  fs::rename(folder_.Path("parent"), folder_.Path("aside"));
  fs::create_directories(Watched());
  EXPECT_TRUE(Changed(1100));
  EXPECT_FALSE(Changed() && Changed());
  EXPECT_TRUE(SeesAWrite());
  folder_.Write("aside/watched/old.txt");
  EXPECT_FALSE(Changed());
}

TEST_F(ChangeNotification, AnOverflowIsAChangeAndLosesNoTouch) {
  int limit = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
  ASSERT_GT(limit, 0);
  for (int i = 0; i <= limit / 2 + 1; ++i) {  // Two events a turn; by themselves no change.
    fs::rename(Watched(i % 2 == 0 ? "sub" : "other"), Watched(i % 2 == 0 ? "other" : "sub"));
  }
  Touch("a.txt", 1'000'000'000);
  EXPECT_TRUE(Changed());
  EXPECT_FALSE(Changed());
  chmod(Watched("a.txt").c_str(), 0600);
  EXPECT_FALSE(Changed()) << "the times are known again";
  Touch("a.txt", 1'000'000'001);
  EXPECT_TRUE(Changed());
}

TEST_F(ChangeNotification, AWaitEndsForWindowEventsAndHandsOutNone) {
  int argc = 0;
  QCoreApplication application(argc, nullptr);
  QCoreApplication::processEvents();
  for (const HANDLE handle : {handle_, INVALID_HANDLE_VALUE}) {
    const auto start = Clock::now();
    for (const int delay : {0, 20}) {
      bool ticked = false;
      QTimer::singleShot(delay, &application, [&] { ticked = true; });
      for (int turn = 0; !ticked && turn < 5; ++turn) {
        EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_TIMEOUT);
        EXPECT_FALSE(ticked);
        QCoreApplication::processEvents();
      }
      EXPECT_TRUE(ticked) << delay;
    }
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
  }
  QTimer::singleShot(0, &application, [] {});
  folder_.Write("parent/watched/new.txt");
  EXPECT_EQ(WaitForSingleObject(handle_, 50), WAIT_OBJECT_0) << "a change comes before events";
  folder_.Write("parent/watched/newer.txt");
  FindNextChangeNotification(handle_);
  EXPECT_TRUE(Changed()) << "a change before the re-arming satisfies the next wait";
}

TEST_F(ChangeNotification, AWaitAtRestUsesNoTimeAndWithoutAHandleFails) {
  chmod(Watched("a.txt").c_str(), 0600);
  const auto start = Clock::now();
  const std::clock_t used = std::clock();
  EXPECT_EQ(WaitForSingleObject(handle_, 300), WAIT_TIMEOUT);
  EXPECT_EQ(WaitForSingleObject(INVALID_HANDLE_VALUE, 100), WAIT_TIMEOUT);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(400));
  EXPECT_LT(std::clock() - used, CLOCKS_PER_SEC / 20);
  FindCloseChangeNotification(handle_);
  EXPECT_EQ(WaitForSingleObject(handle_, 5000), WAIT_FAILED);
  const WorkingFolder working(folder_.Path());
  for (const char* folder : {"", "\\", "parent", "/none", "/dev/null"}) {
    EXPECT_EQ(Open(folder), INVALID_HANDLE_VALUE) << folder;
  }
}
