#include "platform/windows/System.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/ChangeNotification.h"
#include "platform/FileSearch.h"
#include "platform/Files.h"
#include "platform/windows/Paths.h"
#include "platform/windows/Text.h"
#include "tests/support/TemporaryFolder.h"

namespace {

using platform::SystemHandle;

/// What another program does that opens a file.
SystemHandle Opened(const std::string& path, DWORD access, DWORD sharing, DWORD creation) {
  return SystemHandle(CreateFileW(platform::SystemPath(path).c_str(), access, sharing, nullptr,
                                  creation, FILE_ATTRIBUTE_ARCHIVE, nullptr));
}

bool Lists(const TemporaryFolder& folder, const std::string& name) {
  platform::WIN32_FIND_DATA data;
  const platform::HANDLE search = platform::FindFirstFileA(folder.Path("*"), data);
  bool found = data.cFileName == name;
  while (!found && platform::FindNextFileA(search, data) != 0) found = data.cFileName == name;
  platform::FindClose(search);
  return found;
}

}  // namespace

TEST(WindowsFiles, WhateverTheirNamesTheyAreListedReadAndDeletedOrRefused) {
  const TemporaryFolder folder;
  const Names neighbours{folder.Write("x.txt"), folder.Write("a.txt"), folder.Write("con")};
  const Names before = folder.Entries();
  // Wine 8 refuses halves of pairs, and most file systems below it more than 255 bytes.
  for (const std::wstring& name :
       {std::wstring(L"\xD800x.txt"), std::wstring(L"x\xDC00.txt"),
        std::wstring(251, L'é') + L".txt", std::wstring(120, L'é') + L".txt",
        std::wstring(L"con.txt"), std::wstring(L"nul"), std::wstring(L"a.txt."),
        std::wstring(L"a.txt "), std::wstring(L"a*.txt"), std::wstring(L"x.txt:y")}) {
    const std::string narrow = platform::Narrow(name);
    const std::string path = folder.Path(narrow);
    EXPECT_EQ(platform::Wide(narrow), name);
    const bool made = static_cast<bool>(Opened(path, GENERIC_WRITE, 0, CREATE_NEW));
    EXPECT_EQ(Lists(folder, narrow), made) << narrow;
    EXPECT_EQ(platform::Dir(path), made ? narrow : "");
    EXPECT_EQ(platform::InputFile(path).IsOpen(), made) << narrow;
    EXPECT_EQ(platform::DeleteFileA(path), made ? 1 : 0) << narrow;
    EXPECT_EQ(folder.Entries(), before) << narrow;
  }
}

TEST(WindowsFiles, WhatTheSystemAlsoTakesIsNoPath) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("here.txt");
  std::string slashed = file;
  std::replace(slashed.begin(), slashed.end(), '\\', '/');
  for (const std::string& path :
       {slashed, R"(\\?\)" + file, R"(\\.\)" + file, file + ":stream", file.substr(0, 2),
        std::string(R"(\\server)"), std::string(R"(\\server\)"), file + "\xFF"}) {
    EXPECT_FALSE(platform::IsPath(path)) << path;
  }
  EXPECT_TRUE(platform::IsPath(R"(\\server\share\here.txt)"));
  for (const char* around : {".\\here.txt", "..\\here.txt", "none\\..\\here.txt"}) {
    EXPECT_EQ(platform::DeleteFileA(folder.Path(around)), 0) << around;
  }
  EXPECT_TRUE(folder.Has("here.txt"));
}

TEST(WindowsFiles, PathsAreOfAnyLength) {
  const TemporaryFolder top;
  std::string folder = top.Path();
  while (folder.size() < 1000) {
    folder += std::string(50, 'd') + '\\';
    EXPECT_TRUE(platform::MkDir(folder));
  }
  const platform::HANDLE watch = platform::FindFirstChangeNotificationA(
      folder, 0, platform::FILE_NOTIFY_CHANGE_FILE_NAME | platform::FILE_NOTIFY_CHANGE_LAST_WRITE);
  EXPECT_TRUE(platform::AppendFile(folder + "a.txt", "te"));
  EXPECT_TRUE(platform::AppendFile(folder + "a.txt", "xt"));
  EXPECT_TRUE(platform::WriteFileWhole(folder + "b.txt", "text"));
  EXPECT_EQ(platform::WaitForSingleObject(watch, 5000), platform::WAIT_OBJECT_0);
  platform::FindCloseChangeNotification(watch);
  for (const char* name : {"a.txt", "b.txt"}) {
    EXPECT_EQ(platform::InputFile(folder + name).LineInput(), "text") << name;
  }
  EXPECT_TRUE(platform::IsSafeToClear(folder));
  EXPECT_TRUE(platform::Kill(folder + "*.txt"));
}

TEST(WindowsFiles, WhoeverHasAFileOpenAllowsWhatBecomesOfIt) {
  const TemporaryFolder folder;
  const std::string file = folder.Write("a.ini", "old");
  machine::Hide(file);
  const Names before = folder.Entries();
  const DWORD all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const std::pair<DWORD, bool> cases[] = {{all, true},
                                          {FILE_SHARE_READ | FILE_SHARE_WRITE, true},
                                          {FILE_SHARE_READ, false},
                                          {0, false}};
  for (const auto& [sharing, allowed] : cases) {
    const std::string content = "new " + std::to_string(sharing);
    const std::string kept = folder.Read("a.ini");
    {
      const SystemHandle other = Opened(file, GENERIC_READ, sharing, OPEN_EXISTING);
      EXPECT_EQ(platform::WriteFileWhole(file, content), allowed) << sharing;
    }
    EXPECT_EQ(folder.Read("a.ini"), allowed ? content : kept) << sharing;
  }
  EXPECT_TRUE(platform::WriteFileWhole(file, "new"));
  EXPECT_EQ(platform::Dir(file), "") << "it is hidden as before";
  machine::ReadOnly(file, true);
  EXPECT_FALSE(platform::WriteFileWhole(file, "newer"));
  EXPECT_EQ(folder.Read("a.ini"), "new");
  EXPECT_EQ(folder.Entries(), before);

  const std::string cookies = folder.Write("cookies.txt");
  const SystemHandle browser = Opened(cookies, GENERIC_WRITE, all, OPEN_EXISTING);
  EXPECT_TRUE(platform::InputFile(cookies).IsOpen());
  EXPECT_TRUE(platform::Kill(cookies));
}
