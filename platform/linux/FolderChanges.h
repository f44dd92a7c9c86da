#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "platform/linux/Descriptor.h"
#include "platform/linux/Paths.h"

namespace platform {

/// What happens to the files of a folder from now on.
class FolderChanges {
 public:
  explicit FolderChanges(std::string folder);

  /// Adds the names of all files of which anything was recorded since the last time. False when
  /// that is not all that may have changed.
  bool AddTo(std::unordered_set<std::string>& names) const;

 private:
  std::string folder_;
  std::optional<FolderIdentity> identity_;
  Descriptor events_;
};

}  // namespace platform
