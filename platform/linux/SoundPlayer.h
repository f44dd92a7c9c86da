#pragma once

#include <string_view>

// Plays sound files on a thread of its own, since a file and a sound server can take any time. Both
// functions return at once; without a server there is silence.

namespace platform {

/// Plays the file from its start; what of it still sounds is cut off.
void StartSound(std::string_view path);
void StopSound(std::string_view path);

}  // namespace platform
