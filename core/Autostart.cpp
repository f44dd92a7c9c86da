#include "core/Autostart.h"

#include <string>

#include "core/ModRegistry.h"
#include "core/PublicDim.h"
#include "platform/Application.h"

namespace {

constexpr const char* RunKey = R"(Software\Microsoft\Windows\CurrentVersion\Run)";
constexpr const char* ValueName = "Quillmere";

}  // namespace

bool AutostartEnabled() {
  const RegValue value = ReadRegValue(platform::HKEY_CURRENT_USER, RunKey, ValueName);
  const auto* text = std::get_if<std::string>(&value);
  return text && !text->empty();
}

void EnableAutostart(bool enabled) {
  if (!enabled) return DeleteRegValue(platform::HKEY_CURRENT_USER, RunKey, ValueName);
  CreateRegKey(platform::HKEY_CURRENT_USER, RunKey);
  WriteRegValue(
      platform::HKEY_CURRENT_USER, RunKey, ValueName, platform::REG_SZ,
      PublicDim.AppPath + platform::AppExeName() + std::string(platform::ExeSuffix) + " /1");
}
