#pragma once

#include <string>
#include <string_view>

namespace platform {

/// A name, or "*.*" for every name, or "*." with an ending that fits in any case of its letters.
/// Anything else with a "*" in it is the name of a file that is called that.
class NamePattern {
 public:
  explicit NamePattern(std::string_view text);
  bool IsWildcard() const { return kind_ != Kind::Name; }
  bool Fits(std::string_view name) const;

 private:
  enum class Kind { Name, Any, Ending };

  std::string text_;
  Kind kind_ = Kind::Name;
};

}  // namespace platform
