#include <ctime>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "platform/FileSearch.h"
#include "platform/Regional.h"
#include "tests/unit/TemporaryFolder.h"

using namespace platform;

namespace {

std::vector<WIN32_FIND_DATA> Search(const std::string& pattern) {
  std::vector<WIN32_FIND_DATA> found;
  WIN32_FIND_DATA data;
  const HANDLE search = FindFirstFileA(pattern, data);
  if (search == INVALID_HANDLE_VALUE) return found;
  do found.push_back(data);
  while (FindNextFileA(search, data) != 0);
  EXPECT_NE(FindClose(search), 0);
  EXPECT_EQ(FindClose(search), 0);
  EXPECT_EQ(FindNextFileA(search, data), 0);
  return found;
}

std::string LocalText(const FILETIME& time) {
  FILETIME local;
  SYSTEMTIME fields;
  if (FileTimeToLocalFileTime(time, local) == 0 || FileTimeToSystemTime(local, fields) == 0) {
    return "none";
  }
  return Format(fields, "YYYY-MM-DD HH:MM:SS");
}

/// The offset is taken anew once a second.
void SetZone(const char* zone) {
  setenv("TZ", zone, 1);
  const std::time_t now = std::time(nullptr);
  while (std::time(nullptr) == now) usleep(1000);
}

}  // namespace

TEST(FileSearch, TellsAttributesAndSizes) {
  const TemporaryFolder folder;
  const std::string longName = std::string(251, 'n') + ".txt";
  const std::string bytes = "\xFF\xFE[1].tXt";
  folder.Write("a.txt", "1234567");
  folder.Write(longName, "");
  folder.Write(bytes, "1");
  folder.Write(".txt", "1");
  folder.Write("other.dat");
  folder.Write("atxt");
  chmod(folder.Write("locked.TXT", "12").c_str(), 0444);
  mkdir(folder.Path("sub.txt").c_str(), 0700);
  symlink("a.txt", folder.Path("link.txt").c_str());
  symlink("sub.txt", folder.Path("tosub.txt").c_str());
  symlink("nowhere", folder.Path("broken.txt").c_str());
  ASSERT_EQ(truncate(folder.Write("huge.txt").c_str(), 5'000'000'000), 0);
  const std::map<std::string, std::pair<std::uint32_t, std::uint64_t>> expected = {
      {"a.txt", {FILE_ATTRIBUTE_NORMAL, 7}},
      {longName, {FILE_ATTRIBUTE_NORMAL, 0}},
      {bytes, {FILE_ATTRIBUTE_NORMAL, 1}},
      {".txt", {FILE_ATTRIBUTE_HIDDEN, 1}},
      {"locked.TXT", {FILE_ATTRIBUTE_READONLY, 2}},
      {"link.txt", {FILE_ATTRIBUTE_NORMAL, 7}},
      {"broken.txt", {FILE_ATTRIBUTE_NORMAL, 7}},
      {"huge.txt", {FILE_ATTRIBUTE_NORMAL, 5'000'000'000}},
      {"sub.txt", {FILE_ATTRIBUTE_DIRECTORY, 0}},
      {"tosub.txt", {FILE_ATTRIBUTE_DIRECTORY, 0}}};
  std::map<std::string, std::pair<std::uint32_t, std::uint64_t>> found;
  for (const WIN32_FIND_DATA& data : Search(folder.Path("*.Txt"))) {
    const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::uint64_t size = (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
    found[data.cFileName.data()] = {data.dwFileAttributes, isFolder ? 0 : size};
  }
  EXPECT_EQ(found, expected);
}

TEST(FileSearch, KeepsTheOrderOfTheDirectory) {
  const TemporaryFolder folder;
  const std::string longName(200, 'n');  // More than one read of the directory.
  for (int i = 0; i < 400; ++i) folder.Write(longName + std::to_string(i), "");
  std::vector<std::string> expected;
  for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
    expected.push_back(entry.path().filename());
  }
  std::vector<std::string> found;
  for (const WIN32_FIND_DATA& data : Search(folder.Path("*"))) {
    const std::string name = data.cFileName.data();
    if (name != "." && name != "..") found.push_back(name);
  }
  EXPECT_EQ(found, expected);
}

TEST(FileSearch, NothingFitsGivesNoHandle) {
  const TemporaryFolder folder;
  folder.Write("a.dat");
  const WorkingFolder working(folder.Path());
  for (const std::string& pattern :
       {folder.Path("*.txt"), folder.Path("none/*"), folder.Path("a.dat/*"), folder.Path(),
        std::string("\\*"), std::string("*"), std::string(), std::string("./*")}) {
    EXPECT_TRUE(Search(pattern).empty()) << pattern;
  }
}

TEST(FileSearch, TimesUseTheOffsetOfNow) {
  const TemporaryFolder folder;
  folder.Write("summer.txt");
  folder.SetTime("summer.txt", 1'089'000'000);  // 2004-07-05 04:00:00 UTC
  const FILETIME summer = Search(folder.Path("*.txt")).at(0).ftLastWriteTime;
  const FILETIME first{0, 0};
  const FILETIME last{0xFFFFFFFF, 0x7FFFFFFF};
  const struct {
    const char* Zone;
    std::string Summer, First, Last;
  } cases[] = {
      {"UTC", "2004-07-05 04:00:00", "1601-01-01 00:00:00", "30828-09-14 02:48:05"},
      {"XXX-5:30", "2004-07-05 09:30:00", "1601-01-01 05:30:00", "none"},
      {"XXX+11", "2004-07-04 17:00:00", "none", "30828-09-13 15:48:05"},
  };
  for (const auto& one : cases) {
    SetZone(one.Zone);
    EXPECT_EQ(LocalText(summer), one.Summer) << one.Zone;
    EXPECT_EQ(LocalText(first), one.First) << one.Zone;
    EXPECT_EQ(LocalText(last), one.Last) << one.Zone;
  }
  FILETIME unchanged{1, 2};
  EXPECT_EQ(FileTimeToLocalFileTime(first, unchanged), 0);
  SYSTEMTIME fields{1, 2, 3, 4, 5, 6};
  EXPECT_EQ(FileTimeToSystemTime({0, 0x80000000}, fields), 0);
  EXPECT_EQ(unchanged.dwLowDateTime + fields.wYear, 2u);
  setenv("TZ", "UTC", 1);
}
