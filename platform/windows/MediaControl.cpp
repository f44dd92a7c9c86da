#include "platform/windows/System.h"

#include "platform/MediaControl.h"

#include "platform/windows/Text.h"

namespace platform {

std::uint32_t mciSendStringA(const std::string& command, char*, std::uint32_t, std::uint32_t) {
  return mciSendStringW(Wide(command).c_str(), nullptr, 0, nullptr);
}

}  // namespace platform
