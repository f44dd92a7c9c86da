#include "platform/linux/SoundServer.h"

#include <algorithm>
#include <dlfcn.h>
#include <memory>

namespace platform {

namespace {

// The toolkit tries to reach the server once in a process: it waits half a minute for one that does
// not answer, and after a failure stays silent for good. So the server is asked here first, through
// the client library that the toolkit has loaded. These are the library's own declarations.
struct pa_mainloop;
struct pa_mainloop_api;
struct pa_context;

constexpr int ContextReady = 4;  // greater: failed, or terminated

class PulseClient {
 public:
  PulseClient() : library_(dlopen("libpulse.so.0", RTLD_NOW | RTLD_NOLOAD)) {
    if (!library_) return;
    Find(mainloopNew, "pa_mainloop_new");
    Find(mainloopFree, "pa_mainloop_free");
    Find(mainloopApi, "pa_mainloop_get_api");
    Find(mainloopPrepare, "pa_mainloop_prepare");
    Find(mainloopPoll, "pa_mainloop_poll");
    Find(mainloopDispatch, "pa_mainloop_dispatch");
    Find(contextNew, "pa_context_new");
    Find(contextFree, "pa_context_unref");
    Find(contextConnect, "pa_context_connect");
    Find(contextDisconnect, "pa_context_disconnect");
    Find(contextState, "pa_context_get_state");
  }
  PulseClient(const PulseClient&) = delete;
  PulseClient& operator=(const PulseClient&) = delete;
  ~PulseClient() {
    if (library_) dlclose(library_);
  }

  bool Loaded() const { return library_ && complete_; }

  pa_mainloop* (*mainloopNew)() = nullptr;
  void (*mainloopFree)(pa_mainloop*) = nullptr;
  pa_mainloop_api* (*mainloopApi)(pa_mainloop*) = nullptr;
  int (*mainloopPrepare)(pa_mainloop*, int microseconds) = nullptr;
  int (*mainloopPoll)(pa_mainloop*) = nullptr;
  int (*mainloopDispatch)(pa_mainloop*) = nullptr;
  pa_context* (*contextNew)(pa_mainloop_api*, const char* name) = nullptr;
  void (*contextFree)(pa_context*) = nullptr;
  int (*contextConnect)(pa_context*, const char* server, int flags, const void* spawn) = nullptr;
  void (*contextDisconnect)(pa_context*) = nullptr;
  int (*contextState)(const pa_context*) = nullptr;

 private:
  template <class Function>
  void Find(Function*& function, const char* name) {
    function = reinterpret_cast<Function*>(dlsym(library_, name));
    complete_ = complete_ && function;
  }

  void* library_;
  bool complete_ = true;
};

}  // namespace

bool SoundServerAnswers(std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  const PulseClient pulse;
  if (!pulse.Loaded()) return true;  // this toolkit plays by other means

  const std::unique_ptr<pa_mainloop, void (*)(pa_mainloop*)> loop(pulse.mainloopNew(),
                                                                  pulse.mainloopFree);
  if (!loop) return false;
  const std::unique_ptr<pa_context, void (*)(pa_context*)> context(
      pulse.contextNew(pulse.mainloopApi(loop.get()), "Quillmere"), pulse.contextFree);
  if (!context || pulse.contextConnect(context.get(), nullptr, 0, nullptr) < 0) return false;

  const auto end = Clock::now() + limit;
  int state = pulse.contextState(context.get());
  while (state < ContextReady && Clock::now() < end) {
    const auto left = std::chrono::duration_cast<std::chrono::microseconds>(end - Clock::now());
    const int wait = static_cast<int>(std::max<std::int64_t>(0, left.count()));
    if (pulse.mainloopPrepare(loop.get(), wait) < 0 || pulse.mainloopPoll(loop.get()) < 0 ||
        pulse.mainloopDispatch(loop.get()) < 0) {
      break;
    }
    state = pulse.contextState(context.get());
  }
  pulse.contextDisconnect(context.get());
  return state == ContextReady;
}

}  // namespace platform
