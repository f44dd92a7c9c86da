#include <array>
#include <string>

#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "tests/CookieFolder.h"

namespace {

// SaveLog, ToTray, PlaySound1, PlaySound2
using Values = std::array<bool, 4>;
constexpr Values Defaults{false, true, true, true};

Values Loaded() {
  LoadConfig();
  return {PublicDim.SaveLog, PublicDim.ToTray, PublicDim.PlaySound1, PublicDim.PlaySound2};
}

TEST(SettingsFile, ReadsWhatItUnderstandsAndWritesFourLines) {
  const CookieFolder folder;
  PublicDim.AppPath = PublicDim.CookieDir;
  EXPECT_EQ(Loaded(), Defaults) << "no file";
  const std::pair<std::string, Values> cases[] = {
      {"SAVELOG=TRUE\rtotray=false\rPlaysound1=0\r", {true, false, false, true}},
      {"ToTray=0\r\nPlaySound1=-1\r\nPlaySound2=0.0\r\nSaveLog=2", {true, false, true, false}},
      {"ToTray=False\r\nToTray=\r\nToTray=nonsense\r\n", {false, false, true, true}},
      {"SaveLog\r\n=True\r\n\r\nSaveLog =True\r\n SaveLog=True\r\nOther=True\r\n", Defaults},
      {"SaveLog=True=True\r\nSaveLog==True\r\nToTray=False\nSaveLog=True\n", Defaults},
      {"SaveLog= True \r\n" + std::string(5000, 'x'), {true, true, true, true}},
  };
  for (const auto& [content, expected] : cases) {
    folder.Write("config.ini", content);
    EXPECT_EQ(Loaded(), expected) << content;
  }
  PublicDim.PlaySound2 = false;
  SaveConfig();
  EXPECT_EQ(folder.Read("config.ini"),
            "SaveLog=True\r\nToTray=True\r\nPlaySound1=True\r\nPlaySound2=False\r\n");
  EXPECT_EQ(folder.Entries(), Names{"config.ini"}) << "something was left beside the file";
}

}  // namespace
