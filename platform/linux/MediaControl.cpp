#include "platform/MediaControl.h"

#include <optional>
#include <set>
#include <string_view>

#include "platform/linux/Paths.h"
#include "platform/linux/SoundPlayer.h"

namespace platform {

namespace {

constexpr std::uint32_t MCIERR_UNRECOGNIZED_COMMAND = 261;
constexpr std::uint32_t MCIERR_INVALID_DEVICE_NAME = 263;
constexpr std::uint32_t MCIERR_FILE_NOT_FOUND = 275;
constexpr std::uint32_t MCIERR_DUPLICATE_ALIAS = 289;

/// The path of `command` when it is this verb, a blank and a path in double quotes.
std::optional<std::string> PathAfter(std::string_view verb, std::string_view command) {
  if (!command.starts_with(verb)) return {};
  command.remove_prefix(verb.size());
  if (command.size() < 3 || command.front() != '"' || command.back() != '"') return {};
  return std::string(command.substr(1, command.size() - 2));
}

std::set<std::string>& OpenDevices() {
  static std::set<std::string> devices;
  return devices;
}

std::uint32_t Open(const std::string& path) {
  if (!IsPath(path) || !CanBeRead(path)) return MCIERR_FILE_NOT_FOUND;
  return OpenDevices().insert(path).second ? 0 : MCIERR_DUPLICATE_ALIAS;
}

std::uint32_t Play(const std::string& path) {
  if (!OpenDevices().contains(path)) return MCIERR_INVALID_DEVICE_NAME;
  StartSound(path);
  return 0;
}

std::uint32_t Close(const std::string& path) {
  if (OpenDevices().erase(path) == 0) return MCIERR_INVALID_DEVICE_NAME;
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
