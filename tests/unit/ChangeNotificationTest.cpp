#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include "platform/ChangeNotification.h"
#include "platform/Forms.h"
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
    const bool changed = WaitForSingleObject(handle_, 0) == WAIT_OBJECT_0;
    FindNextChangeNotification(handle_);
    return changed;
  }

  const TemporaryFolder folder_;
  const std::string file_ = folder_.Write("watched/a.txt");
  const HANDLE handle_ = Open(Watched(""));
};

}  // namespace

TEST_F(ChangeNotification, AWaitEndsForWindowEventsAndHandsOutNone) {
  bool ticked = false;
  machine::TickOnce(0, ticked);
  DoEvents();
  const auto start = Clock::now();
  for (const auto& [handle, delay] : {std::pair(handle_, 0),
                                      {handle_, 20},
                                      {INVALID_HANDLE_VALUE, 0},
                                      {INVALID_HANDLE_VALUE, 20}}) {
    ticked = false;
    machine::TickOnce(delay, ticked);
    for (int turn = 0; !ticked && turn < 5; ++turn) {
      EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_TIMEOUT);
      EXPECT_FALSE(ticked);
      DoEvents();
    }
    EXPECT_TRUE(ticked) << delay;
  }
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
  machine::TickOnce(0, ticked);
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
