#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/Regional.h"

using namespace platform;

TEST(Regional, EqualTextsAreFoundInEachOtherInAnyCase) {
  const std::pair<std::string, std::string> equal[] = {
      {"ÄX", "äx"}, {"ΣΊΣΥΦΟΣ", "σίσυφος"}, {"\u212A", "k"}, {"𐐀", "𐐨"}};
  for (const auto& [one, other] : equal) {
    EXPECT_EQ(FoldCase(one), FoldCase(other));
    EXPECT_TRUE(TextSearch(one).OccursIn("<" + other + ">")) << one;
    EXPECT_TRUE(TextSearch(other).OccursIn("<" + one + ">")) << one;
  }
}
