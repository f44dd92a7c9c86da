#include "platform/ChangeNotification.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <fcntl.h>
#include <functional>
#include <glib.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <string_view>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "platform/common/HandleTable.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/InotifyEvents.h"
#include "platform/linux/Paths.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t NameEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
constexpr std::uint32_t WriteEvents = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr std::uint32_t SelfEvents = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::uint32_t LossEvents = SelfEvents | IN_IGNORED | IN_UNMOUNT;

/// Last write times by name. The kernel reports a changed mode and a set write time as one and the
/// same event; only the time itself tells them apart. Names are kept as their hashes: a folder may
/// hold a million.
class WriteTimes {
 public:
  /// Begins to learn the times of a folder anew. A file that is not known yet counts as changed.
  void Begin(const std::string& folder) {
    times_.clear();
    learnt_.clear();
    unread_.emplace(folder);
    if (!unread_->IsOpen()) unread_.reset();
  }

  bool IsComplete() const { return !unread_; }

  /// Learns more for a moment: a million files take seconds.
  void LearnOn() {
    constexpr auto Moment = std::chrono::milliseconds(5);
    const auto end = Clock::now() + Moment;
    DirectoryReader::Entry entry;
    while (unread_ && Clock::now() < end) {
      if (!unread_->Next(entry)) {
        unread_.reset();
      } else if (entry.Type != DT_DIR && !times_.contains(Hash(entry.Name))) {
        Update(unread_->Folder(), entry.Name);
        learnt_.insert(Hash(entry.Name));
      }
    }
  }

  /// All events have been taken in that were recorded before the last learning ended: what is told
  /// of from now on happened after it.
  void CaughtUp() { learnt_.clear(); }

  void Forget(std::string_view name) { times_.erase(Hash(name)); }

  /// Takes in the present time of a file. True when it is not the one known, or when that may have
  /// been learnt after the event that told of the file. `name` ends in a NUL.
  bool Update(int folder, std::string_view name) {
    struct statx info;
    if (statx(folder, name.data(), AT_SYMLINK_NOFOLLOW, STATX_MTIME, &info) != 0) {
      Forget(name);
      return false;
    }
    constexpr std::uint64_t NanosecondsPerSecond = 1'000'000'000;
    const std::uint64_t time =
        static_cast<std::uint64_t>(info.stx_mtime.tv_sec) * NanosecondsPerSecond +
        info.stx_mtime.tv_nsec;
    const auto [known, added] = times_.try_emplace(Hash(name), time);
    return std::exchange(known->second, time) != time || added || learnt_.contains(Hash(name));
  }

 private:
  static std::size_t Hash(std::string_view name) { return std::hash<std::string_view>{}(name); }

  std::unordered_map<std::size_t, std::uint64_t> times_;
  std::optional<DirectoryReader> unread_;   ///< The files not looked at yet.
  std::unordered_set<std::size_t> learnt_;  ///< Since the events were last taken in.
};

class Watch {
 public:
  Watch(std::string folder, std::uint32_t filter) : folder_(std::move(folder)), filter_(filter) {
    if (!folder_.ends_with('/')) folder_ += '/';
    Begin();
  }

  bool IsWatching() const { return static_cast<bool>(events_); }
  int EventSource() const { return events_.Number(); }
  bool IsSignalled() const { return signalled_; }
  void Rearm() { signalled_ = false; }

  /// Takes in what was recorded; a folder that was lost is looked for again. Returns the signal.
  bool TakeIn() {
    if (signalled_) return true;
    if (!IsWatching()) {
      signalled_ = Begin();
    } else {
      ReadEvents();
    }
    return signalled_;
  }

  bool KnowsAllTimes() const { return times_.IsComplete(); }
  /// Returns the signal.
  bool LearnOn() {
    times_.LearnOn();
    ReadEvents();
    times_.CaughtUp();
    return signalled_;
  }

  /// Whether the path leads somewhere else than when it was watched. No event tells of a parent
  /// that was renamed, or of another file system that was mounted over it. Looks once a second: at
  /// rest, a look at every wait would be a sixth of all that the program does.
  bool LooksElsewhere() {
    const auto now = Clock::now();
    if (!IsWatching() || now < nextLook_) return signalled_;
    nextLook_ = now + std::chrono::seconds(1);
    if (IdentityOf(folder_) != identity_) Lose();
    return signalled_;
  }

 private:
  bool Begin() {
    // Where the path leads is looked up first: a folder that is exchanged in between then differs
    // from it and is found.
    const std::optional<FolderIdentity> identity = IdentityOf(folder_);
    if (!identity) return false;
    Descriptor events(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    const bool writes = (filter_ & FILE_NOTIFY_CHANGE_LAST_WRITE) != 0;
    const bool names = (filter_ & FILE_NOTIFY_CHANGE_FILE_NAME) != 0;
    const std::uint32_t mask = NameEvents | SelfEvents | (writes ? WriteEvents : 0u) |
                               static_cast<std::uint32_t>(IN_ONLYDIR);
    if (!events || inotify_add_watch(events.Number(), folder_.c_str(), mask) < 0) return false;
    events_ = std::move(events);
    identity_ = *identity;
    readable_ = IsReadable();
    counting_ = (names ? NameEvents : 0u) | (writes ? static_cast<std::uint32_t>(IN_MODIFY) : 0u);
    if (writes) LearnAnew();
    return true;
  }

  void LearnAnew() {
    times_.Begin(folder_);
    LearnOn();
  }

  void Lose() {
    events_.Close();
    signalled_ = true;
  }

  void ReadEvents() {
    bool lost = false;
    bool overflowed = false;
    ReadInotifyEvents(events_.Number(), [&](const inotify_event& event) {
      lost = lost || (event.mask & LossEvents) != 0;
      overflowed = overflowed || (event.mask & IN_Q_OVERFLOW) != 0;
      if (event.len == 0 && (event.mask & IN_ATTRIB) != 0) LookAtRights();
      if (event.len > 0 && (event.mask & IN_ISDIR) == 0) Note(event);
      return !lost;
    });
    LookAtWritten();
    if (overflowed) {
      signalled_ = true;
      if ((filter_ & FILE_NOTIFY_CHANGE_LAST_WRITE) != 0) LearnAnew();
    }
    if (lost) Lose();
  }

  void Note(const inotify_event& event) {
    if ((event.mask & counting_) != 0) signalled_ = true;
    const std::string_view name(static_cast<const char*>(event.name));
    if ((event.mask & (IN_DELETE | IN_MOVED_FROM)) != 0) {
      times_.Forget(name);
    } else if ((filter_ & FILE_NOTIFY_CHANGE_LAST_WRITE) != 0) {
      written_.try_emplace(std::string(name));
    }
  }

  /// Whether the folder can be read decides what a look into it finds.
  bool IsReadable() const {
    return faccessat(AT_FDCWD, folder_.c_str(), R_OK | X_OK, AT_EACCESS) == 0 || errno != EACCES;
  }
  void LookAtRights() {
    if (readable_ != IsReadable()) signalled_ = true;
    readable_ = IsReadable();
  }

  /// One look at each file that was written, created or marked, however many events told of it.
  void LookAtWritten() {
    if (written_.empty()) return;
    const Descriptor folder(open(folder_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (const auto& [name, none] : written_) {
      if (times_.Update(folder.Number(), name)) signalled_ = true;
    }
    written_.clear();
  }

  std::string folder_;
  std::uint32_t filter_;
  std::uint32_t counting_ = 0;  ///< Events that are a change by themselves.
  Descriptor events_;
  FolderIdentity identity_;
  Clock::time_point nextLook_;
  WriteTimes times_;
  std::unordered_map<std::string, std::monostate> written_;
  bool readable_ = true;
  bool signalled_ = false;
};

HandleTable<Watch>& Watches() {
  static auto* const table = new HandleTable<Watch>;  // a watch is also closed at exit
  return *table;
}

/// What ended a wait.
struct Woken {
  bool ByWatch = false;
  bool ByWindow = false;
};

/// Everything that the event loop of the windows waits for, asked without handing anything out.
class WindowEvents {
 public:
  WindowEvents()
      : context_(g_main_context_default()), owned_(g_main_context_acquire(context_) != FALSE) {}
  WindowEvents(const WindowEvents&) = delete;
  WindowEvents& operator=(const WindowEvents&) = delete;
  ~WindowEvents() {
    if (owned_) g_main_context_release(context_);
  }

  /// Waits for them and for the watch's descriptor, up to `milliseconds`.
  Woken Wait(int descriptor, int milliseconds) {
    gint priority = G_MAXINT;
    if (owned_ && g_main_context_prepare(context_, &priority)) return {.ByWindow = true};
    static std::vector<GPollFD> polled(8);
    gint timeout = -1;
    gint count = 0;
    while (owned_ && (count = g_main_context_query(context_, G_MAXINT, &timeout, polled.data(),
                                                   static_cast<gint>(polled.size() - 1))) >=
                         static_cast<gint>(polled.size())) {
      polled.resize(static_cast<std::size_t>(count) + 1);
    }
    // poll() passes over a negative descriptor.
    GPollFD& own = polled[static_cast<std::size_t>(count)];
    own = {.fd = descriptor, .events = G_IO_IN, .revents = 0};
    if (timeout < 0 || timeout > milliseconds) timeout = milliseconds;
    g_poll(polled.data(), static_cast<guint>(count) + 1, timeout);
    Woken woken{.ByWatch = own.revents != 0};
    woken.ByWindow =
        owned_ && g_main_context_check(context_, G_MAXINT, polled.data(), count) != FALSE;
    return woken;
  }

 private:
  GMainContext* context_;
  bool owned_;
};

}  // namespace

HANDLE FindFirstChangeNotificationA(const std::string& folder, int subtree, std::uint32_t filter) {
  constexpr std::uint32_t Known = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE;
  if (!IsPath(folder) || subtree != 0 || (filter & Known) == 0) return INVALID_HANDLE_VALUE;
  auto watch = std::make_unique<Watch>(folder, filter);
  return watch->IsWatching() ? Watches().Add(std::move(watch)) : INVALID_HANDLE_VALUE;
}

int FindNextChangeNotification(HANDLE handle) {
  Watch* const watch = Watches().Find(handle);
  if (watch == nullptr) return 0;
  watch->Rearm();
  return 1;
}

int FindCloseChangeNotification(HANDLE handle) { return Watches().Remove(handle) ? 1 : 0; }

std::uint32_t WaitForSingleObject(HANDLE handle, std::uint32_t milliseconds) {
  Watch* const watch = Watches().Find(handle);
  if (watch == nullptr && handle != INVALID_HANDLE_VALUE) return WAIT_FAILED;
  // Where the wait can listen to the watch, it tells at once of what was recorded before.
  const bool listens = watch != nullptr && watch->IsWatching() && !watch->IsSignalled();
  if (watch != nullptr && !listens && watch->TakeIn()) return WAIT_OBJECT_0;
  const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
  WindowEvents window;
  for (;;) {
    const bool learns = listens && !watch->KnowsAllTimes();
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    const int wait = learns ? 0 : static_cast<int>(std::clamp<std::int64_t>(left, 0, INT32_MAX));
    const Woken woken = window.Wait(watch == nullptr ? -1 : watch->EventSource(), wait);
    // Window events that are pending end the wait before it has listened to the watch.
    if ((woken.ByWatch || woken.ByWindow) && watch != nullptr && watch->TakeIn()) {
      return WAIT_OBJECT_0;
    }
    if (woken.ByWindow || Clock::now() >= end) break;
    if (learns && watch->LearnOn()) return WAIT_OBJECT_0;
  }
  return watch != nullptr && watch->LooksElsewhere() ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

}  // namespace platform
