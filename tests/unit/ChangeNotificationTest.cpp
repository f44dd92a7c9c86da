#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/ChangeNotification.h"
#include "platform/Forms.h"
#include "tests/support/Application.h"
#include "tests/support/TemporaryFolder.h"

using namespace platform;
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

  /// Whether a wait is signalled now; re-arms.
  bool Changed() const {
    const bool changed = WaitForSingleObject(handle_, 1) == WAIT_OBJECT_0;
    FindNextChangeNotification(handle_);
    return changed;
  }

  const TemporaryFolder folder_;
  const std::string file_ = folder_.Write("watched/a.txt");
  const HANDLE handle_ = Open(Watched(""));
};

struct OneTick {
  explicit OneTick(int milliseconds) : Clock(milliseconds, true) {
    Clock.Tick = [this] {
      Came = true;
      Clock.Enabled(false);
    };
  }
  Timer Clock;
  bool Came = false;
};

}  // namespace

TEST_F(ChangeNotification, AWaitEndsForWindowEventsAndHandsOutNone) {
  static const machine::Application application;
  DoEvents();
  const auto start = Clock::now();
  for (const auto& [handle, delay] : {std::pair(handle_, 1),
                                      {handle_, 20},
                                      {INVALID_HANDLE_VALUE, 1},
                                      {INVALID_HANDLE_VALUE, 20}}) {
    OneTick tick(delay);
    for (int turn = 0; !tick.Came && turn < 5; ++turn) {
      EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_TIMEOUT);
      EXPECT_FALSE(tick.Came);
      DoEvents();
    }
    EXPECT_TRUE(tick.Came) << delay;
  }
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
  OneTick tick(1);
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  folder_.Write("watched/new.txt");
  EXPECT_EQ(WaitForSingleObject(handle_, 50), WAIT_OBJECT_0) << "a change comes before events";
  folder_.Write("watched/newer.txt");
  FindNextChangeNotification(handle_);
  EXPECT_TRUE(Changed()) << "a change before the re-arming satisfies the next wait";
  DoEvents();
}

TEST_F(ChangeNotification, AFolderThatComesIsAChangeAndWatchedFromThenOn) {
  FindCloseChangeNotification(handle_);
  const HANDLE handle = Open(folder_.Path("later"));
  EXPECT_EQ(WaitForSingleObject(handle, 150), WAIT_TIMEOUT);
  for (const char* name : {"later/came.txt", "later/second.txt"}) {
    folder_.Write(name);
    EXPECT_EQ(WaitForSingleObject(handle, 1000), WAIT_OBJECT_0) << name;
    while (WaitForSingleObject(handle, 20) == WAIT_OBJECT_0) FindNextChangeNotification(handle);
  }
  FindCloseChangeNotification(handle);
}

TEST_F(ChangeNotification, WhatIsNoPathOrClosedIsNotWatched) {
  FindCloseChangeNotification(handle_);
  EXPECT_EQ(WaitForSingleObject(handle_, 5000), WAIT_FAILED);
  const WorkingFolder working(folder_.Path());
  for (const char* folder : {"", "\\", "watched"}) {
    EXPECT_EQ(Open(folder), INVALID_HANDLE_VALUE) << folder;
  }
}
