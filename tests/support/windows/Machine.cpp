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

fs::path NativePath(const std::string& path) { return platform::SystemPath(path); }
std::string PathText(const fs::path& path) { return platform::Narrow(path.native()); }

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

void MakeReadOnly(const std::string& path) {
  SetFileAttributesW(NativePath(path).c_str(), platform::FILE_ATTRIBUTE_READONLY);
}

void Hide(const std::string& path) {
  SetFileAttributesW(NativePath(path).c_str(), platform::FILE_ATTRIBUTE_HIDDEN);
}

void TickOnce(int milliseconds, bool& ticked) {
  static bool* raised = nullptr;
  raised = &ticked;
  SetTimer(nullptr, 0, static_cast<UINT>(milliseconds), [](HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    *raised = true;
  });
}

void WriteBytesAsTheyAre() { _setmode(_fileno(stdout), _O_BINARY); }

}  // namespace machine
