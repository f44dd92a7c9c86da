#include "platform/MediaControl.h"

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/Paths.h"
#include "platform/linux/SoundPlayer.h"

namespace platform {

namespace {

constexpr std::uint32_t MCIERR_UNRECOGNIZED_COMMAND = 261;
constexpr std::uint32_t MCIERR_INVALID_DEVICE_NAME = 263;
constexpr std::uint32_t MCIERR_FILE_NOT_FOUND = 275;
constexpr std::uint32_t MCIERR_DUPLICATE_ALIAS = 289;

/// The path of `command` when it is this verb, a blank and a path in double quotes.
std::optional<std::string_view> PathAfter(std::string_view verb, std::string_view command) {
  if (!command.starts_with(verb)) return {};
  command.remove_prefix(verb.size());
  if (command.size() < 3 || command.front() != '"' || command.back() != '"') return {};
  return command.substr(1, command.size() - 2);
}

using Clock = std::chrono::steady_clock;

struct Device {
  bool Open = false;
  Clock::time_point Found;  ///< When a file that can be read was last seen there.
};

/// By their paths.
std::map<std::string, Device, std::less<>>& Devices() {
  static std::map<std::string, Device, std::less<>> devices;
  return devices;
}

Device* OpenDevice(std::string_view path) {
  const auto device = Devices().find(path);
  return device != Devices().end() && device->second.Open ? &device->second : nullptr;
}

std::uint32_t Open(std::string_view path) {
  // A look at the file takes longer than all else, and a storm of changes plays it a million times
  // in a second.
  constexpr auto Holds = std::chrono::milliseconds(100);
  const auto now = Clock::now();
  auto device = Devices().find(path);
  if (device == Devices().end() || now - device->second.Found > Holds) {
    if (!IsPath(path) || !CanBeRead(std::string(path))) return MCIERR_FILE_NOT_FOUND;
    device = Devices().try_emplace(std::string(path)).first;
    device->second.Found = now;
  }
  return std::exchange(device->second.Open, true) ? MCIERR_DUPLICATE_ALIAS : 0;
}

std::uint32_t Play(std::string_view path) {
  if (OpenDevice(path) == nullptr) return MCIERR_INVALID_DEVICE_NAME;
  StartSound(path);
  return 0;
}

std::uint32_t Close(std::string_view path) {
  Device* const device = OpenDevice(path);
  if (device == nullptr) return MCIERR_INVALID_DEVICE_NAME;
  device->Open = false;
  StopSound(path);
  return 0;
}

}  // namespace

std::uint32_t mciSendStringA(const std::string& command, char*, std::uint32_t, std::uint32_t) {
  if (const auto path = PathAfter("open ", command)) return Open(*path);
  if (const auto path = PathAfter("play ", command)) return Play(*path);
  if (const auto path = PathAfter("close ", command)) return Close(*path);
  return MCIERR_UNRECOGNIZED_COMMAND;
}

}  // namespace platform
