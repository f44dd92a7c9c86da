#include "platform/windows/ListText.h"

#include "platform/Texts.h"
#include "platform/windows/Text.h"

namespace platform {

std::wstring DisplayText(std::string_view bytes) { return Wide(OneLine(bytes)); }

std::wstring DisplayLines(std::string_view bytes) {
  std::string lines;
  for (const char character : ManyLines(bytes)) {
    if (character == '\n') lines += '\r';
    lines += character;
  }
  return Wide(lines);
}

}  // namespace platform
