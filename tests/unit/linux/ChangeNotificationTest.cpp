#include <filesystem>
#include <fstream>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "platform/ChangeNotification.h"
#include "tests/support/TemporaryFolder.h"

using namespace platform;
namespace fs = std::filesystem;

TEST(Inotify, AnOverflowIsAChangeAndLosesNoTouch) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("a.txt");
  const HANDLE handle = FindFirstChangeNotificationA(
      folder.Path(), 0, FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE);
  const auto touch = [&] { fs::last_write_time(file, fs::file_time_type::clock::now()); };
  const auto changed = [&] {
    const bool signalled = WaitForSingleObject(handle, 0) == WAIT_OBJECT_0;
    FindNextChangeNotification(handle);
    return signalled;
  };
  int limit = 0;
  std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
  ASSERT_GT(limit, 0);
  fs::create_directory(folder.Path("sub"));
  for (int i = 0; i <= limit / 2 + 1; ++i) {  // Two events a turn; by themselves no change.
    fs::rename(folder.Path(i % 2 == 0 ? "sub" : "other"),
               folder.Path(i % 2 == 0 ? "other" : "sub"));
  }
  touch();
  EXPECT_TRUE(changed());
  chmod(file.c_str(), 0600);
  EXPECT_FALSE(changed()) << "the times are known again";
  touch();
  EXPECT_TRUE(changed());
  FindCloseChangeNotification(handle);
}

TEST(Inotify, TheTimesOfALargeFolderAreLearntWhileItIsWatched) {
  const TemporaryFolder large("/dev/shm");
  constexpr int Files = 10'000;
  for (int i = 0; i < Files; ++i) large.Write(std::to_string(i));
  const auto file = [&](int number) { return large.Path(std::to_string(number * 7919 % Files)); };
  const HANDLE handle = FindFirstChangeNotificationA(
      large.Path(), 0, FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE);
  for (int i = 0; i < 30; ++i) {
    fs::last_write_time(file(i), fs::file_time_type(std::chrono::hours(i)));
    EXPECT_EQ(WaitForSingleObject(handle, 5000), WAIT_OBJECT_0) << i;
    FindNextChangeNotification(handle);
  }
  EXPECT_EQ(WaitForSingleObject(handle, 500), WAIT_TIMEOUT);
  for (int i = 0; i < Files; ++i) chmod(file(i).c_str(), 0600);
  EXPECT_EQ(WaitForSingleObject(handle, 0), WAIT_TIMEOUT);
  FindCloseChangeNotification(handle);
}
