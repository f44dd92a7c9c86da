#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace platform {

/// How many bytes at the head of a text are plain ASCII.
inline std::size_t AsciiLength(std::string_view text) {
  std::size_t length = 0;
  for (; length + 8 <= text.size(); length += 8) {
    std::uint64_t eight;
    std::memcpy(&eight, text.data() + length, 8);
    if ((eight & 0x8080808080808080u) != 0) break;
  }
  while (length < text.size() && static_cast<unsigned char>(text[length]) < 0x80) ++length;
  return length;
}

/// Reads the character at the head of a text that is not empty. Returns its length in bytes; 0 when
/// the text does not begin with UTF-8 (an overlong form, a surrogate and a cut one are none
/// either).
inline std::size_t ReadUtf8(std::string_view text, char32_t& character) {
  const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = at(0);
  if (lead < 0x80) {
    character = lead;
    return 1;
  }
  const std::size_t length = lead < 0xC2   ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  if (length == 0 || text.size() < length) return 0;
  character = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return 0;
    character = (character << 6) | (at(i) & 0x3Fu);
  }
  constexpr char32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = character >= 0xD800 && character < 0xE000;
  return character < Least[length] || surrogate || character > 0x10FFFF ? 0 : length;
}

inline void AppendUtf8(std::string& text, char32_t character) {
  const auto trailing = [character](int shift) {
    return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += {static_cast<char>(0xC0 | (character >> 6)), trailing(0)};
  } else if (character < 0x10000) {
    text += {static_cast<char>(0xE0 | (character >> 12)), trailing(6), trailing(0)};
  } else {
    text += {static_cast<char>(0xF0 | (character >> 18)), trailing(12), trailing(6), trailing(0)};
  }
}

inline bool IsUtf8(std::string_view text) {
  for (;;) {
    text.remove_prefix(AsciiLength(text));
    char32_t character;
    if (text.empty()) return true;
    const std::size_t length = ReadUtf8(text, character);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
}

}  // namespace platform
