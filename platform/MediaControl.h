#pragma once

#include <cstdint>
#include <string>

namespace platform {

/// Carries out a media command: "open ", "play " or "close ", then a file's path in double quotes,
/// which also names the opened device. "play " returns at once and the sound goes on by itself;
/// "close " stops it. No return text (`buffer` null, `length` 0) and no callback are provided.
/// 0 on success; a missing file or sound device is an error code and silence.
std::uint32_t mciSendStringA(const std::string& command, char* buffer, std::uint32_t length,
                             std::uint32_t callback);

}  // namespace platform
