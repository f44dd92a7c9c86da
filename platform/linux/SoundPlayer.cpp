#include "platform/linux/SoundPlayer.h"

#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/SoundServer.h"

namespace platform {

namespace {

enum class Wish { Play, Stop };
/// By the files' paths.
using Wishes = std::map<std::string, Wish, std::less<>>;

class SoundThread {
 public:
  SoundThread() {
    try {
      std::thread(&SoundThread::Run, this).detach();
    } catch (const std::system_error&) {
      // There is no room for a thread: silence.
    }
  }

  void Note(std::string_view path, Wish wish) {
    {
      const std::lock_guard lock(mutex_);
      const auto known = wishes_.find(path);
      if (known == wishes_.end()) {
        wishes_.emplace(path, wish);
      } else {
        known->second = wish;
      }
      if (std::exchange(awake_, true)) return;
    }
    server_.Wake();
  }

 private:
  void Run() {
    while (server_.Serve()) {
      for (const auto& [path, wish] : TakeWishes()) {
        wish == Wish::Play ? server_.Play(path) : server_.Stop(path);
      }
    }
  }

  Wishes TakeWishes() {
    const std::lock_guard lock(mutex_);
    awake_ = false;
    return std::exchange(wishes_, {});
  }

  std::mutex mutex_;
  Wishes wishes_;       ///< The latest for each file; older ones are folded in.
  bool awake_ = false;  ///< The wait has been ended for what is in `wishes_`.
  SoundServer server_;
};

/// Never freed: its thread goes with the process.
SoundThread& Thread() {
  static auto* const thread = new SoundThread;
  return *thread;
}

}  // namespace

void StartSound(std::string_view path) { Thread().Note(path, Wish::Play); }
void StopSound(std::string_view path) { Thread().Note(path, Wish::Stop); }

}  // namespace platform
