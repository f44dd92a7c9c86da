#include "platform/common/Folding.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/common/Utf8.h"

namespace platform {
namespace {

char LowerAscii(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

}  // namespace

std::string Folded(std::string_view text, FoldCharacter fold) {
  std::string folded;
  folded.reserve(text.size());
  while (!text.empty()) {
    const std::size_t plain = AsciiLength(text);
    const std::size_t before = folded.size();
    folded.append(text, 0, plain);
    std::transform(folded.begin() + static_cast<std::ptrdiff_t>(before), folded.end(),
                   folded.begin() + static_cast<std::ptrdiff_t>(before), LowerAscii);
    text.remove_prefix(plain);
    if (text.empty()) break;
    char32_t character = 0;
    const std::size_t length = ReadUtf8(text, character);
    if (length == 0) {
      folded += text.front();
    } else {
      AppendUtf8(folded, fold(character));
    }
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return folded;
}

bool OccursFolded(std::string_view folded, std::string_view text, FoldCharacter fold) {
  // Nearly every field is short and plain: folded on the stack, eight or more letters at a time.
  std::array<char, 1024> lower;
  if (text.size() > lower.size()) return Folded(text, fold).find(folded) != std::string::npos;
  unsigned char seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto letter = static_cast<unsigned char>(text[i]);
    seen = static_cast<unsigned char>(seen | letter);
    const bool upper = static_cast<unsigned char>(letter - 'A') < 26;
    lower[i] = static_cast<char>(letter | (upper ? 0x20 : 0));
  }
  if (seen >= 0x80) return Folded(text, fold).find(folded) != std::string::npos;
  return std::string_view(lower.data(), text.size()).find(folded) != std::string_view::npos;
}

}  // namespace platform
