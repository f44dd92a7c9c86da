#pragma once

#include <cstdint>
#include <optional>

#include "platform/FileSearch.h"

// Moments as the contract counts them.

namespace platform {

constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;

/// The moment so many seconds, and parts of a second in nanoseconds, after the begin of 1970. One
/// that a FILETIME of the calendar cannot hold has the high bit, which no conversion takes.
FILETIME MomentFrom1970(std::int64_t seconds, std::int64_t nanoseconds);

/// A moment moved by the offset of a zone; nothing when either lies outside of the calendar.
std::optional<FILETIME> Moved(const FILETIME& moment, std::int64_t seconds);

}  // namespace platform
