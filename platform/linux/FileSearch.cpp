#include "platform/FileSearch.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <string_view>

#include "platform/common/HandleTable.h"
#include "platform/linux/Paths.h"

namespace platform {
namespace {

constexpr std::uint64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;
constexpr std::uint64_t HighBit = 1ull << 63;

std::uint64_t Ticks(const FILETIME& time) {
  return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

FILETIME FromTicks(std::uint64_t ticks) {
  return {static_cast<std::uint32_t>(ticks), static_cast<std::uint32_t>(ticks >> 32)};
}

// A time outside of what a FILETIME can hold gets the high bit, which no conversion accepts.
FILETIME FromUnixTime(const timespec& time) {
  const std::int64_t seconds = std::int64_t{time.tv_sec} + SecondsFrom1601To1970;
  if (seconds < 0 || static_cast<std::uint64_t>(seconds) >= HighBit / TicksPerSecond) {
    return FromTicks(HighBit);
  }
  return FromTicks(static_cast<std::uint64_t>(seconds) * TicksPerSecond +
                   static_cast<std::uint64_t>(time.tv_nsec) / 100);
}

std::int64_t ZoneOffsetNow() {
  static std::time_t known = -1;
  static std::int64_t offset = 0;
  const std::time_t now = std::time(nullptr);
  if (now != known) {
    known = now;
    tzset();  // localtime_r alone need not see that the zone was changed under a running program.
    std::tm local{};
    localtime_r(&now, &local);
    offset = local.tm_gmtoff;
  }
  return offset;
}

std::uint32_t Attributes(const struct stat& info, std::string_view name) {
  std::uint32_t attributes = 0;
  if (S_ISDIR(info.st_mode)) attributes |= FILE_ATTRIBUTE_DIRECTORY;
  if ((info.st_mode & S_IWUSR) == 0) attributes |= FILE_ATTRIBUTE_READONLY;
  if (name.starts_with('.')) attributes |= FILE_ATTRIBUTE_HIDDEN;
  return attributes == 0 ? FILE_ATTRIBUTE_NORMAL : attributes;
}

class Search {
 public:
  explicit Search(const std::string& pattern)
      : reader_(FolderOf(pattern)), fitting_(PatternOf(pattern)) {}

  bool IsOpen() const { return reader_.IsOpen(); }

  bool Next(WIN32_FIND_DATA& data) {
    DirectoryReader::Entry entry;
    while (reader_.Next(entry)) {
      if (fitting_.Fits(entry.Name) && Fill(entry.Name, data)) return true;
    }
    return false;
  }

 private:
  static std::string PatternOf(const std::string& pattern) {
    const std::string name = NameOf(pattern);
    return name == "*" ? "*.*" : name;
  }

  bool Fill(std::string_view name, WIN32_FIND_DATA& data) const {
    struct stat info;
    if (fstatat(reader_.Folder(), name.data(), &info, 0) != 0 &&
        fstatat(reader_.Folder(), name.data(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
      return false;  // Deleted since the directory was read.
    }
    const auto size = static_cast<std::uint64_t>(info.st_size);
    data.dwFileAttributes = Attributes(info, name);
    data.ftLastWriteTime = FromUnixTime(info.st_mtim);
    data.nFileSizeHigh = static_cast<std::uint32_t>(size >> 32);
    data.nFileSizeLow = static_cast<std::uint32_t>(size);
    const std::size_t length = std::min(name.size(), data.cFileName.size() - 1);
    std::copy_n(name.data(), length, data.cFileName.data());
    data.cFileName[length] = '\0';
    return true;
  }

  DirectoryReader reader_;
  NamePattern fitting_;
};

HandleTable<Search>& Searches() {
  static HandleTable<Search> table;
  return table;
}

}  // namespace

HANDLE FindFirstFileA(const std::string& pattern, WIN32_FIND_DATA& data) {
  if (!IsPath(pattern)) return INVALID_HANDLE_VALUE;
  auto search = std::make_unique<Search>(pattern);
  if (!search->IsOpen() || !search->Next(data)) return INVALID_HANDLE_VALUE;
  return Searches().Add(std::move(search));
}

int FindNextFileA(HANDLE search, WIN32_FIND_DATA& data) {
  Search* const open = Searches().Find(search);
  return open != nullptr && open->Next(data) ? 1 : 0;
}

int FindClose(HANDLE search) { return Searches().Remove(search) ? 1 : 0; }

int FileTimeToLocalFileTime(const FILETIME& utc, FILETIME& local) {
  const std::uint64_t ticks = Ticks(utc);
  const std::uint64_t moved = ticks + static_cast<std::uint64_t>(ZoneOffsetNow()) * TicksPerSecond;
  if (((ticks | moved) & HighBit) != 0) return 0;
  local = FromTicks(moved);
  return 1;
}

int FileTimeToSystemTime(const FILETIME& time, SYSTEMTIME& fields) {
  const std::uint64_t ticks = Ticks(time);
  if ((ticks & HighBit) != 0) return 0;
  const auto seconds = static_cast<std::int64_t>(ticks / TicksPerSecond) - SecondsFrom1601To1970;
  const std::chrono::sys_seconds moment{std::chrono::seconds{seconds}};
  const auto day = std::chrono::floor<std::chrono::days>(moment);
  const std::chrono::year_month_day date{day};
  const auto second = (moment - day).count();
  fields.wYear = static_cast<std::uint16_t>(static_cast<int>(date.year()));
  fields.wMonth = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
  fields.wDay = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
  fields.wHour = static_cast<std::uint16_t>(second / 3600);
  fields.wMinute = static_cast<std::uint16_t>(second / 60 % 60);
  fields.wSecond = static_cast<std::uint16_t>(second % 60);
  return 1;
}

}  // namespace platform
