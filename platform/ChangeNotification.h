#pragma once

#include <cstdint>
#include <string>

#include "platform/Handle.h"

// Change notification: a handle that becomes signalled when a folder changes.

namespace platform {

inline constexpr std::uint32_t FILE_NOTIFY_CHANGE_FILE_NAME = 1;
inline constexpr std::uint32_t FILE_NOTIFY_CHANGE_LAST_WRITE = 16;

inline constexpr std::uint32_t WAIT_OBJECT_0 = 0;
inline constexpr std::uint32_t WAIT_TIMEOUT = 258;
inline constexpr std::uint32_t WAIT_FAILED = 0xFFFFFFFF;

/// Opens a notification on `folder`. `filter` must be FILE_NOTIFY_CHANGE_FILE_NAME (a file created,
/// deleted or renamed) plus FILE_NOTIFY_CHANGE_LAST_WRITE (a file's last write time changed); mode
/// bits alone, and what happens in or to subfolders, are no change. `subtree` must be 0. A folder
/// that goes away and comes back, or is replaced by another, is watched again, and both count as a
/// change; so does a change record that overflowed, and the coming of a folder that did not exist.
/// What the system does not watch, or whose changes it does not all tell, is looked at about every
/// two seconds instead; then a subfolder that comes or goes counts as well.
/// INVALID_HANDLE_VALUE when `folder` is no path.
HANDLE FindFirstChangeNotificationA(const std::string& folder, int subtree, std::uint32_t filter);

/// Re-arms a signalled handle. Changes since the signal are kept and satisfy the next wait at once.
int FindNextChangeNotification(HANDLE handle);

/// Closes the handle.
int FindCloseChangeNotification(HANDLE handle);

/// Waits up to `milliseconds`: WAIT_OBJECT_0 when the handle is signalled, else WAIT_TIMEOUT. Hands
/// out no events, but also ends, as a time-out, as soon as window events or timer ticks are
/// pending, so that the yield that follows serves them without delay. INVALID_HANDLE_VALUE is never
/// signalled and waits its time; any other handle that is not open fails at once: WAIT_FAILED.
std::uint32_t WaitForSingleObject(HANDLE handle, std::uint32_t milliseconds);

}  // namespace platform
