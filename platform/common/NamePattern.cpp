#include "platform/common/NamePattern.h"

#include <algorithm>

namespace platform {
namespace {

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter;
}

bool EndsWithText(std::string_view name, std::string_view lowerEnding) {
  if (name.size() < lowerEnding.size()) return false;
  name.remove_prefix(name.size() - lowerEnding.size());
  return std::equal(name.begin(), name.end(), lowerEnding.begin(),
                    [](char letter, char lower) { return Lower(letter) == lower; });
}

}  // namespace

NamePattern::NamePattern(std::string_view text) : text_(text) {
  if (text == "*.*") {
    kind_ = Kind::Any;
  } else if (text.size() > 2 && text.starts_with("*.") &&
             text.find_first_of("*?[", 1) == std::string_view::npos) {
    kind_ = Kind::Ending;
    text_.erase(0, 1);
    std::transform(text_.begin(), text_.end(), text_.begin(), Lower);
  }
}

bool NamePattern::Fits(std::string_view name) const {
  if (kind_ == Kind::Name) return name == text_;
  return kind_ == Kind::Any || EndsWithText(name, text_);
}

}  // namespace platform
