#pragma once

namespace platform {

/// Whether an open folder is the root of the file system, the user's home folder, or one above it:
/// told by what the folder is, not by the path that led to it. Also true when that can't be told.
bool HoldsHome(int folder);

}  // namespace platform
