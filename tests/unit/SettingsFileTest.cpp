#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "tests/CookieFolder.h"

namespace {

// SaveLog, ToTray, PlaySound1, PlaySound2
using Values = std::array<bool, 4>;
constexpr Values Defaults{false, true, true, true};

class SettingsFile : public testing::Test {
 protected:
  void SetUp() override { PublicDim.AppPath = PublicDim.CookieDir; }

  static Values Loaded() {
    LoadConfig();
    return {PublicDim.SaveLog, PublicDim.ToTray, PublicDim.PlaySound1, PublicDim.PlaySound2};
  }

  CookieFolder folder_;
};

TEST_F(SettingsFile, ReadsWhatItUnderstandsAndKeepsTheRest) {
  struct Case {
    std::string Content;
    Values Expected;
  };
  const std::vector<Case> cases = {
      {"", Defaults},
      {"SaveLog=True\r\nToTray=False\r\nPlaySound1=False\r\nPlaySound2=False\r\n",
       {true, false, false, false}},
      {"SAVELOG=TRUE\rtotray=false\rPlaysound1=0\r", {true, false, false, true}},
      {"ToTray=0\r\nPlaySound1=-1\r\nPlaySound2=0.0\r\nSaveLog=2", {true, false, true, false}},
      {"ToTray=False\r\nToTray=\r\nToTray=nonsense\r\n", {false, false, true, true}},
      {"ToTray=False\r\nToTray=True\r\n", Defaults},
      {"SaveLog\r\n=True\r\n\r\nSaveLog =True\r\n SaveLog=True\r\nOther=True\r\n", Defaults},
      {"SaveLog=True=True\r\nSaveLog==True\r\n", Defaults},
      {"SaveLog= True \r\n", {true, true, true, true}},
      // A lone line feed does not end a line, so all of this is one value.
      {"ToTray=False\nPlaySound1=False\n", Defaults},
      {std::string("SaveLog=True\0\r\nToTray=0\r\n", 24), {false, false, true, true}},
  };
  for (const Case& test : cases) {
    folder_.Write("config.ini", test.Content);
    EXPECT_EQ(Loaded(), test.Expected) << test.Content;
  }
  std::filesystem::remove(folder_.Path("config.ini"));
  EXPECT_EQ(Loaded(), Defaults) << "no file";
}

TEST_F(SettingsFile, WritesFourLinesOverWhateverWasThere) {
  folder_.Write("config.ini", "SaveLog=True\r\nMine=1\r\n" + std::string(5000, 'x'));
  LoadConfig();
  PublicDim.PlaySound2 = false;
  SaveConfig();
  std::ifstream file(folder_.Path("config.ini"), std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
            "SaveLog=True\r\nToTray=True\r\nPlaySound1=True\r\nPlaySound2=False\r\n");
  EXPECT_EQ(Loaded(), (Values{true, true, true, false}));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path("")), {}), 1)
      << "something was left beside the file";
}

}  // namespace
