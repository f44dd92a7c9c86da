#include <optional>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>

#include "core/SpecialFolders.h"
#include "platform/ShellFolders.h"
#include "platform/linux/AutostartEntry.h"
#include "tests/support/TemporaryFolder.h"

TEST(Autostart, KnowsTheEntriesThatAreOn) {
  const TemporaryFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  const std::pair<std::string, std::optional<std::string>> entries[] = {
      {"[Desktop Entry]\nExec=\"/opt/program\" /1\n", "/opt/program /1"},
      {"[Desktop Entry]\nExec=/opt/p /1\nHidden=True\n", {}},
      {"[Desktop Entry]\nExec=/opt/p /1\nX-MATE-Autostart-enabled=0\n", {}},
      {"[Desktop Entry]\nExec=/opt/p /1\nX-GNOME-Autostart-enabled=false\n", {}},
      {"[Desktop Action x]\nExec=other\n[Desktop Entry]\nExec = /opt/p /1 %U\r\n", "/opt/p /1 "}};
  for (const auto& [entry, command] : entries) {
    folder.Write("autostart/Quillmere.desktop", entry);
    EXPECT_EQ(platform::AutostartCommand("quillmere"), command) << entry;
  }
  platform::SetAutostartCommand("../escape", "/bin/true /1");
  EXPECT_EQ(folder.Entries(), Names{"autostart"});
}

TEST(ShellFolders, AreWhatTheUserChoseElseWhatIsThere) {
  const auto cookies = [] { return GetSpecialFolderPath(platform::CSIDL_COOKIES, 1); };
  const auto recent = [] { return GetSpecialFolderPath(platform::CSIDL_RECENT, 1); };
  const TemporaryFolder home;
  setenv("HOME", home.Path("home").c_str(), 1);
  setenv("XDG_CONFIG_HOME", home.Path("config").c_str(), 1);
  for (const char* value : {"", "data", "\\data"}) {  // One that is not absolute is not set.
    setenv("XDG_DATA_HOME", value, 1);
    EXPECT_EQ(cookies(), home.Path("home/.local/share/quillmere/cookies/")) << value;
  }
  setenv("XDG_DATA_HOME", home.Path("data").c_str(), 1);
  EXPECT_EQ(cookies(), home.Path("data/quillmere/cookies/"));
  EXPECT_TRUE(home.Has("data/quillmere/cookies"));
  EXPECT_EQ(recent(), "\\") << "recent documents are never made";
  std::filesystem::create_directories(home.Path("data/RecentDocuments"));
  EXPECT_EQ(recent(), home.Path("data/RecentDocuments/"));
  const std::string kept = home.Path("home/.wine/drive_c/users/") + getpwuid(geteuid())->pw_name +
                           "/AppData/Local/Microsoft/Windows/INetCookies";
  std::filesystem::create_directories(kept);
  const std::string key =
      R"([Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders])";
  const std::string longest = '/' + std::string(254, 'p');
  const std::pair<std::string, std::string> cases[] = {
      {"", kept + '/'},  {"/srv/cookies", "/srv/cookies/"}, {"relative/cookies", "\\"},
      {R"(C:\c)", "\\"}, {longest, longest + '/'},          {longest + 'p', "C:\\"}};
  for (const auto& [chosen, expected] : cases) {
    home.Write("config/quillmere/registry.ini", key + "\nCookies=" + chosen + "\nRecent=/srv/r\n");
    EXPECT_EQ(cookies(), expected) << chosen;
    EXPECT_EQ(recent(), "/srv/r/");
  }
}
