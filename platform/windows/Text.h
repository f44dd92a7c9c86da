#pragma once

#include <string>
#include <string_view>

// Texts are UTF-8 above and UTF-16 in the system's calls. A file name may hold one half of a
// surrogate pair alone: it becomes the three bytes that UTF-8 would have for its number, and these
// become that half again.

namespace platform {

/// What is neither UTF-8 nor such a half becomes U+FFFD, byte by byte.
std::wstring Wide(std::string_view text);

std::string Narrow(std::wstring_view text);

}  // namespace platform
