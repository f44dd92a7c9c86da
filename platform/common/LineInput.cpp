#include <utility>

#include "platform/Files.h"

namespace platform {

std::string InputFile::LineInput() {
  if (EndOfFile()) return {};
  const std::size_t end = content_.find('\r', position_);
  if (end == std::string::npos && position_ == 0) return std::exchange(content_, {});
  std::string line = content_.substr(position_, end - position_);
  position_ += line.size() + 1;
  if (position_ < content_.size() && content_[position_] == '\n') ++position_;
  return line;
}

}  // namespace platform
