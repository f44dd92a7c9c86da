#include "platform/windows/System.h"

#include <array>
#include <iterator>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/FileSearch.h"
#include "platform/Files.h"
#include "platform/common/LookUp.h"
#include "platform/windows/Paths.h"

namespace platform {

namespace {

/// What the folder at hand has told: which of its files can be opened unasked.
struct OrdinaryFiles {
  std::string Folder;
  std::unordered_set<std::string> Names;
};

OrdinaryFiles& AtHand() {
  static OrdinaryFiles files;
  return files;
}

bool IsOrdinary(const std::string& path) {
  if (FolderOf(path) == AtHand().Folder && AtHand().Names.contains(NameOf(path))) return true;
  // It may be new there, or there in other letters.
  const std::vector<std::string> found = NamesThatFit(path, vbNormal);
  return found.size() == 1 && found.front() == NameOf(path);
}

}  // namespace

FolderAtHand::FolderAtHand(const std::string& pattern) {
  std::vector<std::string> names = NamesThatFit(pattern, vbNormal);
  AtHand() = {FolderOf(pattern),
              {std::make_move_iterator(names.begin()), std::make_move_iterator(names.end())}};
}

FolderAtHand::~FolderAtHand() { AtHand() = {}; }
void FolderAtHand::ComesSoon(const std::string&) {}
void FolderAtHand::ComesNot() {}

InputFile::InputFile(const std::string& path) {
  if (!IsOrdinary(path)) return;
  const SystemHandle file(CreateFileW(SystemPath(path).c_str(), GENERIC_READ, ShareAll, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  // What has taken its place meanwhile may be something else.
  if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK) return;
  constexpr std::size_t LongestText = 0x7FFFFFFF;
  std::array<char, 65536> buffer;
  DWORD got = 0;
  do {
    open_ = ReadFile(file.Get(), buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) &&
            content_.size() + got <= LongestText;
    if (open_) content_.append(buffer.data(), got);
  } while (open_ && got == buffer.size());  // of a file on a disk less is the end
  if (!open_) content_ = {};
}

}  // namespace platform
