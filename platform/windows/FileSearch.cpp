#include "platform/windows/System.h"

#include "platform/FileSearch.h"

#include <memory>

#include "platform/common/HandleTable.h"
#include "platform/common/NamePattern.h"
#include "platform/windows/Paths.h"
#include "platform/windows/Text.h"

namespace platform {
namespace {

FILETIME Moment(const ::FILETIME& time) { return {time.dwLowDateTime, time.dwHighDateTime}; }

class Search {
 public:
  explicit Search(const std::string& pattern)
      : reader_(FolderOf(pattern)), fitting_(PatternOf(pattern)) {}

  bool IsOpen() const { return reader_.IsOpen(); }

  bool Next(WIN32_FIND_DATA& data) {
    while (const WIN32_FIND_DATAW* const entry = reader_.Next()) {
      data.cFileName = Narrow(static_cast<const wchar_t*>(entry->cFileName));
      if (!fitting_.Fits(data.cFileName)) continue;
      Fill(*entry, data);
      return true;
    }
    return false;
  }

 private:
  static std::string PatternOf(const std::string& pattern) {
    const std::string name = NameOf(pattern);
    return name == "*" ? "*.*" : name;
  }

  void Fill(const WIN32_FIND_DATAW& entry, WIN32_FIND_DATA& data) const {
    if (IsLink(entry)) {
      if (const auto target = InfoOf(reader_.Folder() + entry.cFileName)) {
        return FillFrom(*target, data);
      }
    }
    FillFrom(entry, data);
  }

  /// Both records of the system's name these the same.
  template <typename Facts>
  static void FillFrom(const Facts& facts, WIN32_FIND_DATA& data) {
    data.dwFileAttributes = facts.dwFileAttributes;
    data.ftLastWriteTime = Moment(facts.ftLastWriteTime);
    data.nFileSizeHigh = facts.nFileSizeHigh;
    data.nFileSizeLow = facts.nFileSizeLow;
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
