#include "platform/windows/System.h"

#include <string>

#include <gtest/gtest.h>

#include "core/ModRegistry.h"
#include "core/SpecialFolders.h"
#include "platform/Shell.h"
#include "platform/ShellFolders.h"
#include "platform/windows/Text.h"
#include "tests/support/TemporaryFolder.h"

namespace {

constexpr platform::HKEY User = platform::HKEY_CURRENT_USER;

/// As other programs write it.
void WriteText(const wchar_t* key, const wchar_t* name, const std::wstring& text) {
  RegSetKeyValueW(platform::SystemCurrentUser, key, name, platform::REG_SZ, text.data(),
                  static_cast<DWORD>(text.size() * sizeof(wchar_t)));
}

}  // namespace

TEST(Registry, ValuesComeBackAsTheyWereWritten) {
  const std::string key = "Software\\Kekse für Ωλγα";
  WriteRegValue(User, key, "text", platform::REG_SZ, "lost");
  EXPECT_EQ(ReadRegValue(User, key, "text"), RegValue()) << "there is no such key";
  CreateRegKey(User, key);
  for (const std::string& text :
       {std::string(), std::string("ütf 🍪"), std::string("a\0b\0", 4), std::string(5000, 'x')}) {
    WriteRegValue(User, key, "Näme", platform::REG_SZ, text);
    EXPECT_EQ(ReadRegValue(User, key, "nÄME"), RegValue(text)) << text;
  }
  WriteRegValue(User, key, "number", platform::REG_DWORD, 0x80000001u);
  EXPECT_EQ(ReadRegValue(User, key, "number"), RegValue(0x80000001u));
  DeleteRegValue(User, key, "number");
  EXPECT_EQ(ReadRegValue(User, key, "number"), RegValue());
  for (const std::wstring& text : {std::wstring(L"text"), std::wstring(L"text\0", 5)}) {
    WriteText(platform::Wide(key).c_str(), L"other", text);
    EXPECT_EQ(ReadRegValue(User, key, "other"), RegValue("text")) << text.size();
  }
}

TEST(ShellFolders, AreWhatTheUserChose) {
  const TemporaryFolder folder;
  const wchar_t* const key =
      LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders)";
  const std::string cookies = folder.Path("Kekse für Ωλγα");
  folder.Write("Kekse für Ωλγα/a.txt");
  const std::pair<std::string, std::string> cases[] = {
      {cookies, cookies + '\\'}, {folder.Path("none"), "\\"}, {"relative", "\\"}};
  for (const auto& [chosen, expected] : cases) {
    for (const wchar_t* name : {L"Cookies", L"Recent"})
      WriteText(key, name, platform::Wide(chosen));
    EXPECT_EQ(GetSpecialFolderPath(platform::CSIDL_COOKIES, 0), expected);
    EXPECT_EQ(GetSpecialFolderPath(platform::CSIDL_RECENT, 0), expected);
  }
}

TEST(RecycleBin, IsEmptied) {
  const TemporaryFolder folder;
  const std::wstring file = platform::Wide(folder.Write("thrown away.txt")) + L'\0';
  SHFILEOPSTRUCTW deletion{};
  deletion.wFunc = FO_DELETE;
  deletion.pFrom = file.c_str();
  deletion.fFlags = FOF_ALLOWUNDO | FOF_NO_UI;
  ASSERT_EQ(SHFileOperationW(&deletion), 0);
  const auto thrownAway = [] {
    SHQUERYRBINFO info{sizeof info, 0, 0};
    SHQueryRecycleBinW(nullptr, &info);
    return info.i64NumItems;
  };
  EXPECT_EQ(thrownAway(), 1);
  platform::SHEmptyRecycleBinA(0, "", 7);
  EXPECT_EQ(thrownAway(), 0);
}
