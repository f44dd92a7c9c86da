#include "platform/linux/InotifyWatch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <functional>
#include <linux/magic.h>
#include <optional>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/InotifyEvents.h"

namespace platform {
namespace {

constexpr std::uint32_t NameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t WriteEvents = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr std::uint32_t SelfEvents = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t LossEvents = SelfEvents | IN_IGNORED | IN_UNMOUNT;
constexpr std::uint32_t Changes = NameEvents | IN_MODIFY;  ///< The others have to be looked at.

/// File systems with a further way in: another machine, the daemon behind them, the folders below.
/// Their changes by that way raise no event. Those that the system's headers do not name stand with
/// their numbers.
constexpr std::array<std::uint32_t, 19> FilledFromElsewhere{
    NFS_SUPER_MAGIC,   SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC,      SMB2_SUPER_MAGIC,
    AFS_SUPER_MAGIC,   AFS_FS_MAGIC,     CODA_SUPER_MAGIC,      CEPH_SUPER_MAGIC,
    V9FS_MAGIC,        FUSE_SUPER_MAGIC, OVERLAYFS_SUPER_MAGIC, ECRYPTFS_SUPER_MAGIC,
    OCFS2_SUPER_MAGIC,
    0x01161970,   // GFS2
    0x0BD00BD0,   // Lustre
    0x61756673,   // AUFS
    0x786F4256,   // VirtualBox's shared folders
    0xBACBACBC,   // VMware's
    0x7C7C6673};  // Parallels'

std::uint64_t Nanoseconds(std::int64_t seconds, std::uint32_t nanoseconds) {
  return static_cast<std::uint64_t>(seconds) * 1000000000U + nanoseconds;
}

/// Nothing where there is no file of that name.
std::optional<FileStamp> StampOfFile(int folder, const char* name) {
  struct statx info;
  constexpr unsigned Asked = STATX_TYPE | STATX_MTIME | STATX_SIZE;
  const bool file =
      statx(folder, name, AT_SYMLINK_NOFOLLOW, Asked, &info) == 0 && !S_ISDIR(info.stx_mode);
  if (!file) return std::nullopt;
  return StampOf(Nanoseconds(info.stx_mtime.tv_sec, info.stx_mtime.tv_nsec), info.stx_size);
}

std::size_t HashOf(std::string_view name) { return std::hash<std::string_view>{}(name); }

std::optional<FolderState> StateOf(const std::string& folder) {
  struct stat info;
  if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return std::nullopt;
  return FolderState{
      info.st_dev, info.st_ino,
      Nanoseconds(info.st_mtim.tv_sec, static_cast<std::uint32_t>(info.st_mtim.tv_nsec))};
}

class Reading final : public FolderReading {
 public:
  explicit Reading(const std::string& folder) : state_(StateOf(folder)), reader_(folder) {}

  std::optional<FolderState> Folder() const override { return state_; }

  bool Next(File& file) override {
    DirectoryReader::Entry entry;
    while (reader_.IsOpen() && reader_.Next(entry)) {
      if (entry.Type == DT_DIR) continue;
      const std::optional<FileStamp> stamp = StampOfFile(reader_.Folder(), entry.SystemName());
      if (!stamp) continue;
      file = {HashOf(entry.Name), *stamp};
      return true;
    }
    return false;
  }

 private:
  std::optional<FolderState> state_;
  DirectoryReader reader_;
};

}  // namespace

InotifyWatch::InotifyWatch(std::string folder) : folder_(std::move(folder)) {
  if (!folder_.ends_with('/')) folder_ += '/';
}

bool InotifyWatch::Ask() {
  // Where the path leads is looked up first: a folder that is exchanged in between then differs
  // from it and is found.
  const std::optional<FolderIdentity> identity = IdentityOf(folder_);
  if (!identity) return false;
  if (!events_) events_ = Descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (!events_) return false;
  watch_ = inotify_add_watch(events_.Number(), folder_.c_str(),
                             NameEvents | WriteEvents | SelfEvents | IN_ONLYDIR);
  if (watch_ < 0) return false;
  identity_ = *identity;
  readable_ = IsReadable();
  return true;
}

void InotifyWatch::GiveUp() {
  inotify_rm_watch(events_.Number(), watch_);
  written_.clear();
}

bool InotifyWatch::TellsAll() const {
  struct statfs info;
  return statfs(folder_.c_str(), &info) == 0 &&
         std::find(FilledFromElsewhere.begin(), FilledFromElsewhere.end(),
                   static_cast<std::uint32_t>(info.f_type)) == FilledFromElsewhere.end();
}

std::unique_ptr<FolderReading> InotifyWatch::Read() const {
  return std::make_unique<Reading>(folder_);
}

void InotifyWatch::TakeEvents() {
  bool lost = false;
  bool overflowed = false;
  ReadInotifyEvents(events_.Number(), [&](const inotify_event& event) {
    overflowed = overflowed || (event.mask & IN_Q_OVERFLOW) != 0;
    if (event.wd != watch_) return true;  // of a watch that was given up
    lost = lost || (event.mask & LossEvents) != 0;
    if (event.len == 0 && (event.mask & IN_ATTRIB) != 0) LookAtRights();
    if (event.len > 0 && (event.mask & IN_ISDIR) == 0) Note(event);
    return !lost;
  });
  LookAtWritten();
  if (overflowed) {
    Signal();
    Learn();
  }
  if (lost) Lose();
}

void InotifyWatch::Note(const inotify_event& event) {
  if ((event.mask & Changes) != 0) Signal();
  const std::string_view name(static_cast<const char*>(event.name));
  if ((event.mask & (IN_DELETE | IN_MOVED_FROM)) != 0) {
    Stamps.Forget(HashOf(name));
  } else {
    written_.emplace(name);
  }
}

/// Whether the folder can be read decides what a look into it finds.
bool InotifyWatch::IsReadable() const {
  return faccessat(AT_FDCWD, folder_.c_str(), R_OK | X_OK, AT_EACCESS) == 0 || errno != EACCES;
}

void InotifyWatch::LookAtRights() {
  if (readable_ != IsReadable()) Signal();
  readable_ = IsReadable();
}

/// One look at each file that was written, created or marked, however many events told of it.
void InotifyWatch::LookAtWritten() {
  if (written_.empty()) return;
  const Descriptor folder(open(folder_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  for (const std::string& name : written_) {
    const std::optional<FileStamp> stamp = StampOfFile(folder.Number(), name.c_str());
    if (!stamp) {
      Stamps.Forget(HashOf(name));
    } else if (Stamps.Update(HashOf(name), *stamp)) {
      Signal();
    }
  }
  written_.clear();
}

}  // namespace platform
