#include <limits>
#include <tuple>

#include <gtest/gtest.h>

#include "platform/Regional.h"

using namespace platform;

static std::string Text(const SYSTEMTIME& date) { return Format(date, "YYYY-MM-DD HH:MM:SS"); }

TEST(Regional, NumbersAndDatesFollowTheMask) {
  const std::string keyMask = "00000000000000000000.0000000000";
  const std::tuple<double, std::string, std::string> cases[] = {
      {9007199254740993.0, "#,###", "9,007,199,254,740,992"},
      {-1234, "#,###", "-1,234"},
      {1234.5, keyMask, "00000000000000001234.5000000000"},
      {0.00000000004, keyMask, "00000000000000000000.0000000000"},
      {1e25, keyMask, "10000000000000000905969664.0000000000"}};
  for (const auto& [number, mask, text] : cases) EXPECT_EQ(Format(number, mask), text) << number;
  EXPECT_EQ(Format(std::numeric_limits<double>::max(), keyMask).size(), 309u + 11u);
  const SYSTEMTIME date{2004, 3, 7, 9, 5, 2};
  EXPECT_EQ(Text(date), "2004-03-07 09:05:02");
  EXPECT_EQ(Format(date, "YYYYMMDDHhNnSs"), "20040307090502");
}

TEST(Regional, NumericTexts) {
  const std::pair<std::string, double> numbers[] = {
      {"1,048,576", 1048576}, {".5", 0.5}, {"5.", 5}, {"-1,000.25E-2", -10.0025}, {" +12 ", 12}};
  for (const auto& [text, value] : numbers) {
    EXPECT_TRUE(IsNumeric(text)) << text;
    EXPECT_DOUBLE_EQ(CDbl(text), value) << text;
  }
  for (const char* text : {"", " ", "12x", "1 2", "-", ".", "1,", ",1", "1,,2", "1e", "1.2.3",
                           "1.2,3", "--1", "inf", "nan", "0x10", "1e999"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(Regional, DatesAreReadYearFirstOrInTheRegionalOrder) {
  SYSTEMTIME date;
  const std::pair<std::string, std::string> dates[] = {{" 2004-2-29 1:02 ", "2004-02-29 01:02:00"},
                                                       {"5/1/04 13:00", "2004-05-01 13:00:00"},
                                                       {"5/1/30", "1930-05-01 00:00:00"}};
  for (const auto& [text, expected] : dates) {
    EXPECT_TRUE(CDate(text, date) && Text(date) == expected) << text;
  }
  for (const char* text : {"", "word", "2003-02-29", "2004-12-20 24:00:00", "2004-12-20x",
                           "04-12-20 1", "13/40/2004"}) {
    EXPECT_FALSE(CDate(text, date)) << text;
  }
}

TEST(RegionalDeathTest, TextsOfOtherRegionsAreReadToo) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const SYSTEMTIME halfPastNoon{2004, 5, 1, 12, 30, 45};
  SYSTEMTIME read;
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"de_DE.UTF-8", "01.05.2004 12:30:45", "1.234.567"},
      {"fr_FR.UTF-8", "01/05/2004 12:30:45", "1\u202F234\u202F567"},
      {"sv_SE.UTF-8", "2004-05-01 12:30:45", "1\u00A0234\u00A0567"}};
  for (const auto& [region, date, grouped] : cases) {
    EXPECT_EXIT(
        {
          setenv("LC_ALL", region, 1);
          const bool own = GeneralDate(halfPastNoon) == date && CDate(date, read) &&
                           Text(read) == Text(halfPastNoon) && Format(0.5, "0.00") == "0,50" &&
                           Format(1234567, "#,###") == grouped && CDbl(grouped) == 1234567;
          std::exit(own ? 1 : 2);
        },
        testing::ExitedWithCode(1), "")
        << region;
  }
}

TEST(Regional, EqualTextsAreFoundInEachOtherInAnyCase) {
  const std::pair<std::string, std::string> equal[] = {
      {"Cookie[1].TXT", "cookie[1].txt"},
      {"ΣΊΣΥΦΟΣ", "σίσυφος"},
      {"\u212A", "k"},
      {"𐐀", "𐐨"},
      {std::string("a\0B", 3), std::string("A\0b", 3)}};
  for (const auto& [one, other] : equal) {
    EXPECT_EQ(FoldCase(one), FoldCase(other));
    EXPECT_TRUE(TextSearch(one).OccursIn("<" + other + ">")) << one;
    EXPECT_TRUE(TextSearch(other).OccursIn("<" + one + ">")) << one;
  }
  const std::pair<std::string, std::string> different[] = {{"@[`{", "`{@["},
                                                           {"a\xFF", "a\xFE"},
                                                           {"\xC3\x84", "\xC3\xA4\x80"},
                                                           {std::string("a\0b", 3), "a"}};
  for (const auto& [one, other] : different) EXPECT_NE(FoldCase(one), FoldCase(other)) << one;
  EXPECT_FALSE(TextSearch("shopx").OccursIn("www.shop.example"));
}
