#include <cmath>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "cookies/modSortListView.h"
#include "platform/Regional.h"

namespace {

TEST(SortKeys, NumbersBecomeTextsOfFixedWidth) {
  const std::pair<std::string, std::string> cases[] = {
      {"1,234", "00000000000000001234.0000000000"},
      {"1,048,576", "00000000000001048576.0000000000"},
      {"0.5", "00000000000000000000.5000000000"},
      {"0", "00000000000000000000.0000000000"},
      {"-1", "&99999999999999999998.9999999999"},
      {"-2", "&99999999999999999997.9999999999"},
      {"-1234.5", "&99999999999999998765.4999999999"},
      {"", ""},
      {"word", ""},
      {"12 words", ""},
  };
  for (const auto& [text, key] : cases) EXPECT_EQ(NumberKey(text), key) << text;
}

TEST(SortKeys, OrderOfNumberKeysIsTheOrderOfValues) {
  std::mt19937 random(45);
  std::uniform_real_distribution<double> magnitude(-8, 15);
  const auto number = [&] {
    const double size = std::pow(10.0, magnitude(random));
    const double value = random() % 2 == 0 ? size : std::floor(size);
    return platform::Format(random() % 2 == 0 ? value : -value, "#,##0.00000000");
  };
  for (int i = 0; i < 2000; ++i) {
    const std::string a = number();
    const std::string b = number();
    const double x = platform::CDbl(a);
    const double y = platform::CDbl(b);
    EXPECT_EQ(x != y && NumberKey(a) < NumberKey(b), x < y) << a << " and " << b;
    EXPECT_LT(NumberKey(""), NumberKey(a));
  }
  for (const double size : {1.0, 999.0, 1000.0, 1234567.0, 4294967296.0 * 5}) {
    const std::string text = platform::Format(size, "#,###");
    EXPECT_EQ(platform::CDbl(text), size) << text;
    EXPECT_NE(NumberKey(text), "") << text;
  }
}

TEST(SortKeys, DatesThatCannotBeReadTakeTheDateBefore) {
  platform::SYSTEMTIME last{.wYear = 1899, .wMonth = 12, .wDay = 30};
  const std::pair<std::string, std::string> cases[] = {
      {"no date", "18991230000000"}, {"2004-03-05 14:07:09", "20040305140709"},
      {"", "20040305140709"},        {"2009-04-22", "20090422000000"},
      {"-", "20090422000000"},
  };
  for (const auto& [text, key] : cases) EXPECT_EQ(DateKey(text, last), key) << text;
}

TEST(InvertNumberText, ChangesDigitsAndTheMinusAlone) {
  EXPECT_EQ(InvertNumberText("-0123456789.,+ a-é"), " 9876543210.,+ a é");
  EXPECT_EQ(InvertNumberText(""), "");
}

}  // namespace
