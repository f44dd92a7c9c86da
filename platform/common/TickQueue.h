#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>

namespace platform {

/// Which of the program's timers ticks when, over a single timer of the machine's: every popup has
/// one, and there can be a million popups. To start, to stop and to tick takes the same time
/// however many there are.
class TickQueue {
  /// Holds together those that are due at the same moment.
  struct Link {
    Link* Next = this;
    Link* Before = this;
    Link() = default;
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    ~Link() { Leave(); }
    bool IsAlone() const { return Next == this; }
    void Leave();
    void EnterBefore(Link& other);
  };

 public:
  using Time = std::chrono::milliseconds;

  /// One timer, which stands still at first.
  class Clock : Link {
   public:
    Clock(Time interval, const std::function<void()>& tick) : interval_(interval), tick_(tick) {}
    ~Clock();
    bool IsStarted() const { return !IsAlone(); }
    void Stop() { Leave(); }
    /// Left out while the last tick still runs, at whatever depth.
    void Tick();

   private:
    friend TickQueue;

    Time interval_;
    const std::function<void()>& tick_;
    bool* ended_ = nullptr;  ///< While the tick runs; set when the timer ends meanwhile.
  };

  /// The first tick is one interval away, also of one that was started before.
  void Start(Clock& clock, Time now);
  /// When the next tick is due.
  std::optional<Time> Next();
  /// When the first after this moment is.
  std::optional<Time> NextAfter(Time now) const;
  /// One whose tick is due, which it then no more is; none if there is none.
  Clock* TakeDue(Time now);

 private:
  void Enter(Clock& clock, Time due);

  std::map<Time, Link> moments_;
};

}  // namespace platform
