#include "platform/windows/Text.h"

#include "platform/common/Utf8.h"

namespace platform {
namespace {

constexpr std::size_t HalfLength = 3;

bool IsFirstHalf(wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsSecondHalf(wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// The half of a surrogate pair that a text begins with; 0 for anything else.
wchar_t HalfAt(std::string_view text) {
  if (text.size() < HalfLength || text[0] != '\xED') return 0;
  const auto second = static_cast<unsigned char>(text[1]);
  const auto third = static_cast<unsigned char>(text[2]);
  if (second < 0xA0 || second > 0xBF || (third & 0xC0) != 0x80) return 0;
  return static_cast<wchar_t>(0xD000 | (second & 0x3F) << 6 | (third & 0x3F));
}

void AppendUtf16(std::wstring& text, char32_t character) {
  if (character < 0x10000) {
    text += static_cast<wchar_t>(character);
  } else {
    text += static_cast<wchar_t>(0xD7C0 + (character >> 10));
    text += static_cast<wchar_t>(0xDC00 | (character & 0x3FF));
  }
}

}  // namespace

std::wstring Wide(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (;;) {
    const std::size_t plain = AsciiLength(text);
    wide.append(text.begin(), text.begin() + plain);
    text.remove_prefix(plain);
    if (text.empty()) return wide;
    char32_t character = 0xFFFD;
    std::size_t length = ReadUtf8(text, character);
    if (length == 0) {
      const wchar_t half = HalfAt(text);
      character = half == 0 ? 0xFFFD : half;
      length = half == 0 ? 1 : HalfLength;
    }
    AppendUtf16(wide, character);
    text.remove_prefix(length);
  }
}

std::string Narrow(std::wstring_view text) {
  std::string narrow;
  narrow.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t character = text[i];
    if (IsFirstHalf(text[i]) && i + 1 < text.size() && IsSecondHalf(text[i + 1])) {
      character = 0x10000 + ((character & 0x3FF) << 10) + (text[++i] & 0x3FFu);
    }
    AppendUtf8(narrow, character);
  }
  return narrow;
}

}  // namespace platform
