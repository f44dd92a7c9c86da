#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "core/PublicDim.h"
#include "tests/unit/TemporaryFolder.h"

/// A record of a cookie file: nine lines, each ended by LF. Its expiry lies at noon, UTC.
inline std::string Record(std::string_view name, std::string_view value, std::string_view server,
                          std::string_view highWord = "29999938") {
  std::string record;
  for (const std::string_view line :
       {name, value, server, std::string_view("1536"), std::string_view("2915392512"), highWord,
        std::string_view("1823712256"), std::string_view("29680011"), std::string_view("*")}) {
    record.append(line).append("\n");
  }
  return record;
}

/// A real cookie folder, and shared state that is as at the program's start but for it.
class CookieFolder : public TemporaryFolder {
 public:
  CookieFolder() {
    PublicDim = {};
    PublicDim.CookieDir = TemporaryFolder::Path();
  }

  std::filesystem::path Path(std::string_view name) const { return TemporaryFolder::Path(name); }
};
