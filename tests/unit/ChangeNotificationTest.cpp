#include <chrono>
#include <sys/stat.h>

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
  ~ChangeNotification() override { FindCloseChangeNotification(handle_); }

  static HANDLE Open(const std::string& folder) {
    return FindFirstChangeNotificationA(
        folder, 0, FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE);
  }
  std::string Watched(const std::string& name) const { return folder_.Path("watched/" + name); }
  void Touch() const { fs::last_write_time(file_, fs::file_time_type::clock::now()); }

  /// Whether a wait is signalled now; re-arms.
  bool Changed() const {
    const bool changed = WaitForSingleObject(handle_, 0) == WAIT_OBJECT_0;
    FindNextChangeNotification(handle_);
    return changed;
  }

  const TemporaryFolder folder_;
  const std::string file_ = folder_.Write("watched/a.txt");
  const HANDLE handle_ = Open(Watched(""));
};

}  // namespace

TEST_F(ChangeNotification, AnOverflowIsAChangeAndLosesNoTouch) {
  int limit = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
  ASSERT_GT(limit, 0);
  fs::create_directory(Watched("sub"));
  for (int i = 0; i <= limit / 2 + 1; ++i) {  // Two events a turn; by themselves no change.
    fs::rename(Watched(i % 2 == 0 ? "sub" : "other"), Watched(i % 2 == 0 ? "other" : "sub"));
  }
  Touch();
  EXPECT_TRUE(Changed());
  chmod(file_.c_str(), 0600);
  EXPECT_FALSE(Changed()) << "the times are known again";
  Touch();
  EXPECT_TRUE(Changed());
}

TEST_F(ChangeNotification, AWaitEndsForWindowEventsAndHandsOutNone) {
  int argc = 0;
  QCoreApplication application(argc, nullptr);
  QCoreApplication::processEvents();
  const auto start = Clock::now();
  for (const auto& [handle, delay] : {std::pair(handle_, 0),
                                      {handle_, 20},
                                      {INVALID_HANDLE_VALUE, 0},
                                      {INVALID_HANDLE_VALUE, 20}}) {
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
  QTimer::singleShot(0, &application, [] {});
  folder_.Write("watched/new.txt");
  EXPECT_EQ(WaitForSingleObject(handle_, 50), WAIT_OBJECT_0) << "a change comes before events";
  folder_.Write("watched/newer.txt");
  FindNextChangeNotification(handle_);
  EXPECT_TRUE(Changed()) << "a change before the re-arming satisfies the next wait";
}

TEST_F(ChangeNotification, WhatIsNoFolderOrClosedIsNotWatched) {
  FindCloseChangeNotification(handle_);
  EXPECT_EQ(WaitForSingleObject(handle_, 5000), WAIT_FAILED);
  const WorkingFolder working(folder_.Path());
  for (const char* folder : {"", "\\", "watched", "/none", "/dev/null"}) {
    EXPECT_EQ(Open(folder), INVALID_HANDLE_VALUE) << folder;
  }
}
