#include "platform/windows/System.h"

#include "platform/FileSearch.h"
#include "platform/Regional.h"

// What the user's zone decides.

namespace platform {

SYSTEMTIME Now() {
  ::SYSTEMTIME now;
  GetLocalTime(&now);
  return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

int FileTimeToLocalFileTime(const FILETIME& utc, FILETIME& local) {
  const ::FILETIME moment{utc.dwLowDateTime, utc.dwHighDateTime};
  ::FILETIME moved{};
  constexpr DWORD HighBit = 0x80000000;
  if (::FileTimeToLocalFileTime(&moment, &moved) == 0 ||
      ((moment.dwHighDateTime | moved.dwHighDateTime) & HighBit) != 0) {
    return 0;
  }
  local = {moved.dwLowDateTime, moved.dwHighDateTime};
  return 1;
}

}  // namespace platform
