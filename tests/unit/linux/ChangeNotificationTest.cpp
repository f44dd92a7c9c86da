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
