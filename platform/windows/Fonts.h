#pragma once

#include "platform/windows/SystemWindows.h"

namespace platform {

/// The classic dialog face, 8.25 points, for a scale in dots to the inch. Kept until the process
/// ends.
HFONT DialogFont(int dpi, bool underlined = false);

}  // namespace platform
