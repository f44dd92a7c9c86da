#include "platform/common/FileTimes.h"

#include <chrono>

namespace platform {
namespace {

constexpr std::uint64_t HighBit = 1ull << 63;

std::uint64_t Ticks(const FILETIME& time) {
  return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

FILETIME FromTicks(std::uint64_t ticks) {
  return {static_cast<std::uint32_t>(ticks), static_cast<std::uint32_t>(ticks >> 32)};
}

}  // namespace

FILETIME MomentFrom1970(std::int64_t seconds, std::int64_t nanoseconds) {
  constexpr auto Last = static_cast<std::int64_t>(HighBit / TicksPerSecond);
  if (seconds < -SecondsFrom1601To1970 || seconds >= Last - SecondsFrom1601To1970) {
    return FromTicks(HighBit);
  }
  return FromTicks(static_cast<std::uint64_t>((seconds + SecondsFrom1601To1970) * TicksPerSecond +
                                              nanoseconds / 100));
}

std::optional<FILETIME> Moved(const FILETIME& moment, std::int64_t seconds) {
  const std::uint64_t moved = Ticks(moment) + static_cast<std::uint64_t>(seconds * TicksPerSecond);
  if (((Ticks(moment) | moved) & HighBit) != 0) return std::nullopt;
  return FromTicks(moved);
}

int FileTimeToSystemTime(const FILETIME& time, SYSTEMTIME& fields) {
  const std::uint64_t ticks = Ticks(time);
  if ((ticks & HighBit) != 0) return 0;
  const auto seconds = static_cast<std::int64_t>(ticks / TicksPerSecond) - SecondsFrom1601To1970;
  const std::chrono::sys_seconds moment{std::chrono::seconds{seconds}};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date{day};
  if (date.year() > std::chrono::year(9999)) return 0;
  const auto second = (moment - day).count();
  fields.wYear = static_cast<std::uint16_t>(static_cast<int>(date.year()));
  fields.wMonth = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
  fields.wDay = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
  fields.wHour = static_cast<std::uint16_t>(second / 3600);
  fields.wMinute = static_cast<std::uint16_t>(second / 60 % 60);
  fields.wSecond = static_cast<std::uint16_t>(second % 60);
  return 1;
}

}  // namespace platform
