#include <chrono>
#include <string>
#include <thread>
#include <time.h>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cookies/CookieFileReader.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"

namespace {

std::vector<std::string> Texts(const std::vector<CookieRow>& rows) {
  std::vector<std::string> texts;
  for (const CookieRow& row : rows) {
    texts.push_back(row.CookieName + "|" + row.CookieValue + "|" + row.Server + "|" +
                    row.ExpireDate + "|" + row.CookieFile + "|" + row.FileSize + "|" +
                    row.Modified);
  }
  return texts;
}

TEST(CookieFileReader, ReadsTheSampleIntoEitherArray) {
  const CookieFolder folder;
  const std::string sample =
      "uid\na%3Db\nshop.example/\n1536\n2915392512\n29721845\n1823712256\n29680011\n*\n"
      "lang\nen\nshop.example/cart/\n1024\n0\n30000000\n1823712256\n29680011\n*\n";
  ASSERT_EQ(sample.size(), 136u);
  folder.Write("sample.txt", sample);
  const std::string first = "uid|a%3Db|shop.example|2005-07-10|sample.txt|136|2004-12-20 10:15:30";
  const std::string second =
      "lang|en|shop.example/cart|2009-04-22|sample.txt|136|2004-12-20 10:15:30";
  PublicDim.CookieRows.resize(1);
  PublicDim.DetailRows.resize(5);
  for (const int target : {TargetCookieRows, TargetCookieRows, TargetDetailRows}) {
    ReadCookieFile("sample.txt", "136", "2004-12-20 10:15:30", target);
  }
  EXPECT_EQ(Texts(PublicDim.CookieRows),
            std::vector<std::string>({"||||||", first, second, first, second}));
  EXPECT_EQ(Texts(PublicDim.DetailRows), std::vector<std::string>({first, second}));
}

TEST(CookieFileReader, MakesADateOfAnyHighWordInAnyZone) {
  const std::pair<std::string, std::string> cases[] = {
      {" \t+30000000x", "2009-04-22"}, {"never", "1601-01-01"}, {"-0.51", "-"}, {"4294967295", "-"},
      {"617110110", "9999-12-31"},     {"617110111", "-"},
  };
  for (const auto& [text, date] : cases) EXPECT_EQ(ExpireDateText(text), date) << text;
  const std::string zones[][3] = {{"Asia/Shanghai", "2009-04-23", "1601-01-01"},
                                  {"America/New_York", "2009-04-22", "-"},
                                  {"UTC", "2009-04-22", "1601-01-01"}};
  for (const auto& [zone, date, first] : zones) {
    setenv("TZ", zone.c_str(), 1);
    tzset();
    // The offset is looked up once a second.
    const time_t now = time(nullptr);
    while (time(nullptr) == now) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(ExpireDateText("30000000"), date) << zone;
    EXPECT_EQ(ExpireDateText("0"), first) << zone;
  }
}

}  // namespace
