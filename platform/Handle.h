#pragma once

#include <cstdint>

namespace platform {

/// A resource of the platform: 32 bits. 0 is none.
using HANDLE = std::int32_t;

/// What an operation that opens something returns when it fails.
inline constexpr HANDLE INVALID_HANDLE_VALUE = -1;

}  // namespace platform
