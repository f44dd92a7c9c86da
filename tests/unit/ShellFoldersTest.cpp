#include <pwd.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/Registry.h"
#include "platform/ShellFolders.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;

namespace {

class ShellFolders : public testing::Test {
 protected:
  ShellFolders() {
    setenv("HOME", home_.Path("home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", home_.Path("config").c_str(), 1);
    setenv("XDG_DATA_HOME", home_.Path("data").c_str(), 1);
  }

  static std::string Resolved(int csidl) {
    ITEMIDLIST place;
    return SHGetSpecialFolderLocation(1, csidl, place) == 0 ? place.Path : "none";
  }
  static void Choose(const std::string& name, const std::string& path) {
    HKEY key = 0;
    const char* const folders =
        R"(Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders)";
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, folders, 63, key), ERROR_SUCCESS);
    RegSetValueExA(key, name, REG_SZ, path.data(), static_cast<std::uint32_t>(path.size()));
    RegCloseKey(key);
  }

  TemporaryFolder home_;
};

}  // namespace

TEST_F(ShellFolders, CookiesAreLookedForInThreePlaces) {
  EXPECT_EQ(Resolved(CSIDL_COOKIES), home_.Path("data/quillmere/cookies"));
  EXPECT_TRUE(home_.Has("data/quillmere/cookies"));
  const std::string kept = home_.Path("home/.wine/drive_c/users/") + getpwuid(geteuid())->pw_name +
                           "/AppData/Local/Microsoft/Windows/INetCookies";
  std::filesystem::create_directories(kept);
  EXPECT_EQ(Resolved(CSIDL_COOKIES), kept);
  for (const auto& [chosen, expected] :
       {std::pair<std::string, std::string>{"/srv/cookies", "/srv/cookies"},
        {"", kept},
        {"relative/cookies", "none"},
        {R"(\cookies)", "none"},
        {R"(C:\cookies)", "none"}}) {
    Choose("Cookies", chosen);
    EXPECT_EQ(Resolved(CSIDL_COOKIES), expected) << chosen;
  }
}

TEST_F(ShellFolders, RecentDocumentsAreNeverMade) {
  EXPECT_EQ(Resolved(CSIDL_RECENT), "none");
  EXPECT_FALSE(home_.Has("data/RecentDocuments"));
  std::filesystem::create_directories(home_.Path("data/RecentDocuments"));
  EXPECT_EQ(Resolved(CSIDL_RECENT), home_.Path("data/RecentDocuments"));
  Choose("Recent", "/srv/recent");
  EXPECT_EQ(Resolved(CSIDL_RECENT), "/srv/recent");
  EXPECT_EQ(Resolved(0), "none");
}

TEST_F(ShellFolders, VariablesThatAreNotAbsoluteCountAsNotSet) {
  for (const char* value : {"", "data", "./data", "\\data"}) {
    setenv("XDG_DATA_HOME", value, 1);
    EXPECT_EQ(Resolved(CSIDL_COOKIES), home_.Path("home/.local/share/quillmere/cookies")) << value;
  }
  setenv("XDG_DATA_HOME", "/proc/none", 1);
  EXPECT_EQ(Resolved(CSIDL_COOKIES), "none");
}

TEST_F(ShellFolders, ThePathFillsTheBufferAndNoMore) {
  for (const std::size_t length : {1u, 254u, 255u, 256u, 300u}) {
    std::vector<char> buffer(260, '#');
    const std::string path = '/' + std::string(length - 1, 'p');
    EXPECT_NE(SHGetPathFromIDListA({path}, std::span(buffer).first(256)), 0);
    const std::string text(buffer.begin(), buffer.end());
    EXPECT_EQ(text.substr(0, 256).find('\0'), length < 256 ? length : std::string::npos);
    EXPECT_EQ(text.substr(0, std::min<std::size_t>(length, 256)), path.substr(0, 256));
    EXPECT_EQ(text.substr(256), "####");
  }
  std::vector<char> buffer(256, '#');
  EXPECT_EQ(SHGetPathFromIDListA({}, buffer), 0);
}
