#include "platform/windows/SystemWindows.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/windows/EventLoop.h"
#include "platform/windows/Widget.h"

namespace platform {

namespace {

struct Clock {
  const std::function<void()>* Tick;
  ULONGLONG Interval;
  ULONGLONG Due = 0;  ///< 0 while it stands still.
  bool Ticking = false;
};

/// All timers of the program over one of the system's: those count among a process's objects, of
/// which it has ten thousand, and every popup has a timer.
class Timers {
 public:
  void Start(Clock& clock) {
    Stop(clock);
    clock.Due = GetTickCount64() + clock.Interval;
    waiting_.emplace(clock.Due, &clock);
    Arm();
  }

  void Stop(Clock& clock) {
    waiting_.erase({clock.Due, &clock});
    clock.Due = 0;
  }

  /// Each that is due ticks once, however late. The timer is armed again before every tick, which
  /// may hand out events itself.
  void Tick() {
    const ULONGLONG now = GetTickCount64();
    while (!waiting_.empty() && waiting_.begin()->first <= now) {
      Clock& clock = *waiting_.begin()->second;
      waiting_.erase(waiting_.begin());
      clock.Due = std::max(clock.Due + clock.Interval, now + 1);
      waiting_.emplace(clock.Due, &clock);
      Arm();
      TickOnce(clock);
    }
    Arm();
  }

 private:
  static constexpr UINT_PTR Number = 1;

  static void TickOnce(Clock& clock) {
    if (clock.Ticking || !*clock.Tick) return;
    const TickRuns runs;
    clock.Ticking = true;
    (*clock.Tick)();
    clock.Ticking = false;
  }

  /// The system's timer goes off when the first of them is due.
  void Arm() {
    if (waiting_.empty()) {
      KillTimer(Window(), Number);
      return;
    }
    const ULONGLONG now = GetTickCount64();
    const ULONGLONG due = waiting_.begin()->first;
    const ULONGLONG wait = due > now ? due - now : 0;
    SetTimer(Window(), Number, static_cast<UINT>(std::max<ULONGLONG>(wait, USER_TIMER_MINIMUM)),
             nullptr);
  }

  static HWND Window();

  std::set<std::pair<ULONGLONG, Clock*>> waiting_;
};

Timers& All() {
  static auto& timers = *new Timers;
  return timers;
}

LRESULT CALLBACK TimerProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message != WM_TIMER) return DefWindowProcW(window, message, w, l);
  All().Tick();
  return 0;
}

HWND Timers::Window() {
  static const HWND window = NewMessageWindow(L"QuillmereTimers", TimerProcedure);
  return window;
}

}  // namespace

struct Timer::Native : Clock {};

Timer::Timer(int intervalMilliseconds, bool enabled)
    : native_(new Native{{&Tick, static_cast<ULONGLONG>(intervalMilliseconds)}}) {
  if (enabled) All().Start(*native_);
}

Timer::~Timer() { All().Stop(*native_); }

bool Timer::Enabled() const { return native_->Due != 0; }
void Timer::Enabled(bool enabled) {
  if (enabled) {
    All().Start(*native_);
  } else {
    All().Stop(*native_);
  }
}

}  // namespace platform
