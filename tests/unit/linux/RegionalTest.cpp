#include <tuple>

#include <gtest/gtest.h>

#include "platform/Regional.h"

using namespace platform;

static std::string Text(const SYSTEMTIME& date) { return Format(date, "YYYY-MM-DD HH:MM:SS"); }

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
