#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "cookies/modSortListView.h"
#include "tests/support/Application.h"
#include "tests/window/CookieLists.h"
#include "tests/window/Hands.h"

namespace {

using Cells = std::vector<std::string>;
using hands::Copied;
using platform::vbCtrlMask;
using platform::vbShiftMask;

class Lists : public testing::Test {
 protected:
  Lists() { window_.Show(); }

  void Fill(const Cells& names) {
    for (const std::string& name : names) list_.Add(name);
    platform::DoEvents();
  }
  void AddLines(int count) {
    for (int i = 0; i < count; ++i) log_.AddItem("line\n" + std::to_string(i));
    bool settled = false;  // A view may lay its lines out a moment later.
    platform::Timer moment(20, true);
    moment.Tick = [&] { settled = true; };
    machine::WaitFor([&] { return settled; });
  }

  Cells AllNames(bool selectedOnly = false) {
    Cells names;
    for (int i = 1; i <= list_.Count(); ++i) {
      if (!selectedOnly || list_.Item(i).Selected()) names.push_back(list_.Item(i).Text());
    }
    return names;
  }
  Cells SelectedNames() { return AllNames(true); }

  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
  platform::ListBox& log_ = window_.ListLog;
};

}  // namespace

TEST_F(Lists, PositionsAndSelectionHoldBeforeAndAfterTheViewLearnsOfAChange) {
  Fill({"a", "b", "c", "d", "e", "f", "g"});
  for (const int position : {3, 5, 6}) list_.Item(position).Selected(true);
  for (const int position : {5, 1, 3}) list_.Remove(position);
  list_.Item(1).Text("B");
  for (const bool learned : {false, true}) {
    if (learned) platform::DoEvents();
    EXPECT_EQ(AllNames(), Cells({"B", "c", "f", "g"}));
    EXPECT_EQ(SelectedNames(), Cells({"c", "f"}));
    EXPECT_EQ(list_.SelectedItem()->Text(), "c");
  }
  list_.Add("h").Selected(true);
  list_.Item(2).Selected(false);
  platform::DoEvents();
  EXPECT_EQ(Copied(list_), "f\t\t\t\t\t\t\nh\t\t\t\t\t\t\n");
}

TEST_F(Lists, WhatComesAndGoesLeavesWhatIsInSightInPlace) {
  Fill(Cells(500));
  hands::TopRow(list_, 200);
  for (const int position : {400, 150, 20}) list_.Remove(position);
  platform::DoEvents();
  EXPECT_EQ(hands::TopRow(list_), 198);
  list_.Item(5).Selected(true);
  list_.Clear();
  Fill(Cells(500));
  EXPECT_FALSE(list_.SelectedItem()) << "a refill starts unselected at the top";
  EXPECT_EQ(hands::TopRow(list_), 0);

  AddLines(200);
  hands::SelectLines(log_, {60});
  hands::TopRow(log_, 50);
  AddLines(10'000);
  EXPECT_EQ(hands::TopRow(log_), 50);
  EXPECT_EQ(hands::SelectedLines(log_), std::vector{60});
}

TEST_F(Lists, AHeaderClickNamesTheColumnWhereverItStands) {
  Fill({"b", "a"});
  std::string clicked;
  list_.ColumnClick = [&](int index) { clicked += std::to_string(index); };
  hands::MoveFirstColumn(list_, 2);
  for (const int column : {1, 0, 2}) hands::ClickHeader(list_, column);
  for (const int button : {2, 1}) {
    hands::ClickHeader(list_, 1, button);
    hands::ClickHeader(list_, 1, button, true);
  }
  EXPECT_EQ(clicked, "21322") << "a quick click counts like any other";
  EXPECT_EQ(AllNames(), Cells({"b", "a"})) << "the order is the program's matter";
}

TEST_F(Lists, MouseEventsReachTheProgramAfterTheSelection) {
  Fill({"a", "b", "c", "d", "e"});
  std::string events;
  list_.MouseUp = [&](int button) {
    events += std::to_string(button);
    for (const std::string& name : SelectedNames()) events += name;
  };
  const std::tuple<int, hands::Click, std::string> clicks[] = {
      {-1, {.Button = 2}, "2"},          {1, {}, "1b"},
      {4, {.Shift = vbCtrlMask}, "1be"}, {1, {.Button = 2}, "2be"},
      {0, {.Button = 2}, "2a"},          {2, {.Shift = vbShiftMask}, "1abc"},
      {1, {.Shift = vbShiftMask}, "1ab"}};
  for (const auto& [row, click, expected] : clicks) {
    hands::ClickRow(list_, row, click);
    EXPECT_EQ(std::exchange(events, ""), expected);
  }
  int doubleClicks = 0;
  list_.DblClick = [&] { ++doubleClicks; };
  for (const int row : {-1, 2}) hands::DoubleClickRow(list_, row);
  EXPECT_EQ(doubleClicks, 2) << "beside the rows too";
}

TEST_F(Lists, CopyTheSelectedRowsAsTheyStand) {
  for (const char* name : {"b", "a", "c"}) list_.Add(name).SubItems(1, name + std::string("\t1"));
  list_.SortOrder(platform::lvwDescending);
  list_.Sorted(true);
  hands::MoveFirstColumn(list_, 1);
  for (const int position : {1, 3}) list_.Item(position).Selected(true);
  EXPECT_EQ(Copied(list_), "c\u24091\tc\t\t\t\t\t\na\u24091\ta\t\t\t\t\t\n");
  AddLines(5);
  hands::SelectLines(log_, {3, 1});
  EXPECT_EQ(Copied(log_), "line\u240A1\nline\u240A3\n");
}

TEST_F(Lists, ASortLeavesTagsTheKeyboardAndAPageOutOfSight) {
  const std::string tag("tag\0of", 6);
  list_.Add("a").Tag(tag);
  list_.SetFocus();
  SortListView(list_, FileSizeCell + 1, SortNumber, true);
  EXPECT_TRUE(list_.HasFocus());
  list_.Visible(false);
  RestoreSortOrder(list_);
  EXPECT_FALSE(list_.Visible());
  EXPECT_EQ(list_.Item(1).Tag(), tag);
  list_.Visible(true);
  list_.SetFocus();
  window_.Unload();
  EXPECT_FALSE(list_.HasFocus()) << "the next opening begins afresh";
}
