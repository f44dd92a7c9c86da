#include "platform/common/CodePage.h"

#include <array>

#include "platform/common/Utf8.h"

namespace platform {
namespace {

// What Windows-1252 has at 80 to 9F; the five places that it leaves open keep their number.
constexpr std::array<char16_t, 32> UpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::string TextFromWindows1252(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 4);
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    const bool moved = code >= 0x80 && code < 0xA0;
    AppendUtf8(text, moved ? char32_t{UpperControls[code - 0x80u]} : char32_t{code});
  }
  return text;
}

}  // namespace platform
