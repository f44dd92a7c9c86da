#pragma once

#include "platform/windows/System.h"

#include <optional>
#include <string>
#include <string_view>

#include "platform/FileSearch.h"
#include "platform/windows/SystemHandle.h"

namespace platform {

/// A path for the system's calls: in the form that knows no limit of length and in which every name
/// stands for itself, "con", ".." and "a." too. Empty, which those calls refuse, for what names
/// nothing: only a drive with its root or a share of another machine does, so that an unresolved
/// folder ("\") with anything behind it stays nowhere.
std::wstring SystemPath(std::string_view path);

/// The folder of a path, its separator included.
inline std::string FolderOf(const std::string& path) {
  return path.substr(0, path.rfind('\\') + 1);
}

/// What follows the last separator.
inline std::string NameOf(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

/// Whether links stand for something else, as many things do not that look like links to the
/// system.
inline bool IsLink(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
         IsReparseTagNameSurrogate(entry.dwReserved0);
}

inline bool IsFolder(const BY_HANDLE_FILE_INFORMATION& info) {
  return (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// What others may do meanwhile: everything.
inline constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Opens a file or a folder, through links, for what `access` names.
SystemHandle OpenExisting(const std::wstring& path, DWORD access);

/// What a path leads to, through all links; nothing when it leads nowhere.
std::optional<BY_HANDLE_FILE_INFORMATION> InfoOf(const std::wstring& path);

/// The path of what is open, without links. Empty when the system has none.
std::wstring FinalPath(const SystemHandle& opened);

/// The entries of a folder in the order of the directory.
class DirectoryReader {
 public:
  explicit DirectoryReader(std::string_view folder);
  DirectoryReader(const DirectoryReader&) = delete;
  DirectoryReader& operator=(const DirectoryReader&) = delete;
  ~DirectoryReader();

  bool IsOpen() const { return search_ != NoSystemHandle; }
  /// The folder's path, which a name can follow.
  const std::wstring& Folder() const { return folder_; }
  /// The next entry, valid until the one behind it is asked for; null at the end.
  const WIN32_FIND_DATAW* Next();

 private:
  std::wstring folder_;
  WIN32_FIND_DATAW entry_;
  ::HANDLE search_ = NoSystemHandle;
  bool waiting_ = false;  ///< `entry_` was not handed out yet.
};

}  // namespace platform
