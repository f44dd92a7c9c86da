#include "platform/ShellFolders.h"

#include <cstdlib>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Registry.h"
#include "platform/linux/Paths.h"
#include "platform/linux/UserFolders.h"

namespace platform {
namespace {

const char* const UserShellFolders =
    R"(Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders)";

std::string WithoutEndSeparators(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

/// A folder out of the environment. One that is empty or relative counts as not set.
std::string FromEnvironment(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && IsPath(value) ? WithoutEndSeparators(value) : std::string();
}

std::string XdgFolder(const char* variable, const char* belowHome) {
  std::string set = FromEnvironment(variable);
  if (!set.empty()) return set;
  const std::string home = HomeFolder();
  return home.empty() ? std::string() : home + belowHome;
}

bool IsFolder(const std::string& path) {
  struct stat info;
  return IsPath(path) && stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::string UserName() {
  const passwd* const entry = getpwuid(geteuid());
  if (entry != nullptr && entry->pw_name[0] != '\0') return entry->pw_name;
  const char* const name = std::getenv("USER");
  return name == nullptr ? std::string() : name;
}

/// What the user has set a shell folder to; empty when it is not set.
std::string SetByUser(const std::string& valueName) {
  HKEY key = 0;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, UserShellFolders, 1, key) != ERROR_SUCCESS) return {};
  std::uint32_t type = 0;
  std::uint32_t size = 0;
  std::string text;
  if (RegQueryValueExA(key, valueName, type, nullptr, size) == ERROR_SUCCESS && type == REG_SZ) {
    text.resize(size);
    if (RegQueryValueExA(key, valueName, type, text.data(), size) != ERROR_SUCCESS) text.clear();
  }
  RegCloseKey(key);
  return text.substr(0, text.find('\0'));
}

std::string CookieFolder() {
  const std::string user = UserName();
  const std::string home = HomeFolder();
  if (!user.empty() && !home.empty()) {
    std::string kept =
        home + "/.wine/drive_c/users/" + user + "/AppData/Local/Microsoft/Windows/INetCookies";
    if (IsFolder(kept)) return kept;
  }
  const std::string data = DataHome();
  if (data.empty()) return {};
  const std::string own = data + "/quillmere/cookies";
  return MakeFolders(own) ? own : std::string();
}

std::string RecentFolder() {
  const std::string data = DataHome();
  const std::string recent = data.empty() ? std::string() : data + "/RecentDocuments";
  return IsFolder(recent) ? recent : std::string();
}

}  // namespace

std::string HomeFolder() {
  std::string set = FromEnvironment("HOME");
  if (!set.empty()) return set;
  const passwd* const entry = getpwuid(geteuid());
  return entry != nullptr && IsPath(entry->pw_dir) ? WithoutEndSeparators(entry->pw_dir)
                                                   : std::string();
}

std::string ConfigHome() { return XdgFolder("XDG_CONFIG_HOME", "/.config"); }

std::string DataHome() { return XdgFolder("XDG_DATA_HOME", "/.local/share"); }

bool MakeFolders(const std::string& path) {
  if (!IsPath(path)) return false;
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    mkdir(path.substr(0, end).c_str(), 0700);
    if (end == std::string::npos) return IsFolder(path);
  }
}

int SHGetSpecialFolderLocation(std::uintptr_t /*window*/, int csidl, ITEMIDLIST& place) {
  constexpr int Unresolved = 1;
  if (csidl != CSIDL_COOKIES && csidl != CSIDL_RECENT) return Unresolved;
  const bool cookies = csidl == CSIDL_COOKIES;
  std::string path = SetByUser(cookies ? "Cookies" : "Recent");
  if (path.empty()) path = cookies ? CookieFolder() : RecentFolder();
  if (!IsPath(path)) return Unresolved;
  place.Path = std::move(path);
  return 0;
}

}  // namespace platform
