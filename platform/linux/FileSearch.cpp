#include "platform/FileSearch.h"

#include <algorithm>
#include <memory>
#include <string_view>

#include "platform/common/FileTimes.h"
#include "platform/common/HandleTable.h"
#include "platform/linux/Paths.h"

namespace platform {
namespace {

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
      if (fitting_.Fits(entry.Name) && Fill(entry, data)) return true;
    }
    return false;
  }

 private:
  static std::string PatternOf(const std::string& pattern) {
    const std::string name = NameOf(pattern);
    return name == "*" ? "*.*" : name;
  }

  bool Fill(const DirectoryReader::Entry& entry, WIN32_FIND_DATA& data) const {
    struct stat info;
    if (fstatat(reader_.Folder(), entry.SystemName(), &info, 0) != 0 &&
        fstatat(reader_.Folder(), entry.SystemName(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
      return false;  // Deleted since the directory was read.
    }
    const auto size = static_cast<std::uint64_t>(info.st_size);
    data.dwFileAttributes = Attributes(info, entry.Name);
    data.ftLastWriteTime = MomentFrom1970(info.st_mtim.tv_sec, info.st_mtim.tv_nsec);
    data.nFileSizeHigh = static_cast<std::uint32_t>(size >> 32);
    data.nFileSizeLow = static_cast<std::uint32_t>(size);
    data.cFileName = entry.Name;
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

}  // namespace platform
