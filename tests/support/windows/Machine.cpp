#include "platform/windows/System.h"

#include "tests/support/Machine.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

#include "platform/windows/Paths.h"
#include "platform/windows/Text.h"

namespace machine {

namespace fs = std::filesystem;

const char Separator = '\\';
const bool CasesDiffer = false;
const bool ToldExactly = false;
const bool TouchIsTold = false;

namespace {

// Of the system's count of time.
constexpr std::uint64_t StepsASecond = 10'000'000;
constexpr std::time_t SecondsBefore1970 = 11'644'473'600;

}  // namespace

fs::path NativePath(const std::string& path) { return platform::SystemPath(path); }
std::string PathText(const fs::path& path) { return platform::Narrow(path.native()); }

std::vector<fs::path> TemporaryPlaces() { return {fs::temp_directory_path()}; }

std::string MakeOwnFolder(const fs::path& parent) {
  static std::atomic<int> number;
  std::string path;
  do {
    path = PathText(parent / ("unit-" + std::to_string(GetCurrentProcessId()) + '-' +
                              std::to_string(++number)));
  } while (CreateDirectoryW(NativePath(path).c_str(), nullptr) == 0);
  return path + '\\';
}

void RemoveFolder(const std::string& path) {
  platform::DirectoryReader reader(path);
  while (const WIN32_FIND_DATAW* const entry = reader.Next()) {
    const std::wstring name = static_cast<const wchar_t*>(entry->cFileName);
    const std::wstring inside = reader.Folder() + name;
    if (name == L"." || name == L"..") continue;
    SetFileAttributesW(inside.c_str(), platform::FILE_ATTRIBUTE_NORMAL);
    const bool folder = (entry->dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (folder && !platform::IsLink(*entry)) RemoveFolder(path + platform::Narrow(name) + '\\');
    if (!folder) DeleteFileW(inside.c_str());
  }
  RemoveDirectoryW(NativePath(path).c_str());
}

namespace {

std::wstring OwnRegistry() {
  return L"Software\\Quillmere tests\\" + std::to_wstring(GetCurrentProcessId());
}

void RemoveOwnRegistry() {
  RegOverridePredefKey(platform::SystemCurrentUser, nullptr);
  RegDeleteTreeW(platform::SystemCurrentUser, OwnRegistry().c_str());
}

}  // namespace

/// What the user's registry holds lies below a key of its own too, which goes with the process.
void UseFolder(const std::string& path) {
  UseHome(path + "home");
  RemoveOwnRegistry();
  ::HKEY own = nullptr;
  RegCreateKeyW(platform::SystemCurrentUser, OwnRegistry().c_str(), &own);
  RegOverridePredefKey(platform::SystemCurrentUser, own);
  RegCloseKey(own);
  std::atexit(RemoveOwnRegistry);
}

void UseHome(const std::string& path) {
  SetEnvironmentVariableW(L"USERPROFILE", platform::Wide(path).c_str());
}

Facts FactsOf(const std::string& path) {
  Facts facts;
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExW(NativePath(path).c_str(), GetFileExInfoStandard, &data)) return facts;
  const auto has = [&](DWORD attribute) { return (data.dwFileAttributes & attribute) != 0; };
  facts.Exists = true;
  facts.IsFolder = facts.LeadsToFolder = has(platform::FILE_ATTRIBUTE_DIRECTORY);
  facts.IsPlain = !facts.IsFolder;
  facts.IsReadable = facts.IsPlain && !has(platform::FILE_ATTRIBUTE_HIDDEN);
  facts.MayGo = facts.IsPlain && !has(platform::FILE_ATTRIBUTE_READONLY);
  facts.IsWritable = facts.MayGo && facts.IsReadable;
  facts.Size = (std::uintmax_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
  const auto time = (std::uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32) |
                    data.ftLastWriteTime.dwLowDateTime;
  facts.Modified = static_cast<std::time_t>(time / StepsASecond) - SecondsBefore1970;
  return facts;
}

void ReadOnly(const std::string& path, bool readOnly) {
  const std::wstring name = NativePath(path);
  const DWORD others = GetFileAttributesW(name.c_str()) & platform::FILE_ATTRIBUTE_HIDDEN;
  SetFileAttributesW(name.c_str(), others | (readOnly ? platform::FILE_ATTRIBUTE_READONLY
                                                      : platform::FILE_ATTRIBUTE_NORMAL));
}

void Hide(const std::string& path) {
  SetFileAttributesW(NativePath(path).c_str(), platform::FILE_ATTRIBUTE_HIDDEN);
}

void Touch(const std::string& path, std::time_t second, int steps) {
  const auto time = static_cast<std::uint64_t>(second + SecondsBefore1970) * StepsASecond +
                    static_cast<std::uint64_t>(steps);
  const ::FILETIME written{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
  const auto file = platform::OpenExisting(NativePath(path), FILE_WRITE_ATTRIBUTES);
  SetFileTime(file.Get(), nullptr, nullptr, &written);
}

void TouchInVain(const std::string& path) {
  const auto file =
      platform::OpenExisting(NativePath(path), FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES);
  ::FILETIME written;
  if (GetFileTime(file.Get(), nullptr, nullptr, &written))
    SetFileTime(file.Get(), nullptr, nullptr, &written);
}

bool MakeOddity(const std::string&, unsigned) { return false; }

std::vector<std::pair<std::string, std::string>> OddNames() {
  return {{"con.txt", "con.txt"}, {" ['%1%].txt", " ['%1%].txt"}, {"\u2028.txt", "␤.txt"}};
}

void WriteBytesAsTheyAre() { _setmode(_fileno(stdout), _O_BINARY); }

}  // namespace machine
