#include <functional>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/common/TickQueue.h"

using platform::TickQueue;
using Time = TickQueue::Time;

TEST(TickQueue, EachTimerTicksAtItsTimeAndNeverWithinItsOwnTick) {
  TickQueue queue;
  std::string ticks;
  const auto tick = [&](int now) {
    TickQueue::Clock* const due = queue.TakeDue(Time(now));
    if (due != nullptr) due->Tick();
    return due != nullptr;
  };
  std::unique_ptr<TickQueue::Clock> ending;
  const std::function<void()> end = [&] { ticks += 'e', ending.reset(); };
  const std::function<void()> slow = [&] {
    ticks += 's';
    while (tick(1100)) ticks += '.';
  };
  const std::function<void()> quick = [&] { ticks += 'q'; };
  TickQueue::Clock slowClock(Time(500), slow);
  TickQueue::Clock quickClock(Time(500), quick);
  TickQueue::Clock stopped(Time(100), quick);
  ending = std::make_unique<TickQueue::Clock>(Time(1000), end);
  queue.Start(slowClock, Time(0));
  queue.Start(quickClock, Time(7));
  queue.Start(stopped, Time(0));
  queue.Start(*ending, Time(0));
  stopped.Stop();
  EXPECT_FALSE(stopped.IsStarted());
  EXPECT_FALSE(tick(450));
  EXPECT_EQ(queue.Next(), Time(500)) << "for both at once";
  EXPECT_TRUE(tick(500));
  EXPECT_EQ(ticks, "sq.e..") << "its own next tick is left out";
  EXPECT_EQ(ending, nullptr);
  EXPECT_FALSE(tick(1499));
  EXPECT_TRUE(tick(9000));
  EXPECT_EQ(queue.Next(), Time(1600)) << "one that was late begins anew";
}
