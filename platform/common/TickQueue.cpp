#include "platform/common/TickQueue.h"

#include <algorithm>

namespace platform {

void TickQueue::Link::Leave() {
  Before->Next = Next;
  Next->Before = Before;
  Next = Before = this;
}

void TickQueue::Link::EnterBefore(Link& other) {
  Next = &other;
  Before = other.Before;
  Before->Next = Next->Before = this;
}

TickQueue::Clock::~Clock() {
  if (ended_ != nullptr) *ended_ = true;
}

void TickQueue::Clock::Tick() {
  if (ended_ != nullptr || !tick_) return;
  bool ended = false;
  ended_ = &ended;
  tick_();
  if (!ended) ended_ = nullptr;
}

void TickQueue::Start(Clock& clock, Time now) {
  clock.Leave();
  Enter(clock, now + clock.interval_);
}

/// Those that are due at nearly the same time tick at the same time: the machine wakes up once.
void TickQueue::Enter(Clock& clock, Time due) {
  const Time grain = std::max(clock.interval_ / 20, Time(1));
  clock.EnterBefore(moments_[(due + grain / 2) / grain * grain]);
}

std::optional<TickQueue::Time> TickQueue::Next() {
  while (!moments_.empty() && moments_.begin()->second.IsAlone()) moments_.erase(moments_.begin());
  if (moments_.empty()) return std::nullopt;
  return moments_.begin()->first;
}

std::optional<TickQueue::Time> TickQueue::NextAfter(Time now) const {
  for (auto each = moments_.upper_bound(now); each != moments_.end(); ++each) {
    if (!each->second.IsAlone()) return each->first;
  }
  return std::nullopt;
}

TickQueue::Clock* TickQueue::TakeDue(Time now) {
  const std::optional<Time> due = Next();
  if (!due || *due > now) return nullptr;
  auto& clock = static_cast<Clock&>(*moments_.begin()->second.Next);
  clock.Leave();
  const Time next = *due + clock.interval_;
  Enter(clock, next > now ? next : now + clock.interval_);
  return &clock;
}

}  // namespace platform
