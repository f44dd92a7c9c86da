#pragma once

#include <filesystem>
#include <string>

#include "core/ModRegistry.h"
#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "tests/support/TemporaryFolder.h"

/// A record of a cookie file: nine lines, each ended by LF. Its expiry lies at noon, UTC.
inline std::string Record(const std::string& name, const std::string& value,
                          const std::string& server, const std::string& highWord = "29999938") {
  return name + '\n' + value + '\n' + server + "\n1536\n2915392512\n" + highWord +
         "\n1823712256\n29680011\n*\n";
}

/// Has the user's cookies lie in a folder.
inline void KeepCookiesIn(const std::string& folder) {
  const std::string key =
      R"(Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders)";
  CreateRegKey(platform::HKEY_CURRENT_USER, key);
  WriteRegValue(platform::HKEY_CURRENT_USER, key, "Cookies", platform::REG_SZ, folder);
}

/// A real cookie folder, and shared state that is as at the program's start but for it.
class CookieFolder : public TemporaryFolder {
 public:
  explicit CookieFolder(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path())
      : TemporaryFolder(parent) {
    PublicDim = {};
    WatchFlags = {};
    PublicDim.CookieDir = Path();
  }
};
