#pragma once

#include <chrono>

namespace platform {

/// Whether a sound server can be reached and answers within `limit`. Blocks for as long.
bool SoundServerAnswers(std::chrono::milliseconds limit);

}  // namespace platform
