#include <cmath>
#include <iostream>
#include <limits>
#include <time.h>
#include <tuple>
#include <unistd.h>

#include <gtest/gtest.h>

#include "cookies/CookieFileReader.h"
#include "platform/Regional.h"

using namespace platform;

namespace {

const std::string KeyMask = "00000000000000000000.0000000000";

std::string Text(const SYSTEMTIME& date) { return Format(date, "YYYY-MM-DD HH:MM:SS"); }

/// Ends the process well when the region makes these texts of one date and one number and reads
/// them again.
void ExpectRegionalTexts(const char* region, const std::string& expected) {
  setenv("LC_ALL", region, 1);
  const SYSTEMTIME halfPastNoon{2004, 5, 1, 12, 30, 45};
  const std::string date = GeneralDate(halfPastNoon);
  const std::string grouped = Format(1234567, "#,###");
  SYSTEMTIME read;
  const bool own = CDbl(grouped) == 1234567 && IsNumeric(grouped) && CDate(date, read) &&
                   Text(read) == Text(halfPastNoon);
  const std::string texts = date + '|' + grouped + '|' + Format(0.5, "0.00");
  std::cerr << texts << (own ? "" : ", not read again");
  std::exit(own && texts == expected ? 0 : 1);
}

}  // namespace

TEST(Regional, NumbersAndDatesFollowTheMask) {
  const std::tuple<double, std::string, std::string> cases[] = {
      {9007199254740993.0, "#,###", "9,007,199,254,740,992"},
      {-1234, "#,###", "-1,234"},
      {std::nan(""), "#,###", ""},
      {-0.0001, "0.00", "0.00"},
      {1234.5, KeyMask, "00000000000000001234.5000000000"},
      {0.00000000004, KeyMask, "00000000000000000000.0000000000"},
      {1e25, KeyMask, "10000000000000000905969664.0000000000"},
  };
  for (const auto& [number, mask, text] : cases) EXPECT_EQ(Format(number, mask), text) << number;
  EXPECT_EQ(Format(std::numeric_limits<double>::max(), KeyMask).size(), 309u + 11u);
  const std::pair<std::string, std::string> masks[] = {
      {"YYYY-MM-DD HH:MM:SS", "2004-03-07 09:05:02"},
      {"YYYYMMDDHhNnSs", "20040307090502"},
      {"HH:MM MM, 100% D", "09:05 03, 100% D"}};
  for (const auto& [mask, text] : masks) {
    EXPECT_EQ(Format(SYSTEMTIME{2004, 3, 7, 9, 5, 2}, mask), text) << mask;
  }
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
  const std::pair<std::string, std::string> cases[] = {{" 2004-2-29 1:02 ", "2004-02-29 01:02:00"},
                                                       {"5/1/04 13:00", "2004-05-01 13:00:00"},
                                                       {"5/1/30", "1930-05-01 00:00:00"},
                                                       {"", "none"},
                                                       {"word", "none"},
                                                       {"2003-02-29", "none"},
                                                       {"2004-12-20 24:00:00", "none"},
                                                       {"2004-12-20x", "none"},
                                                       {"04-12-20 1", "none"},
                                                       {"13/40/2004", "none"}};
  for (const auto& [text, expected] : cases) {
    SYSTEMTIME date;
    EXPECT_EQ(CDate(text, date) ? Text(date) : "none", expected) << text;
  }
}

TEST(Regional, AnExpiryIsADateOfItsZoneOrNone) {
  const std::pair<std::string, std::string> cases[] = {
      {" \t+30000000x", "2009-04-22"}, {"never", "1601-01-01"}, {"-0.51", "-"},
      {"617110110", "9999-12-31"},     {"617110111", "-"},      {"4294967295", "-"}};
  for (const auto& [text, date] : cases) EXPECT_EQ(ExpireDateText(text), date) << text;
  setenv("TZ", "America/New_York", 1);
  tzset();
  // The offset is looked up once a second.
  const time_t now = time(nullptr);
  while (time(nullptr) == now) usleep(10'000);
  EXPECT_EQ(ExpireDateText("30000000"), "2009-04-22");
  EXPECT_EQ(ExpireDateText("0"), "-");
}

TEST(RegionalDeathTest, TextsOfOtherRegions) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::pair<const char*, std::string> cases[] = {
      {"de_DE.UTF-8", "01.05.2004 12:30:45|1.234.567|0,50"},
      {"fr_FR.UTF-8", "01/05/2004 12:30:45|1\u202F234\u202F567|0,50"},
      {"sv_SE.UTF-8", "2004-05-01 12:30:45|1\u00A0234\u00A0567|0,50"}};
  for (const auto& [region, expected] : cases) {
    EXPECT_EXIT(ExpectRegionalTexts(region, expected), testing::ExitedWithCode(0), "") << region;
  }
}

TEST(Regional, EqualTextsAreFoundInEachOtherInAnyCase) {
  const struct {
    std::string One;
    std::string Other;
    bool Equal;
  } cases[] = {{"Cookie[1].TXT", "cookie[1].txt", true},
               {"ΣΊΣΥΦΟΣ", "σίσυφος", true},
               {"\u212A", "k", true},
               {"𐐀", "𐐨", true},
               {"@[`{", "`{@[", false},
               {"a\xFF", "a\xFE", false},
               {"\xC3\x84", "\xC3\xA4\x80", false},
               {std::string("a\0B", 3), std::string("A\0b", 3), true},
               {std::string("a\0b", 3), "a", false}};
  for (const auto& one : cases) {
    EXPECT_EQ(FoldCase(one.One) == FoldCase(one.Other), one.Equal) << one.One;
    EXPECT_TRUE(!one.Equal || TextSearch(one.One).OccursIn("<" + one.Other + ">")) << one.One;
    EXPECT_TRUE(!one.Equal || TextSearch(one.Other).OccursIn("<" + one.One + ">")) << one.One;
  }
  EXPECT_FALSE(TextSearch("shopx").OccursIn("www.shop.example"));
}
