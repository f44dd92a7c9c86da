#include "platform/windows/SystemWindows.h"

#include <algorithm>
#include <optional>

#include "platform/common/TickQueue.h"
#include "platform/windows/EventLoop.h"
#include "platform/windows/Widget.h"

namespace platform {

namespace {

using Time = TickQueue::Time;

/// All timers of the program over one of the system's: those count among a process's objects, of
/// which it has ten thousand.
class Timers {
 public:
  void Start(TickQueue::Clock& clock) {
    queue_.Start(clock, Now());
    Await(queue_.Next());
  }

  /// A storm of ticks leaves room for other events. A tick may hand out events itself: the alarm
  /// for the next moment is set by then.
  void Tick() {
    constexpr Time RoomForOthers(8);
    const Time begun = Now();
    while (TickQueue::Clock* const clock = queue_.TakeDue(Now())) {
      Await(queue_.NextAfter(Now()));
      const Running tick;
      clock->Tick();
      if (Now() - begun > RoomForOthers) break;
    }
    Await(queue_.Next());
  }

 private:
  static constexpr UINT_PTR Number = 1;

  static Time Now() { return Time(GetTickCount64()); }
  static HWND Window();

  static void Await(std::optional<Time> next) {
    if (!next) {
      KillTimer(Window(), Number);
      return;
    }
    const auto wait = std::max((*next - Now()).count(), Time::rep{USER_TIMER_MINIMUM});
    SetTimer(Window(), Number, static_cast<UINT>(wait), nullptr);
  }

  TickQueue queue_;
};

Timers& AllTimers() {
  static auto& timers = *new Timers;
  return timers;
}

LRESULT CALLBACK TimerProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message != WM_TIMER) return DefWindowProcW(window, message, w, l);
  AllTimers().Tick();
  return 0;
}

HWND Timers::Window() {
  static const HWND window = NewMessageWindow(L"QuillmereTimers", TimerProcedure);
  return window;
}

}  // namespace

struct Timer::Native {
  TickQueue::Clock Clock;
};

Timer::Timer(int intervalMilliseconds, bool enabled)
    : native_(new Native{{Time(intervalMilliseconds), Tick}}) {
  if (enabled) AllTimers().Start(native_->Clock);
}

Timer::~Timer() = default;

bool Timer::Enabled() const { return native_->Clock.IsStarted(); }
void Timer::Enabled(bool enabled) {
  if (enabled) {
    AllTimers().Start(native_->Clock);
  } else {
    native_->Clock.Stop();
  }
}

}  // namespace platform
