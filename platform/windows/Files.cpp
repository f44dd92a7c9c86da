#include "platform/windows/System.h"

#include "platform/Files.h"

#include <algorithm>
#include <array>
#include <vector>

#include "platform/FileSearch.h"
#include "platform/common/LookUp.h"
#include "platform/common/NamePattern.h"
#include "platform/windows/Paths.h"
#include "platform/windows/Text.h"

namespace platform {
namespace {

/// Whether a look-up wants what has these attributes itself and leads to what has those.
bool IsWanted(DWORD own, DWORD target, int wanted) {
  const bool shown = ((own & FILE_ATTRIBUTE_HIDDEN) == 0 || (wanted & vbHidden) != 0) &&
                     ((own & FILE_ATTRIBUTE_SYSTEM) == 0 || (wanted & vbSystem) != 0);
  return shown && ((target & FILE_ATTRIBUTE_DIRECTORY) == 0 || (wanted & vbDirectory) != 0);
}

bool IsWanted(const DirectoryReader& reader, const WIN32_FIND_DATAW& entry, int wanted) {
  const DWORD own = entry.dwFileAttributes;
  if (!IsLink(entry)) return IsWanted(own, own, wanted);
  const auto target = InfoOf(reader.Folder() + entry.cFileName);
  return target && IsWanted(own, target->dwFileAttributes, wanted);
}

bool IsWanted(const std::wstring& path, int wanted) {
  const DWORD own = GetFileAttributesW(path.c_str());
  if (own == INVALID_FILE_ATTRIBUTES) return false;
  if ((own & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return IsWanted(own, own, wanted);
  const auto target = InfoOf(path);
  return target && IsWanted(own, target->dwFileAttributes, wanted);
}

bool Delete(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0 &&
         DeleteFileW(path.c_str()) != 0;
}

bool DeleteAll(const std::string& folder, const NamePattern& fitting) {
  DirectoryReader reader(folder);
  bool any = false;
  bool all = true;
  while (const WIN32_FIND_DATAW* const entry = reader.Next()) {
    const wchar_t* const name = static_cast<const wchar_t*>(entry->cFileName);
    if (!fitting.Fits(Narrow(name)) || !IsWanted(reader, *entry, vbNormal)) continue;
    any = true;
    if (!Delete(reader.Folder() + name)) all = false;
  }
  return any && all;
}

bool WriteAll(const SystemHandle& file, std::string_view content, OVERLAPPED* at = nullptr) {
  DWORD written = 0;
  return WriteFile(file.Get(), content.data(), static_cast<DWORD>(content.size()), &written, at) !=
             0 &&
         written == content.size();
}

/// A file under another name until it takes the place of the one meant. Until then it is marked for
/// deletion, so the system removes it should this process end.
class Successor {
 public:
  explicit Successor(const std::wstring& target)
      : target_(target),
        file_(CreateFileW((target + L".new-" + std::to_wstring(GetCurrentProcessId())).c_str(),
                          GENERIC_WRITE | DELETE | WRITE_DAC, ShareAll, nullptr, CREATE_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL, nullptr)) {}

  explicit operator bool() const { return static_cast<bool>(file_); }

  /// Attributes of the file before it, and who may do what with it.
  void Inherit(const SystemHandle& old) {
    FILE_BASIC_INFO basic{};
    if (GetFileInformationByHandleEx(old.Get(), FileBasicInfo, &basic, sizeof basic) != 0) {
      basic = {{}, {}, {}, {}, basic.FileAttributes};
      SetFileInformationByHandle(file_.Get(), FileBasicInfo, &basic, sizeof basic);
    }
    std::array<std::byte, 65536> rights;
    DWORD size = 0;
    if (GetKernelObjectSecurity(old.Get(), DACL_SECURITY_INFORMATION, rights.data(),
                                static_cast<DWORD>(rights.size()), &size) != 0) {
      SetKernelObjectSecurity(file_.Get(), DACL_SECURITY_INFORMATION, rights.data());
    }
  }

  bool Place(std::string_view content) {
    return MarkForDeletion(true) && WriteAll(file_, content) && FlushFileBuffers(file_.Get()) &&
           MarkForDeletion(false) && TakePlace();
  }

  void Remove() { MarkForDeletion(true); }

 private:
  bool MarkForDeletion(bool marked) {
    FILE_DISPOSITION_INFO disposition{marked};
    return SetFileInformationByHandle(file_.Get(), FileDispositionInfo, &disposition,
                                      sizeof disposition) != 0;
  }

  bool TakePlace() {
    const std::size_t length = target_.size() * sizeof(wchar_t);
    std::vector<std::byte> room(sizeof(FILE_RENAME_INFO) + length);
    auto* const rename = new (room.data()) FILE_RENAME_INFO{};
    rename->ReplaceIfExists = TRUE;
    rename->FileNameLength = static_cast<DWORD>(length);
    std::copy_n(target_.c_str(), target_.size() + 1, static_cast<wchar_t*>(rename->FileName));
    return SetFileInformationByHandle(file_.Get(), FileRenameInfo, rename,
                                      static_cast<DWORD>(room.size())) != 0;
  }

  std::wstring target_;
  SystemHandle file_;
};

/// Puts a new file in the place of a path. 0 or what stood against it. The old one is
/// closed before: what is open is not replaced.
DWORD PutInPlace(const std::wstring& target, SystemHandle old, std::string_view content) {
  Successor successor(target);
  if (!successor) return GetLastError();
  if (old) successor.Inherit(old);
  old = SystemHandle();
  if (successor.Place(content)) return 0;
  const DWORD failure = GetLastError();
  successor.Remove();
  return failure;
}

/// For a file whose folder takes no other in its place. Room comes first, so a disk that is full
/// keeps the old content.
bool WriteOver(const std::wstring& path, std::string_view content) {
  const SystemHandle file = OpenExisting(path, GENERIC_WRITE | FILE_READ_ATTRIBUTES);
  LARGE_INTEGER size{};
  if (!file || GetFileSizeEx(file.Get(), &size) == 0) return false;
  FILE_ALLOCATION_INFO room{};
  room.AllocationSize.QuadPart = std::max(size.QuadPart, static_cast<LONGLONG>(content.size()));
  if (SetFileInformationByHandle(file.Get(), FileAllocationInfo, &room, sizeof room) == 0 &&
      GetLastError() == ERROR_DISK_FULL) {
    return false;
  }
  return WriteAll(file, content) && SetEndOfFile(file.Get()) != 0 &&
         FlushFileBuffers(file.Get()) != 0;
}

}  // namespace

bool IsPath(std::string_view text) { return !SystemPath(text).empty(); }

std::vector<std::string> NamesThatFit(const std::string& pattern, int attributes) {
  const std::string name = NameOf(pattern);
  if (name.empty()) {
    const auto info = InfoOf(SystemPath(pattern));
    const bool found = (attributes & vbDirectory) != 0 && info && IsFolder(*info);
    return found ? std::vector<std::string>{"."} : std::vector<std::string>{};
  }
  const NamePattern fitting(name);
  if (!fitting.IsWildcard()) {
    const bool found = IsWanted(SystemPath(pattern), attributes);
    return found ? std::vector<std::string>{name} : std::vector<std::string>{};
  }
  std::vector<std::string> names;
  DirectoryReader reader(FolderOf(pattern));
  while (const WIN32_FIND_DATAW* const entry = reader.Next()) {
    std::string found = Narrow(static_cast<const wchar_t*>(entry->cFileName));
    if (fitting.Fits(found) && IsWanted(reader, *entry, attributes)) {
      names.push_back(std::move(found));
    }
  }
  return names;
}

bool Kill(const std::string& path) {
  const NamePattern fitting(NameOf(path));
  return fitting.IsWildcard() ? DeleteAll(FolderOf(path), fitting) : Delete(SystemPath(path));
}

int DeleteFileA(const std::string& path) { return Delete(SystemPath(path)) ? 1 : 0; }

bool MkDir(const std::string& path) {
  return CreateDirectoryW(SystemPath(path).c_str(), nullptr) != 0;
}

bool WriteFileWhole(const std::string& path, std::string_view content) {
  std::wstring target = SystemPath(path);
  if (target.empty()) return false;
  const DWORD attributes = GetFileAttributesW(target.c_str());
  SystemHandle old = OpenExisting(target, GENERIC_READ | GENERIC_WRITE);
  const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
  // The new one would take the place of what may not be written.
  if (exists && (!old || (attributes & FILE_ATTRIBUTE_READONLY) != 0)) return false;
  if (exists) {
    const std::wstring final = FinalPath(old);
    if (!final.empty()) target = final;
  }
  const DWORD failure = PutInPlace(target, std::move(old), content);
  return failure == 0 || (exists && failure == ERROR_ACCESS_DENIED && WriteOver(target, content));
}

bool AppendFile(const std::string& path, std::string_view text) {
  const SystemHandle file(CreateFileW(SystemPath(path).c_str(), GENERIC_WRITE, ShareAll, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file || GetFileType(file.Get()) != FILE_TYPE_DISK) return false;
  OVERLAPPED end{};
  end.Offset = end.OffsetHigh = 0xFFFFFFFF;
  return WriteAll(file, text, &end);
}

}  // namespace platform
