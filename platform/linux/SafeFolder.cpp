#include "platform/linux/SafeFolder.h"

#include <cerrno>
#include <pwd.h>

#include "platform/Files.h"
#include "platform/linux/Paths.h"
#include "platform/linux/UserFolders.h"

namespace platform {
namespace {

bool IsSame(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Whether `wanted` is met on the way from a folder up to the root. A folder that isn't there is
/// below nothing.
bool IsOnTheWayUp(const struct stat& wanted, const std::string& from) {
  Descriptor at(open(from.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!at) return errno != ENOENT && errno != ENOTDIR;
  struct stat here;
  if (fstat(at.Number(), &here) != 0) return true;
  while (!IsSame(here, wanted)) {
    const struct stat below = here;
    at = Descriptor(openat(at.Number(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!at || fstat(at.Number(), &here) != 0) return true;
    if (IsSame(here, below)) return false;  // the root is its own parent
  }
  return true;
}

/// The home folder by the user's account, whatever the environment says.
std::string AccountHome() {
  const passwd* const entry = getpwuid(geteuid());
  return entry != nullptr && IsPath(entry->pw_dir) ? entry->pw_dir : std::string();
}

}  // namespace

bool HoldsHome(int folder) {
  struct stat info;
  if (fstat(folder, &info) != 0) return true;
  for (const std::string& home : {std::string("/"), HomeFolder(), AccountHome()}) {
    if (!home.empty() && IsOnTheWayUp(info, home)) return true;
  }
  return false;
}

bool IsSafeToClear(const std::string& folder) {
  if (!IsPath(folder)) return false;
  const Descriptor opened(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  return opened && !HoldsHome(opened.Number());
}

}  // namespace platform
