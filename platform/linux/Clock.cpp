#include <algorithm>
#include <cstdint>
#include <ctime>

#include "platform/FileSearch.h"
#include "platform/Regional.h"
#include "platform/common/FileTimes.h"

// What the user's zone decides.

namespace platform {
namespace {

std::tm LocalTime(std::time_t moment) {
  tzset();  // localtime_r alone need not see that the zone was changed under a running program.
  std::tm local{};
  localtime_r(&moment, &local);
  return local;
}

/// Worked out once a second: a large folder asks a million times in a few.
const std::tm& LocalTimeNow() {
  static std::time_t known = -1;
  static std::tm local{};
  const std::time_t now = std::time(nullptr);
  if (now != known) {
    known = now;
    local = LocalTime(now);
  }
  return local;
}

}  // namespace

SYSTEMTIME Now() {
  const std::tm& local = LocalTimeNow();
  return {static_cast<std::uint16_t>(local.tm_year + 1900),
          static_cast<std::uint16_t>(local.tm_mon + 1),
          static_cast<std::uint16_t>(local.tm_mday),
          static_cast<std::uint16_t>(local.tm_hour),
          static_cast<std::uint16_t>(local.tm_min),
          static_cast<std::uint16_t>(std::min(local.tm_sec, 59))};
}

int FileTimeToLocalFileTime(const FILETIME& utc, FILETIME& local) {
  const std::optional<FILETIME> moved = Moved(utc, LocalTimeNow().tm_gmtoff);
  if (moved) local = *moved;
  return moved ? 1 : 0;
}

}  // namespace platform
