#pragma once

#include <cstdint>
#include <span>
#include <string>

// The shell folders of the current user.

namespace platform {

inline constexpr int CSIDL_RECENT = 8;
inline constexpr int CSIDL_COOKIES = 33;

/// Names a place of the shell; here it carries the folder's path.
struct ITEMIDLIST {
  std::string Path;
};

/// Looks a shell folder up. 0 on success, anything else when it can't be resolved.
int SHGetSpecialFolderLocation(std::uintptr_t window, int csidl, ITEMIDLIST& place);

/// Fills `buffer` with the path, in bytes, and a NUL where one fits; never writes past the buffer.
/// 0 when there is no path.
int SHGetPathFromIDListA(const ITEMIDLIST& place, std::span<char> buffer);

}  // namespace platform
