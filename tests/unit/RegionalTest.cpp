#include <cmath>
#include <iostream>
#include <limits>
#include <tuple>

#include <gtest/gtest.h>

#include "platform/Regional.h"

using namespace platform;

namespace {

const std::string KeyMask = "00000000000000000000.0000000000";
const SYSTEMTIME HalfPastNoon{2004, 5, 1, 12, 30, 45};

std::string Text(const SYSTEMTIME& date) { return Format(date, "YYYY-MM-DD HH:MM:SS"); }

/// What a region makes of one date and one number, and whether it reads its own texts again.
std::string RegionalTexts(const char* region) {
  setenv("LC_ALL", region, 1);
  const std::string grouped = Format(1234567, "#,###");
  SYSTEMTIME read;
  const bool own = CDbl(grouped) == 1234567 && IsNumeric(grouped) &&
                   CDate(GeneralDate(HalfPastNoon), read) && Text(read) == Text(HalfPastNoon);
  return GeneralDate(HalfPastNoon) + '|' + grouped + '|' + Format(0.5, "0.00") +
         (own ? "" : "|not read again");
}

void ExpectRegionalTexts(const char* region, const std::string& expected) {
  const std::string texts = RegionalTexts(region);
  std::cerr << texts;
  std::exit(texts == expected ? 0 : 1);
}

}  // namespace

TEST(Regional, NumbersFollowTheMask) {
  const std::tuple<double, std::string, std::string> cases[] = {
      {0, "#,###", ""},
      {7, "#,###", "7"},
      {999, "#,###", "999"},
      {1000, "#,###", "1,000"},
      {1234567, "#,###", "1,234,567"},
      {9007199254740993.0, "#,###", "9,007,199,254,740,992"},
      {-1234, "#,###", "-1,234"},
      {1234, KeyMask, "00000000000000001234.0000000000"},
      {0.5, KeyMask, "00000000000000000000.5000000000"},
      {0, KeyMask, "00000000000000000000.0000000000"},
      {1234.5, KeyMask, "00000000000000001234.5000000000"},
      {0.00000000004, KeyMask, "00000000000000000000.0000000000"},
      {-0.0001, "0.00", "0.00"},
      {1e25, KeyMask, "10000000000000000905969664.0000000000"},
      {std::nan(""), "#,###", ""},
  };
  for (const auto& [number, mask, text] : cases) EXPECT_EQ(Format(number, mask), text) << number;
  EXPECT_EQ(Format(std::numeric_limits<double>::max(), KeyMask).size(), 309u + 11u);
}

TEST(Regional, DatesFollowTheMask) {
  const SYSTEMTIME date{2004, 3, 7, 9, 5, 2};
  const std::pair<std::string, std::string> cases[] = {
      {"YYYY-MM-DD HH:MM:SS", "2004-03-07 09:05:02"},
      {"YYYYMMDD", "20040307"},
      {"YYYYMMDDHhNnSs", "20040307090502"},
      {"yyyy/mm/dd", "2004/03/07"},
      {"HH:MM MM", "09:05 03"},
      {"Week, 100% D", "Week, 100% D"}};
  for (const auto& [mask, text] : cases) EXPECT_EQ(Format(date, mask), text) << mask;
}

TEST(Regional, NumericTexts) {
  const std::pair<std::string, double> numbers[] = {{"1,234", 1234}, {"1,048,576", 1048576},
                                                    {"0.5", 0.5},    {".5", 0.5},
                                                    {"5.", 5},       {"-1", -1},
                                                    {"+1", 1},       {" 12 ", 12},
                                                    {"1e5", 1e5},    {"-1,000.25E-2", -10.0025},
                                                    {"0", 0},        {"007", 7}};
  for (const auto& [text, value] : numbers) {
    EXPECT_TRUE(IsNumeric(text)) << text;
    EXPECT_DOUBLE_EQ(CDbl(text), value) << text;
  }
  for (const char* text : {"",
                           " ",
                           "word",
                           "12x",
                           "1 2",
                           "-",
                           ".",
                           ",",
                           "1,",
                           ",1",
                           "1,,2",
                           "e5",
                           "1e",
                           "1.2.3",
                           "1.2,3",
                           "--1",
                           "inf",
                           "nan",
                           "0x10",
                           "1e999",
                           "1\xC2\xA0"
                           "2"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(Regional, DatesAreReadYearFirstOrInTheRegionalOrder) {
  const std::pair<std::string, std::string> cases[] = {
      {"2004-12-20 10:15:30", "2004-12-20 10:15:30"},
      {"2004-12-20", "2004-12-20 00:00:00"},
      {" 2004-2-29 1:02 ", "2004-02-29 01:02:00"},
      {"5/1/2004 12:30:45 PM", "2004-05-01 12:30:45"},
      {"5/1/2004", "2004-05-01 00:00:00"},
      {"5/1/04 13:00", "2004-05-01 13:00:00"},
      {"5/1/30", "1930-05-01 00:00:00"}};
  for (const auto& [text, expected] : cases) {
    SYSTEMTIME date;
    EXPECT_TRUE(CDate(text, date)) << text;
    EXPECT_EQ(Text(date), expected) << text;
  }
  for (const char* text : {"", "-", "word", "2004-13-01", "2003-02-29", "2004-12-20 24:00:00",
                           "2004-12-20 10", "2004-12-20x", "04-12-20 1", "13/40/2004"}) {
    SYSTEMTIME date{1, 2, 3, 4, 5, 6};
    EXPECT_FALSE(CDate(text, date)) << text;
    EXPECT_EQ(date.wYear, 1) << text;
  }
}

TEST(RegionalDeathTest, TextsOfOtherRegions) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const std::pair<const char*, std::string> cases[] = {
      {"en_US.UTF-8", "5/1/2004 12:30:45 PM|1,234,567|0.50"},
      {"de_DE.UTF-8", "01.05.2004 12:30:45|1.234.567|0,50"},
      {"fr_FR.UTF-8", "01/05/2004 12:30:45|1\u202F234\u202F567|0,50"},
      {"es_ES.UTF-8", "1/5/2004 12:30:45|1.234.567|0,50"},
      {"zh_CN.UTF-8", "2004/5/1 12:30:45|1,234,567|0.50"},
      {"de_CH.UTF-8", "01.05.2004 12:30:45|1\u2019234\u2019567|0.50"},
      {"sv_SE.UTF-8", "2004-05-01 12:30:45|1\u00A0234\u00A0567|0,50"},
      {"en_IN.UTF-8", "01/05/2004 12:30:45 PM|1,234,567|0.50"}};
  for (const auto& [region, expected] : cases) {
    EXPECT_EXIT(ExpectRegionalTexts(region, expected), testing::ExitedWithCode(0), "") << region;
  }
}

TEST(Regional, CaseIsFoldedAway) {
  const struct {
    std::string One;
    std::string Other;
    bool Equal;
  } cases[] = {{"Cookie[1].TXT", "cookie[1].txt", true},
               {"ÄÖÜ", "äöü", true},
               {"ΣΊΣΥΦΟΣ", "σίσυφος", true},
               {"Москва", "МОСКВА", true},
               {"\u212A", "k", true},
               {"𐐀", "𐐨", true},
               {"@[`{", "`{@[", false},
               {"a\xFF", "a\xFE", false},
               {"A\xC3", "a\xC3", true},
               {"\xC3\x84", "\xC3\xA4\x80", false},
               {std::string("a\0B", 3), std::string("A\0b", 3), true},
               {std::string("a\0b", 3), "a", false}};
  for (const auto& one : cases) {
    EXPECT_EQ(FoldCase(one.One) == FoldCase(one.Other), one.Equal) << one.One;
    EXPECT_TRUE(!one.Equal || TextSearch(one.One).OccursIn("<" + one.Other + ">")) << one.One;
    EXPECT_TRUE(!one.Equal || TextSearch(one.Other).OccursIn("<" + one.One + ">")) << one.One;
  }
}

TEST(Regional, SearchesIgnoreCase) {
  const std::string large = std::string(5000, 'A') + "needle";
  const std::tuple<std::string, std::string, bool> cases[] = {{"", "", true},
                                                              {"", "text", true},
                                                              {"a", "", false},
                                                              {"SHOP", "www.shop.example", true},
                                                              {"shop.EX", "www.Shop.example", true},
                                                              {"shopx", "www.shop.example", false},
                                                              {"É", "caf\xC3\xA9", true},
                                                              {"k", "\u212A", true},
                                                              {"NEEDLE", large, true},
                                                              {"needles", large, false}};
  for (const auto& [wanted, text, occurs] : cases) {
    EXPECT_EQ(TextSearch(wanted).OccursIn(text), occurs) << wanted << " in " << text.substr(0, 30);
  }
}

TEST(Regional, BytesBecomeText) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  const std::pair<std::string, std::string> cases[] = {
      {"plain ascii text", "plain ascii text"},
      {"grün \U0001F36A", "grün \U0001F36A"},
      {"\xEF\xBB\xBFname", "\xEF\xBB\xBFname"},
      {"gr\xFCn", "grün"},
      {"\x80 \x93quoted\x94", "\u20AC \u201Cquoted\u201D"},
      {"\x81\x9D", "\u0081\u009D"},
      {"\xC3\xBC\xFC", "Ã¼ü"},
      {"\xC0\xAF", "À\u00AF"},       // An overlong form is no UTF-8,
      {"\xED\xA0\x80", "í\u00A0€"},  // nor is a surrogate,
      {"a long text, cut \xE2\x82", "a long text, cut â‚"},
      {std::string("n\0l", 3), std::string("n\0l", 3)}};
  for (const auto& [bytes, text] : cases) EXPECT_EQ(TextFromCodePage(bytes), text);
  EXPECT_EQ(TextFromCodePage(all).substr(0, 128), all.substr(0, 128));
}
