#include <cerrno>
#include <chrono>
#include <dirent.h>
#include <fstream>
#include <functional>
#include <future>
#include <memory>
#include <set>
#include <sstream>
#include <sys/sysmacros.h>
#include <system_error>
#include <thread>

#include "platform/Shell.h"
#include "platform/linux/Paths.h"
#include "platform/linux/SafeFolder.h"
#include "platform/linux/Trash.h"
#include "platform/linux/UserFolders.h"

namespace platform {
namespace {

constexpr int FolderFlags = O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

Descriptor OpenFolder(int at, const std::string& name) {
  return Descriptor(openat(at, name.c_str(), O_RDONLY | FolderFlags));
}

/// Opens a folder in the trash to read and empty it, whatever its mode bits say, if it is of the
/// same file system and not a mount point, not even one of a part of the same file system.
Descriptor OpenToEmpty(int at, const std::string& name) {
  const Descriptor found(openat(at, name.c_str(), O_PATH | FolderFlags));
  struct statx info;
  struct stat parent;
  if (!found || fstat(at, &parent) != 0 ||
      statx(found.Number(), "", AT_EMPTY_PATH | AT_NO_AUTOMOUNT, STATX_BASIC_STATS, &info) != 0 ||
      (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0 ||
      makedev(info.stx_dev_major, info.stx_dev_minor) != parent.st_dev) {
    return {};
  }
  if ((info.stx_mode & S_IRWXU) != S_IRWXU && info.stx_uid == geteuid()) {
    // The descriptor's own name: nothing can be put into its place meanwhile.
    const std::string self = "/proc/self/fd/" + std::to_string(found.Number());
    chmod(self.c_str(), (info.stx_mode & 07777) | S_IRWXU);
  }
  return OpenFolder(found.Number(), ".");
}

std::vector<std::string> NamesIn(int folder) {
  std::vector<std::string> names;
  const int list = openat(folder, ".", O_RDONLY | FolderFlags);
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(list < 0 ? nullptr : fdopendir(list), closedir);
  while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") names.emplace_back(name);
  }
  return names;
}

/// Removes what lies in a folder of the trash, but for the entries that are to be kept.
class Emptier {
 public:
  using Keeps = std::function<bool(const std::string& name)>;

  Emptier(int top, Keeps keeps) : top_(top), keeps_(std::move(keeps)) {}

  void Empty() {
    do {
      broughtUp_ = 0;
      EmptyFolder(top_, 0);
    } while (broughtUp_ > 0);
  }

 private:
  void EmptyFolder(int folder, int depth) {
    for (const std::string& name : NamesIn(folder)) {
      if (depth == 0 && keeps_ && keeps_(name)) continue;
      if (unlinkat(folder, name.c_str(), 0) != 0) RemoveFolder(folder, name, depth);
    }
  }

  void RemoveFolder(int parent, const std::string& name, int depth) {
    {
      const Descriptor folder = OpenToEmpty(parent, name);
      if (!folder) return;
      // However deep a tree is, descriptors and stack do not run out: what lies deeper comes up.
      if (depth == DeepestLevel) return BringUp(parent, name);
      EmptyFolder(folder.Number(), depth + 1);
    }
    unlinkat(parent, name.c_str(), AT_REMOVEDIR);
  }

  void BringUp(int parent, const std::string& name) {
    const std::string newName =
        ".emptying-" + std::to_string(getpid()) + '-' + std::to_string(++newNames_);
    if (renameat2(parent, name.c_str(), top_, newName.c_str(), RENAME_NOREPLACE) == 0) {
      ++broughtUp_;
    }
  }

  static constexpr int DeepestLevel = 100;

  int top_;
  Keeps keeps_;
  int broughtUp_ = 0;
  int newNames_ = 0;
};

bool IsMissing(int folder, const std::string& name) {
  struct stat info;
  return fstatat(folder, name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
}

/// Empties one of the folders of a trash. False when anything stayed.
bool EmptyPart(int trash, const std::string& part, const Emptier::Keeps& keeps = {}) {
  const Descriptor folder = OpenToEmpty(trash, part);
  if (!folder) return IsMissing(trash, part);
  Emptier(folder.Number(), keeps).Empty();
  return NamesIn(folder.Number()).empty();
}

/// Empties the files and their records. False when any file stayed.
bool EmptyFiles(int trash) {
  const Descriptor info = OpenToEmpty(trash, "info");
  const std::vector<std::string> names = NamesIn(info.Number());
  const std::set<std::string> known(names.begin(), names.end());
  const bool all = EmptyPart(trash, "files");
  // What stayed can be restored with the record of where it came from, as can what another program
  // has thrown away since: it writes the record first.
  EmptyPart(trash, "info", [&](const std::string& name) {
    const std::string_view ending = ".trashinfo";
    if (!name.ends_with(ending)) return false;
    const std::string file = "files/" + name.substr(0, name.size() - ending.size());
    return !known.contains(name) || !IsMissing(trash, file);
  });
  return all;
}

bool IsOwn(const Descriptor& folder) {
  struct stat info;
  return folder && fstat(folder.Number(), &info) == 0 && info.st_uid == geteuid();
}

bool EmptyOneTrash(const Descriptor& trash) {
  if (!IsOwn(trash) || HoldsHome(trash.Number())) return false;
  const bool files = EmptyFiles(trash.Number());
  // Where file managers put what they are deleting themselves.
  const bool expunged = EmptyPart(trash.Number(), "expunged");
  // Sizes of the folders in the trash; made anew by whoever needs them.
  unlinkat(trash.Number(), "directorysizes", 0);
  return files && expunged;
}

bool IsSticky(const Descriptor& folder) {
  struct stat info;
  return folder && fstat(folder.Number(), &info) == 0 && (info.st_mode & S_ISVTX) != 0;
}

/// The user's own trash folders on a volume.
std::vector<Descriptor> TrashOnVolume(const std::string& volume) {
  const std::string user = std::to_string(geteuid());
  std::vector<Descriptor> found;
  const Descriptor top(open(volume.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!top) return found;
  found.push_back(OpenFolder(top.Number(), ".Trash-" + user));
  const Descriptor shared = OpenFolder(top.Number(), ".Trash");
  if (IsSticky(shared)) found.push_back(OpenFolder(shared.Number(), user));
  std::erase_if(found, [](const Descriptor& folder) { return !IsOwn(folder); });
  return found;
}

/// The same of all volumes that answer: a look at a network volume whose server is gone can last
/// for ever.
std::vector<Descriptor> TrashOnAnsweringVolumes(const std::vector<std::string>& volumes) {
  constexpr std::chrono::seconds Patience(2);
  std::vector<std::future<std::vector<Descriptor>>> answers;
  for (const std::string& volume : volumes) {
    std::packaged_task<std::vector<Descriptor>()> look([volume] { return TrashOnVolume(volume); });
    std::future<std::vector<Descriptor>> answer = look.get_future();
    try {
      std::thread(std::move(look)).detach();
      answers.push_back(std::move(answer));
    } catch (const std::system_error&) {
      // No thread to be had: counts as no answer.
    }
  }
  const auto end = std::chrono::steady_clock::now() + Patience;
  std::vector<Descriptor> found;
  for (auto& answer : answers) {
    if (answer.wait_until(end) != std::future_status::ready) continue;
    for (Descriptor& trash : answer.get()) found.push_back(std::move(trash));
  }
  return found;
}

/// A blank, tab, line end or backslash stands in octal there.
std::string Unescaped(const std::string& text) {
  constexpr std::size_t Digits = 3;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + Digits < text.size()) {
      result += static_cast<char>(std::stoi(text.substr(i + 1, Digits), nullptr, 8));
      i += Digits;
    } else {
      result += text[i];
    }
  }
  return result;
}

/// File systems that hold no user's files. A look into the one of automatic mounts would mount.
bool CanHoldTrash(const std::string& type) {
  static const std::set<std::string> others{"autofs",
                                            "binfmt_misc",
                                            "bpf",
                                            "cgroup",
                                            "cgroup2",
                                            "configfs",
                                            "debugfs",
                                            "devpts",
                                            "devtmpfs",
                                            "efivarfs",
                                            "fuse.gvfsd-fuse",
                                            "fuse.portal",
                                            "fusectl",
                                            "hugetlbfs",
                                            "mqueue",
                                            "nsfs",
                                            "proc",
                                            "pstore",
                                            "rpc_pipefs",
                                            "securityfs",
                                            "selinuxfs",
                                            "squashfs",
                                            "sysfs",
                                            "tracefs"};
  return !others.contains(type);
}

}  // namespace

std::vector<std::string> MountPoints(const std::string& mountInfo) {
  std::vector<std::string> points;
  std::ifstream file(mountInfo);
  for (std::string line; std::getline(file, line);) {
    std::istringstream fields(line);
    std::string number, parent, device, root, point, field, type;
    fields >> number >> parent >> device >> root >> point;
    while (fields >> field && field != "-") {
    }
    fields >> type;
    if (fields && CanHoldTrash(type)) points.push_back(Unescaped(point));
  }
  return points;
}

bool EmptyTrash(const TrashPlaces& places) {
  bool all = true;
  if (!places.Home.empty()) {
    const Descriptor home = OpenFolder(AT_FDCWD, places.Home);
    if (home ? !EmptyOneTrash(home) : errno != ENOENT) all = false;
  }
  for (const Descriptor& trash : TrashOnAnsweringVolumes(places.Volumes)) {
    if (!EmptyOneTrash(trash)) all = false;
  }
  return all;
}

int SHEmptyRecycleBinA(std::uint32_t /*window*/, const std::string& rootPath, std::uint32_t flags) {
  constexpr int Failed = -1;
  if (!rootPath.empty() || flags != (SHERB_NOCONFIRMATION | SHERB_NOPROGRESSUI | SHERB_NOSOUND)) {
    return Failed;
  }
  const std::string data = DataHome();
  const TrashPlaces places{data.empty() ? data : data + "/Trash",
                           MountPoints("/proc/self/mountinfo")};
  return EmptyTrash(places) ? 0 : Failed;
}

}  // namespace platform
