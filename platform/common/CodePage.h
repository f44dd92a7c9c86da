#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Bytes in the code page of western Europe as text. Every byte is a character.
std::string TextFromWindows1252(std::string_view bytes);

}  // namespace platform
