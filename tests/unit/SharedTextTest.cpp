#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/SharedText.h"

// Beside plain strings: every way to make, hand on and drop a text, short and long ones mixed. What
// is freed too early or never, the sanitizers tell.
TEST(SharedText, IsWhatAStringWouldBe) {
  std::mt19937 random(1);
  const auto below = [&](std::size_t limit) { return random() % limit; };
  std::vector<platform::SharedText> shared(300);
  std::vector<std::string> plain(shared.size());
  for (int step = 0; step < 50'000; ++step) {
    const std::size_t one = below(plain.size());
    const std::size_t other = below(plain.size());
    if (below(3) == 0) {
      shared[one] = shared[other];
      plain[one] = plain[other];
    } else if (below(2) == 0) {
      std::swap(shared[one], shared[other]);
      std::swap(plain[one], plain[other]);
    } else {
      plain[one] = std::string(below(below(9) == 0 ? 6000 : 40), static_cast<char>(step));
      shared[one] = plain[one];
    }
    ASSERT_EQ(shared[other], plain[other]);
  }
  const std::vector copies = shared;
  shared.clear();
  for (std::size_t i = 0; i < plain.size(); ++i) EXPECT_EQ(copies[i], plain[i]);
}
