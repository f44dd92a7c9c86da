#pragma once

#include <string>
#include <unordered_map>

/// What the entries of `CookieDir` are called at one moment. A file whose name was changed in the
/// case of its letters alone is the same file to the comparison, but not to every file system.
class PresentNames {
 public:
  PresentNames();

  /// The one entry whose name equals `name` under the text comparison; empty when there is none, or
  /// more than one.
  std::string OnlyOneEqualTo(const std::string& name) const;

 private:
  std::unordered_map<std::string, std::string> byFoldedName_;  ///< Empty where several have it.
};
