#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "cookies/CookieList.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "platform/Forms.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

class CookieList : public testing::Test {
 protected:
  CookieFolder folder_;
  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
};

TEST_F(CookieList, ShowsEveryRecordInTheOrderOfTheFiles) {
  folder_.Add("b.txt", Record("n1", "a%3Db%20", "s1/") + Record("n2", "", "s2", "-1"), "1,234",
              "2001-02-03 04:05:06");
  folder_.Add("empty.txt", "", "");
  folder_.Add("gone.txt", "");
  folder_.Add("a.txt", Record("n1", "v", "s1"));
  std::filesystem::remove(folder_.Path("gone.txt"));
  for (int rebuild = 0; rebuild < 2; ++rebuild) {
    LoadCookieList(list_);
    ASSERT_EQ(list_.Count(), 3);
    EXPECT_EQ(CellsOf(list_, 1), Cells({"s1", "2009-04-22", "n1", "a%3Db%20", "b.txt", "1,234",
                                        "2001-02-03 04:05:06"}));
    EXPECT_EQ(CellsOf(list_, 2),
              Cells({"s2", "-", "n2", "", "b.txt", "1,234", "2001-02-03 04:05:06"}));
    EXPECT_EQ(CellsOf(list_, 3),
              Cells({"s1", "2009-04-22", "n1", "v", "a.txt", "136", "2004-12-20 10:15:30"}));
    EXPECT_EQ(PublicDim.CookieRows.size(), 4u);
    EXPECT_FALSE(list_.SelectedItem() && list_.SelectedItem()->Selected());
    list_.Item(2).Selected(true);
  }

  PublicDim.KnownRows = Snapshot(1);
  LoadCookieList(list_);
  EXPECT_EQ(list_.Count(), 0);
  EXPECT_EQ(PublicDim.CookieRows.size(), 1u);
}

TEST_F(CookieList, KeepsNamesThatAreNotUtf8) {
  const std::string name = "caf\xE9.txt";
  folder_.Add(name, Record("n", "v", "s"));
  LoadCookieList(list_);
  EXPECT_EQ(ColumnOf(list_, 5), Cells({name}));
}

TEST_F(CookieList, RebuildsOnlyWhatIsStaleAndKnownAndInSight) {
  const auto rowsAfterTick = [this](int state) {
    CookieListTick(list_, state);
    return list_.Count();
  };
  PublicDim.CookieListStale = true;
  EXPECT_EQ(rowsAfterTick(platform::vbNormalState), 0);
  EXPECT_TRUE(PublicDim.CookieListStale) << "the first scan has not ended";
  folder_.Add("a.txt", Record("n", "v", "s"));
  EXPECT_EQ(rowsAfterTick(platform::vbMinimized), 0);
  EXPECT_TRUE(PublicDim.CookieListStale);
  EXPECT_EQ(rowsAfterTick(platform::vbMaximized), 1);
  EXPECT_FALSE(PublicDim.CookieListStale);
  folder_.Add("b.txt", Record("n", "v", "s"));
  EXPECT_EQ(rowsAfterTick(platform::vbNormalState), 1);
  PublicDim.CookieListStale = true;
  EXPECT_EQ(rowsAfterTick(platform::vbNormalState), 2);
}

TEST_F(CookieList, KeepsTheChosenOrderOverARebuild) {
  const std::string record = Record("n", "v", "s");
  folder_.Add("b.txt", record, "1,000");
  folder_.Add("C.txt", record, "9");
  folder_.Add("a.txt", record, "10,000");
  ColumnDirections directions{};
  LoadCookieList(list_);
  EXPECT_EQ(ColumnOf(list_, 5), Cells({"b.txt", "C.txt", "a.txt"}));
  ColumnClick(list_, directions, 6);
  folder_.Add("d.txt", record, "");
  LoadCookieList(list_);
  EXPECT_EQ(ColumnOf(list_, 6), Cells({"", "9", "1,000", "10,000"}));
  ColumnClick(list_, directions, 5);
  folder_.Add("bb.txt", record);
  list_.Visible(false);
  LoadCookieList(list_);
  EXPECT_EQ(ColumnOf(list_, 5), Cells({"d.txt", "C.txt", "bb.txt", "b.txt", "a.txt"}));
  ColumnClick(list_, directions, 6);
  list_.Visible(false);
  LoadCookieList(list_);
  EXPECT_EQ(ColumnOf(list_, 6), Cells({"10,000", "1,000", "136", "9", ""}));
  EXPECT_FALSE(list_.Visible()) << "a rebuild must not bring up a page that is out of sight";
}

}  // namespace
