#include <string>

#include <gtest/gtest.h>

#include "cookies/CookieDetail.h"
#include "cookies/CookieList.h"
#include "core/PublicDim.h"
#include "tests/support/Application.h"
#include "tests/support/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

TEST(SmallWindows, ADetailShowsTheFileAsItIsNowElseTheOneLastRead) {
  const CookieFolder folder;
  CookieLists window;
  platform::ListView& list = window.ListVCookie;
  const auto detail = [&](int position) {
    for (int row = 1; row <= list.Count(); ++row) list.Item(row).Selected(row == position);
    OpenCookieDetail(list, window);
    return machine::CloseForms("FormView").at(0);
  };
  const std::string name = "a[1]b[2][3].txt";
  PublicDim.KnownRows = {{name, "136", "then"}, {"gone.txt", "136", "then"}};
  for (const CookieFileRow& row : PublicDim.KnownRows) {
    folder.Write(row.FileName, Record("old", "", "s"));
  }
  LoadCookieList(list);
  std::filesystem::remove(folder.Native("gone.txt"));
  EXPECT_EQ(detail(2), "Detail\n");
  folder.Write(name, Record("uid", "a%3Db", "shop/", "-1"));
  const std::string now =
      "Detail - " + name + "\nCookie name: uid\nValue: a%3Db\nServer: shop\nExpire: -\n\n";
  EXPECT_EQ(detail(1), now);
  EXPECT_EQ(detail(2), now);
  folder.Write("GONE.txt", Record("back", "", "s", "-1"));
  const std::string shown = machine::CasesDiffer ? "GONE.txt" : "gone.txt";
  EXPECT_EQ(detail(2).substr(0, 35), "Detail - " + shown + "\nCookie name: back");
}

}  // namespace
