#include <string>

#include <gtest/gtest.h>

#include "cookies/modSortListView.h"
#include "tests/window/CookieLists.h"

TEST(SortList, KeepsWhatTheTagsHoldAndSortsByDateToo) {
  CookieLists window;
  platform::ListView& list = window.ListVCookie;
  for (const char* date : {"2004-03-05", "-", "1999-01-01"}) {
    platform::ListView::ListItem row = list.Add(date);
    row.Tag(std::string("tag\0of ", 7) + date);
    row.SubItems(6, date);
  }
  SortListView(list, 7, SortDate, true);
  EXPECT_EQ(ColumnOf(list, 7), Cells({"1999-01-01", "2004-03-05", "-"}))
      << "what is no date stands with the date before it";
  SortListView(list, 1, SortDate, false);
  EXPECT_EQ(ColumnOf(list, 1), Cells({"2004-03-05", "-", "1999-01-01"}));
  for (int position = 1; position <= 3; ++position) {
    EXPECT_EQ(list.Item(position).Tag(), std::string("tag\0of ", 7) + list.Item(position).Text());
  }
  list.Visible(false);
  RestoreSortOrder(list);
  EXPECT_FALSE(list.Visible()) << "a rebuild must not bring up a page that is out of sight";
}
