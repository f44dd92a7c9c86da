#include <array>
#include <strings.h>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "platform/Regional.h"
#include "tests/fuzz/Fuzz.h"

// The input is a settings file. What it says is worked out a second time.

namespace {

using Values = std::array<bool, 4>;
const std::array<std::string, 4> Keys{"SaveLog", "ToTray", "PlaySound1", "PlaySound2"};

Values Loaded() {
  LoadConfig();
  return {PublicDim.SaveLog, PublicDim.ToTray, PublicDim.PlaySound1, PublicDim.PlaySound2};
}

bool Same(const std::string& one, const std::string& other) {
  return one.size() == other.size() && strcasecmp(one.c_str(), other.c_str()) == 0;
}

Values Expected(std::string_view text) {
  Values values{false, true, true, true};
  while (!text.empty()) {
    const std::string line = TakeField(text, '\r');
    if (text.starts_with('\n')) text.remove_prefix(1);
    std::string_view rest = line;
    const std::string key = TakeField(rest, '=');
    while (rest.starts_with(' ')) rest.remove_prefix(1);
    const std::string word(rest.substr(0, rest.find_last_not_of(' ') + 1));
    const bool yes = Same(word, "True") || platform::CDbl(word) != 0;
    if (!yes && !Same(word, "False") && !platform::IsNumeric(word)) continue;
    for (std::size_t i = 0; i < Keys.size(); ++i) {
      if (Same(key, Keys[i])) values[i] = yes;
    }
  }
  return values;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  PublicDim.AppPath = sandbox.Path();
  sandbox.Write("config.ini", AsText(data, size));
  const Values values = Loaded();
  Require(values == Expected(AsText(data, size)), "the file is read by its rules");
  SaveConfig();
  std::string written;
  for (std::size_t i = 0; i < 4; ++i) written += Keys[i] + (values[i] ? "=True\r\n" : "=False\r\n");
  Require(sandbox.Read("config.ini") == written, "four lines are written");
  Require(Loaded() == values, "what was written is read again");
  return 0;
}
