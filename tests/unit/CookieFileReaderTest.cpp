#include <chrono>
#include <filesystem>
#include <stdlib.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <time.h>
#include <vector>

#include <gtest/gtest.h>

#include "cookies/CookieDetail.h"
#include "cookies/CookieFileReader.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"

namespace {

// The zone offset is looked up once a second.
void SetZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
  const time_t now = time(nullptr);
  while (time(nullptr) == now) std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

class CookieFileReader : public testing::Test {
 protected:
  CookieFolder folder_;
};

std::string AsText(const CookieRow& row) {
  return row.CookieName + "|" + row.CookieValue + "|" + row.Server + "|" + row.ExpireDate + "|" +
         row.CookieFile + "|" + row.FileSize + "|" + row.Modified;
}

std::vector<std::string> Read(const CookieFolder& folder, std::string_view content) {
  folder.Write("a.txt", content);
  PublicDim.DetailRows.clear();
  ReadCookieFile("a.txt", "s", "m", TargetDetailRows);
  std::vector<std::string> rows;
  for (const CookieRow& row : PublicDim.DetailRows) rows.push_back(AsText(row));
  return rows;
}

const std::string Sample =
    "uid\na%3Db\nshop.example/\n1536\n2915392512\n29721845\n1823712256\n29680011\n*\n"
    "lang\nen\nshop.example/cart/\n1024\n0\n30000000\n1823712256\n29680011\n*\n";

TEST_F(CookieFileReader, ReadsTheSampleInEitherArrayAndZone) {
  ASSERT_EQ(Sample.size(), 136u);
  folder_.Write("sample.txt", Sample);
  const std::string first = "uid|a%3Db|shop.example|2005-07-10|sample.txt|136|2004-12-20 10:15:30";
  PublicDim.CookieRows.resize(1);
  PublicDim.DetailRows.resize(5);
  for (const int target : {TargetCookieRows, TargetCookieRows, TargetDetailRows}) {
    ReadCookieFile("sample.txt", "136", "2004-12-20 10:15:30", target);
  }
  ASSERT_EQ(PublicDim.CookieRows.size(), 5u);
  EXPECT_EQ(AsText(PublicDim.CookieRows[0]), "||||||");
  EXPECT_EQ(AsText(PublicDim.CookieRows[3]), first);
  EXPECT_EQ(AsText(PublicDim.CookieRows[4]),
            "lang|en|shop.example/cart|2009-04-22|sample.txt|136|2004-12-20 10:15:30");
  ASSERT_EQ(PublicDim.DetailRows.size(), 2u);
  EXPECT_EQ(AsText(PublicDim.DetailRows[0]), first);
  EXPECT_EQ(DetailText(PublicDim.DetailRows),
            "Cookie name: uid\r\nValue: a%3Db\r\nServer: shop.example\r\nExpire: 2005-07-10\r\n\r\n"
            "Cookie name: lang\r\nValue: en\r\nServer: shop.example/cart\r\n"
            "Expire: 2009-04-22\r\n\r\n");

  SetZone("Asia/Shanghai");
  EXPECT_EQ(ExpireDateText("29721845"), "2005-07-10");
  EXPECT_EQ(ExpireDateText("30000000"), "2009-04-23");
  SetZone("America/New_York");
  EXPECT_EQ(ExpireDateText("0"), "-");
  SetZone("UTC");
}

TEST_F(CookieFileReader, TakesOnlyWholeRecords) {
  std::string content;
  for (std::size_t lines = 0; lines <= 40; ++lines) {
    EXPECT_EQ(Read(folder_, content).size(), lines / 9) << lines << " lines";
    EXPECT_EQ(Read(folder_, content + "cut").size(), (lines + 1) / 9) << lines << " lines and one";
    content += "line\n";
  }
}

TEST_F(CookieFileReader, TakesTheLinesAsTheyStand) {
  const std::string good = Record("n", "v", "s/");
  const std::string row = "n|v|s|2009-04-22|a.txt|s|m";
  const std::string empty(1, '\0');
  struct Case {
    const char* What;
    std::string Content;
    std::vector<std::string> Rows;
  };
  const Case cases[] = {
      {"a stray line shifts what follows", good + "stray\n" + good, {row, "stray|n|v|-|a.txt|s|m"}},
      {"CR LF ends the read", "n\r\nv\r\n" + good, {}},
      {"a CR loses its record and all behind", good + Record("a", "b\rc", "d") + good, {row}},
      {"a CR at the very end", good + "\r", {row}},
      {"an empty value", Record("n", "", "s") + good, {"n||s|2009-04-22|a.txt|s|m", row}},
      {"one slash of two", Record("n", "v", "s//"), {"n|v|s/|2009-04-22|a.txt|s|m"}},
      {"nothing but a slash", Record("n", "v", "/"), {"n|v||2009-04-22|a.txt|s|m"}},
      {"a NUL", Record("n", empty + "v", "s"), {"n|" + empty + "v|s|2009-04-22|a.txt|s|m"}},
      {"UTF-8", Record("größe", "名", "s"), {"größe|名|s|2009-04-22|a.txt|s|m"}},
      {"other bytes",
       Record("gr\xF6\xDF"
              "e",
              "\x80\x81", "s"),
       {"größe|€\xC2\x81|s|2009-04-22|a.txt|s|m"}},
  };
  for (const Case& test : cases) EXPECT_EQ(Read(folder_, test.Content), test.Rows) << test.What;
}

TEST_F(CookieFileReader, LeavesTheRowsAloneWithoutARecord) {
  ASSERT_EQ(Read(folder_, Record("n", "v", "s")).size(), 1u);
  folder_.Write("short.txt", "n\nv\n");
  folder_.Write(".hidden.txt", Record("n", "v", "s"));
  std::filesystem::create_directory(folder_.Path("folder.txt"));
  ASSERT_EQ(mkfifo(folder_.Path("pipe.txt").c_str(), 0600), 0);
  PublicDim.CookieRows.resize(1);
  for (const char* name : {"short.txt", ".hidden.txt", "folder.txt", "pipe.txt", "gone.txt", ""}) {
    ReadCookieFile(name, "", "", TargetDetailRows);
    EXPECT_EQ(AsText(PublicDim.DetailRows.at(0)), "n|v|s|2009-04-22|a.txt|s|m") << name;
    ReadCookieFile(name, "", "", TargetCookieRows);
    EXPECT_EQ(PublicDim.CookieRows.size(), 1u) << name;
  }
}

TEST_F(CookieFileReader, MakesADateOfAnyHighWord) {
  const std::string year9999 = "617110110";
  const std::pair<std::string, std::string> cases[] = {
      {"30000000", "2009-04-22"},
      {" \t30000000", "2009-04-22"},
      {"+30000000x", "2009-04-22"},
      {"3e7", "2009-04-22"},
      {"3.0E+7 1", "2009-04-22"},
      {".3e8", "2009-04-22"},
      {"30000000.", "2009-04-22"},
      {"0", "1601-01-01"},
      {"", "1601-01-01"},
      {"never", "1601-01-01"},
      {"inf", "1601-01-01"},
      {"nan", "1601-01-01"},
      {".", "1601-01-01"},
      {"--5", "1601-01-01"},
      {"-0.5", "1601-01-01"},
      {"-0.51", "-"},
      {"-1", "-"},
      {"1e-400", "1601-01-01"},
      {"1e400", "-"},
      {"-1e400", "-"},
      {"2147483647", "-"},
      {"2147483648", "-"},
      {"4294967295", "-"},
      {"401.5", "1601-01-02"},
      {"402.5", "1601-01-02"},
      {"402.6", "1601-01-03"},
      {"1e", "1601-01-01"},
      {year9999, "9999-12-31"},
      {"617110111", "-"},
  };
  for (const auto& [text, date] : cases) EXPECT_EQ(ExpireDateText(text), date) << text;
}

TEST(SplitText, KeepsEmptyPiecesButNoneAtTheEnd) {
  using Pieces = std::vector<std::string_view>;
  EXPECT_EQ(SplitText("", "\n"), Pieces());
  EXPECT_EQ(SplitText("\n", "\n"), Pieces({""}));
  EXPECT_EQ(SplitText("a\n\nb\n", "\n"), Pieces({"a", "", "b"}));
  EXPECT_EQ(SplitText("a\nb", "\n"), Pieces({"a", "b"}));
  EXPECT_EQ(SplitText("a<>b<c<>", "<>"), Pieces({"a", "b<c"}));
  EXPECT_EQ(SplitText("aXbx", "x"), Pieces({"aXb"}));
  std::string many;
  for (int i = 0; i < 1234; ++i) many += "p,";
  EXPECT_EQ(SplitText(many, ",").size(), 1234u);
}

}  // namespace
