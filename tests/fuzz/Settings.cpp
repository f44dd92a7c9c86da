#include <array>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "tests/fuzz/Fuzz.h"

// The input is a settings file.

namespace {

using Values = std::array<bool, 4>;
const std::array<std::string, 4> Keys{"SaveLog", "ToTray", "PlaySound1", "PlaySound2"};

Values Loaded() {
  LoadConfig();
  return {PublicDim.SaveLog, PublicDim.ToTray, PublicDim.PlaySound1, PublicDim.PlaySound2};
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  PublicDim.AppPath = sandbox.Path();
  sandbox.Write("config.ini", AsText(data, size));
  const Values values = Loaded();
  for (std::size_t i = 0; i < Keys.size(); ++i) {
    Values changed = values;
    changed[i] = !changed[i];
    const std::string line = "\r\n" + Keys[i] + '=' + (changed[i] ? " tRUE" : "0");
    sandbox.Write("config.ini", std::string(AsText(data, size)) + line);
    Require(Loaded() == changed, "a last line changes its own value alone");
  }
  sandbox.Write("config.ini", AsText(data, size));
  LoadConfig();
  SaveConfig();
  std::string written;
  for (std::size_t i = 0; i < 4; ++i) written += Keys[i] + (values[i] ? "=True\r\n" : "=False\r\n");
  Require(sandbox.Read("config.ini") == written, "four lines are written");
  Require(Loaded() == values, "what was written is read again");
  return 0;
}
