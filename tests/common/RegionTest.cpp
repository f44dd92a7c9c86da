#include <limits>
#include <tuple>

#include <gtest/gtest.h>

#include "platform/common/Dates.h"
#include "platform/common/Folding.h"
#include "platform/common/Numbers.h"

using namespace platform;

namespace {

char32_t Fold(char32_t character) { return character == U'Ä' ? U'ä' : character; }

Region America() {
  Region region;
  region.Group = ",";
  region.Decimal = ".";
  region.ShortDate = "M/d/yy";
  region.LongTime = "h:mm:ss\u202Ftt";
  region.ShortTime = "h:mm tt";
  region.Morning = "AM";
  region.Afternoon = "PM";
  return region;
}

Region Elsewhere() {
  Region region;
  region.Group = "\u202F";
  region.Decimal = ",";
  region.ShortDate = "dddd, d. MMM yyyy";
  region.LongTime = "'um' HH.mm.ss 'Uhr'";
  region.ShortTime = "HH.mm";
  region.ShortMonths = {"Jän", "F", "Mär", "A", "Mai", "J"};
  region.Days = {"Mo", "Di", "Mi", "Do", "Fr", "Samstag"};
  return region;
}

std::string Read(const DateForms& forms, std::string_view text) {
  const std::optional<SYSTEMTIME> date = forms.Read(text);
  return date ? Format(*date, "YYYY-MM-DD HH:MM:SS") : "none";
}

}  // namespace

TEST(Region, NumbersAndDatesFollowTheMask) {
  const std::string keyMask = "00000000000000000000.0000000000";
  const std::tuple<double, std::string, std::string> cases[] = {
      {9007199254740993.0, "#,###", "9,007,199,254,740,992"},
      {-1234, "#,###", "-1,234"},
      {1234.5, keyMask, "00000000000000001234.5000000000"},
      {0.00000000004, keyMask, "00000000000000000000.0000000000"},
      {1e25, keyMask, "10000000000000000905969664.0000000000"}};
  for (const auto& [number, mask, text] : cases) {
    EXPECT_EQ(NumberText(number, mask, America()), text) << number;
  }
  EXPECT_EQ(NumberText(std::numeric_limits<double>::max(), keyMask, America()).size(), 309u + 11u);
  EXPECT_EQ(NumberText(-1234.5, "#,###.00", Elsewhere()), "-1\u202F234,50");
  const SYSTEMTIME date{2004, 3, 7, 9, 5, 2};
  EXPECT_EQ(Format(date, "YYYY-MM-DD HH:MM:SS"), "2004-03-07 09:05:02");
  EXPECT_EQ(Format(date, "YYYYMMDDHhNnSs"), "20040307090502");
}

TEST(Region, NumericTexts) {
  const std::pair<std::string, double> numbers[] = {{"1,048,576", 1048576},
                                                    {".5", 0.5},
                                                    {"5.", 5},
                                                    {"-1,000.25E-2", -10.0025},
                                                    {" +12 ", 12},
                                                    {"0." + std::string(400, '0') + "1", 0},
                                                    {"1e-999", 0}};
  for (const auto& [text, value] : numbers) {
    EXPECT_DOUBLE_EQ(ReadNumber(text, America()).value_or(-1), value) << text;
  }
  for (const char* text :
       {"", " ", "12x", "1 2", "-", ".", "1,", ",1", "1,,2", "1e", "1.2.3", "1.2,3", "--1", "inf",
        "nan", "0x10", "1e999", "1e99999999999999999999"}) {
    EXPECT_FALSE(ReadNumber(text, America())) << text;
  }
  EXPECT_FALSE(ReadNumber(std::string(400, '9') + "e-9", America()));
  EXPECT_EQ(ReadNumber("1\u202F234,5", Elsewhere()), 1234.5);
}

TEST(Region, DatesAreWrittenAndReadByTheRegionsPictures) {
  const SYSTEMTIME halfPastMidnight{2004, 5, 1, 0, 30, 45};
  const DateForms america(America(), Fold);
  EXPECT_EQ(america.General(halfPastMidnight), "5/1/2004 12:30:45 AM");
  const DateForms elsewhere(Elsewhere(), Fold);
  EXPECT_EQ(elsewhere.General(halfPastMidnight), "Samstag, 1. Mai 2004 um 00.30.45 Uhr");

  const std::pair<std::string, std::string> dates[] = {
      {" 2004-2-29 1:02 ", "2004-02-29 01:02:00"},
      {"5/1/04 13:00", "2004-05-01 13:00:00"},
      {"5/1/30", "1930-05-01 00:00:00"},
      {"05/01/2004  12:30:45\u00A0am", "2004-05-01 00:30:45"},
      {"5/1/2004 12:07 PM", "2004-05-01 12:07:00"}};
  for (const auto& [text, expected] : dates) EXPECT_EQ(Read(america, text), expected) << text;
  for (const char* text :
       {"", "word", "2003-02-29", "2004-12-20 24:00:00", "2004-12-20x", "04-12-20 1", "13/40/2004",
        "5/1/2004 13:07 PM", "5/1/12004", "0000-01-01"}) {
    EXPECT_EQ(Read(america, text), "none") << text;
  }
  EXPECT_EQ(Read(elsewhere, "mo, 31. mÄR 69 00.30"), "1969-03-31 00:30:00");
  EXPECT_EQ(Read(elsewhere, elsewhere.General(halfPastMidnight)), "2004-05-01 00:30:45");
}

TEST(Region, TheDigitsOfARegionAreReadBesideThePlainOnes) {
  Region region = Elsewhere();
  region.ShortDate = "yyyy/M/d";
  region.LongTime = "h:mm:ss";
  region.Zero = U'۰';
  const DateForms forms(region, Fold);
  EXPECT_EQ(forms.General({2004, 5, 1, 13, 30, 45}), "۲۰۰۴/۵/۱ ۱۳:۳۰:۴۵");
  EXPECT_EQ(Read(forms, "۲۰۰۴/5/۱ ۱۳:۳۰"), "2004-05-01 13:30:00");
}

TEST(Region, BytesThatAreNoTextAreFoundAsTheyAre) {
  const std::pair<std::string, std::string> equal[] = {
      {"Cookie[1].TXT", "cookie[1].txt"}, {"ÄX\xFF", "äx\xFF"}, {{"a\0B", 3}, {"A\0b", 3}}};
  for (const auto& [one, other] : equal) {
    EXPECT_EQ(Folded(one, Fold), Folded(other, Fold));
    for (const std::string& around : {std::string("<"), std::string(2000, ' ')}) {
      EXPECT_TRUE(OccursFolded(Folded(one, Fold), around + other + ">", Fold)) << one;
    }
  }
  const std::pair<std::string, std::string> different[] = {
      {"@[`{", "`{@["}, {"a\xFF", "a\xFE"}, {"Ä", "ä\x80"}, {{"a\0b", 3}, "a"}};
  for (const auto& [one, other] : different) EXPECT_NE(Folded(one, Fold), Folded(other, Fold));
  EXPECT_FALSE(OccursFolded("shopx", "www.shop.example", Fold));
}
