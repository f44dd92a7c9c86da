#include "platform/linux/FolderChanges.h"

#include <cstdint>
#include <sys/inotify.h>
#include <utility>

#include "platform/linux/InotifyEvents.h"

namespace platform {

FolderChanges::FolderChanges(std::string folder)
    : folder_(std::move(folder)),
      identity_(IdentityOf(folder_)),
      events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  constexpr std::uint32_t Changes = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB | IN_CREATE | IN_DELETE |
                                    IN_MOVED_FROM | IN_MOVED_TO | IN_ONLYDIR;
  if (events_ && inotify_add_watch(events_.Number(), folder_.c_str(), Changes) < 0) events_.Close();
}

bool FolderChanges::AddTo(std::unordered_set<std::string>& names) const {
  if (!events_ || !identity_ || IdentityOf(folder_) != identity_) return false;
  bool known = true;
  ReadInotifyEvents(events_.Number(), [&](const inotify_event& event) {
    if (event.len == 0) {
      known = false;  // an overflow, or something that happened to the folder itself
    } else {
      names.emplace(static_cast<const char*>(event.name));
    }
    return known;
  });
  return known;
}

}  // namespace platform
