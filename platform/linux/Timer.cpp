#include <memory>

#include <QTimer>

#include "platform/Forms.h"

namespace platform {

struct Timer::Native {
  QTimer Clock;
};

Timer::Timer(int intervalMilliseconds, bool enabled) : native_(std::make_unique<Native>()) {
  native_->Clock.setInterval(intervalMilliseconds);
  QObject::connect(&native_->Clock, &QTimer::timeout, [this] {
    if (Tick) Tick();
  });
  if (enabled) native_->Clock.start();
}

Timer::~Timer() = default;

bool Timer::Enabled() const { return native_->Clock.isActive(); }
void Timer::Enabled(bool enabled) {
  if (enabled) {
    native_->Clock.start();
  } else {
    native_->Clock.stop();
  }
}

}  // namespace platform
