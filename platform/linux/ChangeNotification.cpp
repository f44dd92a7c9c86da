#include "platform/ChangeNotification.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <glib.h>
#include <memory>
#include <utility>
#include <vector>

#include "platform/common/HandleTable.h"
#include "platform/linux/InotifyWatch.h"
#include "platform/linux/Paths.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

HandleTable<InotifyWatch>& Watches() {
  static auto* const table = new HandleTable<InotifyWatch>;  // a watch is also closed at exit
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
  constexpr std::uint32_t Both = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE;
  if (!IsPath(folder) || subtree != 0 || filter != Both) return INVALID_HANDLE_VALUE;
  auto watch = std::make_unique<InotifyWatch>(folder);
  watch->Begin();
  return Watches().Add(std::move(watch));
}

int FindNextChangeNotification(HANDLE handle) {
  InotifyWatch* const watch = Watches().Find(handle);
  if (watch == nullptr) return 0;
  watch->Rearm();
  return 1;
}

int FindCloseChangeNotification(HANDLE handle) { return Watches().Remove(handle) ? 1 : 0; }

std::uint32_t WaitForSingleObject(HANDLE handle, std::uint32_t milliseconds) {
  InotifyWatch* const watch = Watches().Find(handle);
  if (watch == nullptr && handle != INVALID_HANDLE_VALUE) return WAIT_FAILED;
  // Where the wait can listen to the watch, it tells at once of what was recorded before.
  const bool listens = watch != nullptr && watch->IsWatching() && !watch->IsSignalled();
  if (watch != nullptr && !listens && watch->TakeIn()) return WAIT_OBJECT_0;
  const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
  WindowEvents window;
  for (;;) {
    const auto nextLook = watch == nullptr ? end : watch->NextLook();
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(std::min(end, nextLook) - Clock::now());
    const int wait = static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, INT32_MAX));
    const Woken woken = window.Wait(watch == nullptr ? -1 : watch->EventSource(), wait);
    const auto now = Clock::now();
    // Window events that are pending end the wait before it has listened to the watch.
    if ((woken.ByWatch || woken.ByWindow || now >= nextLook) && watch != nullptr &&
        watch->TakeIn()) {
      return WAIT_OBJECT_0;
    }
    if (woken.ByWindow || now >= end) break;
  }
  return watch != nullptr && watch->LooksElsewhere() ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

}  // namespace platform
