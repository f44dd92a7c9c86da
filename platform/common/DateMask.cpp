#include <cstddef>
#include <optional>

#include "platform/Regional.h"

namespace platform {
namespace {

char LowerAscii(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

std::optional<unsigned> MaskField(const SYSTEMTIME& date, char field, bool afterHour) {
  switch (field) {
    case 'y':
      return date.wYear;
    case 'm':
      return afterHour ? date.wMinute : date.wMonth;
    case 'd':
      return date.wDay;
    case 'h':
      return date.wHour;
    case 'n':
      return date.wMinute;
    case 's':
      return date.wSecond;
    default:
      return std::nullopt;
  }
}

void WriteDigits(char* at, unsigned number, std::size_t width) {
  for (std::size_t i = width; i-- > 0; number /= 10) at[i] = static_cast<char>('0' + number % 10);
}

}  // namespace

// Writes over a copy of the mask: a thousand rows a millisecond go through here.
std::string Format(const SYSTEMTIME& date, std::string_view mask) {
  std::string text(mask);
  bool afterHour = false;
  for (std::size_t i = 0, width = 0; i < text.size(); i += width) {
    const char field = LowerAscii(text[i]);
    const std::size_t most = field == 'y' ? 4 : 2;
    for (width = 1; width < most && i + width < text.size(); ++width) {
      if (LowerAscii(text[i + width]) != field) break;
    }
    const std::optional<unsigned> value = MaskField(date, field, afterHour);
    if (!value || width < most) {
      width = 1;
      continue;
    }
    WriteDigits(&text[i], *value, width);
    afterHour = field == 'h';
  }
  return text;
}

}  // namespace platform
