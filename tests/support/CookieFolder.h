#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "tests/support/TemporaryFolder.h"

/// A record of a cookie file: nine lines, each ended by LF. Its expiry lies at noon, UTC.
inline std::string Record(const std::string& name, const std::string& value,
                          const std::string& server, const std::string& highWord = "29999938") {
  return name + '\n' + value + '\n' + server + "\n1536\n2915392512\n" + highWord +
         "\n1823712256\n29680011\n*\n";
}

/// A real cookie folder, and shared state that is as at the program's start but for it.
class CookieFolder : public TemporaryFolder {
 public:
  CookieFolder() {
    PublicDim = {};
    WatchFlags = {};
    PublicDim.CookieDir = TemporaryFolder::Path();
  }

  std::filesystem::path Path(std::string_view name) const { return TemporaryFolder::Path(name); }
};
