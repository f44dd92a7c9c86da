#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTimer>

#include "platform/Forms.h"
#include "platform/common/TickQueue.h"

namespace platform {

namespace {

using Time = TickQueue::Time;
using std::chrono_literals::operator""ms;

/// All timers of the program over one of the toolkit's.
class Timers : public QObject {
 public:
  Timers() {
    since_.start();
    alarm_.setSingleShot(true);
    alarm_.setTimerType(Qt::PreciseTimer);
    connect(&alarm_, &QTimer::timeout, this, &Timers::Tick);
  }

  void Start(TickQueue::Clock& clock) {
    queue_.Start(clock, Now());
    Await(queue_.Next());
  }

 private:
  Time Now() const { return Time(since_.elapsed()); }

  /// A storm of ticks leaves room for other events. A tick may hand out events itself: the alarm
  /// for the next moment is set by then.
  void Tick() {
    const QDeadlineTimer roomForOthers(8ms);
    while (TickQueue::Clock* const clock = queue_.TakeDue(Now())) {
      Await(queue_.NextAfter(Now()));
      clock->Tick();
      if (roomForOthers.hasExpired()) break;
    }
    Await(queue_.Next());
  }

  void Await(std::optional<Time> next) {
    if (!next || (alarm_.isActive() && awaited_ == next)) return;
    awaited_ = next;
    alarm_.start(std::max(*next - Now(), 0ms) + 1ms);  // of which a part has passed
  }

  TickQueue queue_;
  QTimer alarm_;
  QElapsedTimer since_;
  std::optional<Time> awaited_;
};

Timers& AllTimers() {
  static auto& timers = *new Timers;  // a popup's may end in an exit handler
  return timers;
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
