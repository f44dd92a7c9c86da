#include "platform/windows/System.h"

#include "platform/windows/Paths.h"

#include "platform/windows/Text.h"

namespace platform {
namespace {

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool HasDriveAndRoot(std::string_view path) {
  return path.size() >= 3 && IsLetter(path[0]) && path[1] == ':' && path[2] == '\\';
}

/// "\\server\share" with or without more. The system's own "\\?\" and "\\.\" are none.
bool HasServerAndShare(std::string_view path) {
  if (!path.starts_with("\\\\")) return false;
  path.remove_prefix(2);
  const std::size_t end = path.find('\\');
  const std::string_view server = path.substr(0, end);
  return end != std::string_view::npos && !server.empty() && server != "?" && server != "." &&
         end + 1 < path.size() && path[end + 1] != '\\';
}

}  // namespace

std::wstring SystemPath(std::string_view path) {
  const bool drive = HasDriveAndRoot(path);
  if (!drive && !HasServerAndShare(path)) return {};
  // A colon would name a part of a file.
  const std::string_view names = path.substr(2);
  if (names.find_first_of(std::string_view(":/\0", 3)) != std::string_view::npos) return {};
  const std::wstring wide = Wide(path);
  if (Narrow(wide) != path) return {};
  return drive ? L"\\\\?\\" + wide : L"\\\\?\\UNC" + wide.substr(1);
}

SystemHandle OpenExisting(const std::wstring& path, DWORD access) {
  return SystemHandle(CreateFileW(path.c_str(), access, ShareAll, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

std::optional<BY_HANDLE_FILE_INFORMATION> InfoOf(const std::wstring& path) {
  const SystemHandle opened = OpenExisting(path, FILE_READ_ATTRIBUTES);
  BY_HANDLE_FILE_INFORMATION info;
  if (!opened || GetFileInformationByHandle(opened.Get(), &info) == 0) return std::nullopt;
  return info;
}

std::wstring FinalPath(const SystemHandle& opened) {
  constexpr DWORD LongestPath = 0x8000;
  std::wstring path(LongestPath, L'\0');
  const DWORD length = GetFinalPathNameByHandleW(opened.Get(), path.data(), LongestPath, 0);
  path.resize(length < LongestPath ? length : 0);
  return path;
}

DirectoryReader::DirectoryReader(std::string_view folder) : folder_(SystemPath(folder)) {
  if (folder_.empty()) return;
  if (!folder_.ends_with(L'\\')) folder_ += L'\\';
  search_ = FindFirstFileExW((folder_ + L'*').c_str(), FindExInfoBasic, &entry_,
                             FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
  waiting_ = IsOpen();
}

DirectoryReader::~DirectoryReader() {
  if (IsOpen()) ::FindClose(search_);
}

const WIN32_FIND_DATAW* DirectoryReader::Next() {
  if (!IsOpen() || (!waiting_ && FindNextFileW(search_, &entry_) == 0)) return nullptr;
  waiting_ = false;
  return &entry_;
}

}  // namespace platform
