#include "monitor/WatchFunc.h"

#include "core/PublicDim.h"
#include "platform/ChangeNotification.h"
#include "platform/Forms.h"

namespace {

constexpr std::uint32_t WaitMilliseconds = 100;

/// One wait after the other, each with its yield, until one is signalled or the watch stops.
std::uint32_t WaitUntilSignalled(const platform::HANDLE& handle, std::uint32_t milliseconds) {
  for (;;) {
    const std::uint32_t result = platform::WaitForSingleObject(handle, milliseconds);
    platform::DoEvents();
    if (result == platform::WAIT_OBJECT_0 || PublicDim.WatchStopping) return result;
  }
}

}  // namespace

void StartWatch(const std::string& folder) {
  PublicDim.WatchStopping = false;
  PublicDim.WatchHandle = platform::FindFirstChangeNotificationA(
      folder, 0, platform::FILE_NOTIFY_CHANGE_FILE_NAME | platform::FILE_NOTIFY_CHANGE_LAST_WRITE);
  if (WaitFirstChange(PublicDim.WatchHandle, WaitMilliseconds) != platform::WAIT_OBJECT_0) return;
  do {
    PublicDim.ChangePending = true;
  } while (!WaitNextChange(PublicDim.WatchHandle, WaitMilliseconds));
}

void StopWatch() {
  CloseWatchHandle(PublicDim.WatchHandle);
  PublicDim.WatchHandle = 0;
}

std::uint32_t WaitFirstChange(const platform::HANDLE& handle, std::uint32_t milliseconds) {
  return WaitUntilSignalled(handle, milliseconds);
}

bool WaitNextChange(const platform::HANDLE& handle, std::uint32_t milliseconds) {
  platform::FindNextChangeNotification(handle);
  return WaitUntilSignalled(handle, milliseconds) != platform::WAIT_OBJECT_0;
}

void CloseWatchHandle(const platform::HANDLE& handle) {
  PublicDim.WatchStopping = true;
  platform::DoEvents();
  platform::FindCloseChangeNotification(handle);
}
