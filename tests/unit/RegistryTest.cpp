#include <string>

#include <gtest/gtest.h>

#include "core/ModRegistry.h"
#include "tests/unit/TemporaryFolder.h"

TEST(Registry, RunValuesAreAutostartEntriesThatAreOn) {
  const TemporaryFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  const std::string key = R"(Software\Microsoft\Windows\CurrentVersion\Run)";
  const RegValue none;
  const std::pair<std::string, RegValue> entries[] = {
      {"[Desktop Entry]\nExec=\"/opt/program\" /1\n", std::string("/opt/program /1")},
      {"[Desktop Entry]\nExec=/opt/program /1\nHidden=true\n", none},
      {"[Desktop Entry]\nExec=/opt/program /1\nX-GNOME-Autostart-enabled=false\n", none},
      {"[Desktop Action x]\nExec=other\n[Desktop Entry]\nExec = /opt/p /1 %U\r\n",
       std::string("/opt/p /1 ")},
  };
  for (const auto& [entry, command] : entries) {
    folder.Write("autostart/Quillmere.desktop", entry);
    EXPECT_EQ(ReadRegValue(platform::HKEY_CURRENT_USER, key, "quillmere"), command) << entry;
  }
  WriteRegValue(platform::HKEY_CURRENT_USER, key, "../escape", platform::REG_SZ, "/bin/true /1");
  EXPECT_EQ(folder.Entries(), Names{"autostart"});
}
