#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cookies/CookieSearch.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

class CookieSearch : public testing::Test {
 protected:
  void SetUp() override {
    PublicDim.CookieRows = {
        {},
        {"Shop.example", "UserPassword", "v 1", "2005-07-10", "a.txt", "1,234", "2004-12-20 10:15"},
        {"shop.example/cart", "lang", "password*", "-", "a.txt", "1,234", "2004-12-20 10:15"},
        {"bücher.example", "PASSWORD_HINT", "v%20 1", "2005-08-01", "B.txt", "",
         "2001-01-01 00:00"},
    };
  }

  /// The slots of `CookieRows` that a search lists, in order.
  std::string Found(std::string_view text, int field) {
    window_.TextSearch.Text(text);
    SearchCookies(window_.TextSearch, field, list_);
    std::string slots;
    for (int position = 1; position <= list_.Count(); ++position) slots += Slot(position);
    return slots;
  }

  char Slot(int position) {
    const Cells cells = CellsOf(list_, position);
    for (char slot = '1'; slot <= '3'; ++slot) {
      const CookieRow& row = PublicDim.CookieRows[static_cast<std::size_t>(slot - '0')];
      if (cells == Cells({row.Server, row.ExpireDate, row.CookieName, row.CookieValue,
                          row.CookieFile, row.FileSize, row.Modified})) {
        return slot;
      }
    }
    return '?';
  }

  CookieFolder folder_;
  CookieLists window_;
  platform::ListView& list_ = window_.ListVSearch;
};

TEST_F(CookieSearch, FindsTextInTheChosenField) {
  struct Case {
    const char* Text;
    const char* Field;
    const char* Slots;
  };
  const Case cases[] = {
      {"password", "Cookie Name", "13"},
      {"password", "Value", "2"},
      {"SHOP", "Server", "12"},
      {"BÜCHER", "Server", "3"},
      {"2005-07", "Expire Date", "1"},
      {"-", "Expire Date", "123"},
      {"a.t", "Cookie File", "12"},
      {"b.TXT", "Cookie File", "3"},
      {"2004-12-20", "Modified", "12"},
      {"*", "Value", "2"},
      {" ", "Value", ""},
      {"   ", "Value", ""},
      {"v 1", "Value", "1"},
      {"  v 1  ", "Value", "1"},
      {"v  1", "Value", ""},
      {"", "Cookie Name", ""},
      {"1,234", "Cookie File", ""},
  };
  const std::vector<std::string> names = SearchFieldNames();
  ASSERT_EQ(names.size(), 6u);
  for (const Case& test : cases) {
    const auto field = std::find(names.begin(), names.end(), test.Field) - names.begin();
    EXPECT_EQ(Found(test.Text, static_cast<int>(field)), test.Slots)
        << test.Text << " in " << test.Field;
  }
  EXPECT_EQ(Found("a", -1), "");
}

TEST_F(CookieSearch, ShowsTheTextThatWasSearched) {
  Found("  inner  space ", 2);
  EXPECT_EQ(window_.TextSearch.Text(), "inner  space");
  Found("   ", 2);
  EXPECT_EQ(window_.TextSearch.Text(), "");
}

TEST_F(CookieSearch, FindsNothingBeforeTheFirstRebuild) {
  PublicDim.CookieRows.clear();
  EXPECT_EQ(Found("a", 0), "");
}

TEST_F(CookieSearch, KeepsTheChosenOrder) {
  ColumnDirections directions{};
  ASSERT_EQ(Found("s", 2), "13");
  ColumnClick(list_, directions, 6);
  EXPECT_EQ(Found("a", 2), "312");
  ColumnClick(list_, directions, 3);
  EXPECT_EQ(Found("a", 2), "132");
}

}  // namespace
