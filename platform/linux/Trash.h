#pragma once

#include <string>
#include <vector>

// The trash folders of the desktop: one in the user's home, and the user's own on each volume.

namespace platform {

struct TrashPlaces {
  std::string Home;                  ///< The home trash itself; empty for none.
  std::vector<std::string> Volumes;  ///< Mount points.
};

/// The mount points that can hold a trash, from a file in the form of /proc/self/mountinfo.
std::vector<std::string> MountPoints(const std::string& mountInfo);

/// Empties the home trash, and on each volume `.Trash-<uid>` and `.Trash/<uid>`. Links are removed,
/// never followed, and other file systems mounted inside stay. False when anything stayed.
bool EmptyTrash(const TrashPlaces& places);

}  // namespace platform
