#include <algorithm>
#include <array>
#include <cctype>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cookies/CookieList.h"
#include "cookies/modSortListView.h"
#include "platform/ListView.h"
#include "platform/Regional.h"
#include "tests/window/CookieLists.h"

namespace {

/// What a list must show, worked out from the rules of the header click alone.
struct Model {
  std::vector<CookieRow> Added;
  std::vector<CookieRow> Rows;
  int SortKey = 0;
  int SortOrder = 0;
  bool Sorted = false;

  static const std::string& Cell(const CookieRow& row, int column) {
    static constexpr std::array<std::string CookieRow::*, 7> Cells = {
        &CookieRow::Server,      &CookieRow::ExpireDate, &CookieRow::CookieName,
        &CookieRow::CookieValue, &CookieRow::CookieFile, &CookieRow::FileSize,
        &CookieRow::Modified};
    return row.*Cells[static_cast<std::size_t>(column)];
  }

  static bool Before(const CookieRow& a, const CookieRow& b, int column) {
    const std::string& x = Cell(a, column);
    const std::string& y = Cell(b, column);
    if (column == 5) {
      const auto value = [](std::string text) {
        std::erase(text, ',');
        return text.empty() ? -1 : std::stol(text);
      };
      return value(x) < value(y);
    }
    return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end(), [](char c, char d) {
      return std::tolower(c) < std::tolower(d);
    });
  }

  void Sort() {
    Rows = Added;
    if (!Sorted) return;
    std::stable_sort(Rows.begin(), Rows.end(), [this](const CookieRow& a, const CookieRow& b) {
      return SortOrder == 0 ? Before(a, b, SortKey) : Before(b, a, SortKey);
    });
  }

  void Click(int index, std::array<bool, 7>& directions) {
    if (Rows.size() < 2) return;
    const auto column = static_cast<std::size_t>(index - 1);
    directions[column] = !directions[column];
    SortOrder = index == 6 ? (directions[5] ? 0 : 1) : 1 - SortOrder;
    SortKey = index - 1;
    Sorted = true;
    Sort();
  }
};

std::vector<CookieRow> RandomRows(std::mt19937& random) {
  const auto word = [&random] {
    static constexpr std::array<const char*, 8> Words = {"",    "b",  "B", "a.x",
                                                         "A.X", "10", "9", "c d"};
    return std::string(Words[random() % Words.size()]);
  };
  static constexpr std::array<double, 8> Sizes = {0, 9, 10, 999, 1000, 10000, 1234567, 4e9};
  std::vector<CookieRow> rows(random() % 4 == 0 ? random() % 3 : random() % 40);
  int number = 0;
  for (CookieRow& row : rows) {
    row = {word(), word(),
           word(), std::to_string(number++),
           word(), platform::Format(Sizes[random() % Sizes.size()], "#,###"),
           word()};
  }
  return rows;
}

void Expect(platform::ListView& list, const Model& model) {
  ASSERT_EQ(list.Count(), static_cast<int>(model.Rows.size()));
  for (int position = 1; position <= list.Count(); ++position) {
    const CookieRow& row = model.Rows[static_cast<std::size_t>(position - 1)];
    ASSERT_EQ(CellsOf(list, position),
              Cells({row.Server, row.ExpireDate, row.CookieName, row.CookieValue, row.CookieFile,
                     row.FileSize, row.Modified}))
        << "row " << position;
    ASSERT_EQ(list.Item(position).Tag(), "");
  }
  ASSERT_EQ(list.Sorted(), model.Sorted);
  ASSERT_EQ(list.SortKey(), model.SortKey);
  ASSERT_EQ(list.SortOrder(), model.SortOrder);
}

TEST(SortList, FollowsAPlainModelOverClicksAndRebuilds) {
  std::mt19937 random(7);
  CookieLists window;
  std::array<platform::ListView*, 2> lists = {&window.ListVCookie, &window.ListVSearch};
  std::array<Model, 2> models;
  ColumnDirections directions{};
  std::array<bool, 7> expected{};
  for (int step = 0; step < 1000; ++step) {
    SCOPED_TRACE(step);
    const std::size_t which = random() % 2;
    if (random() % 5 == 0) {
      models[which].Added = RandomRows(random);
      models[which].Sort();
      lists[which]->Clear();
      for (const CookieRow& row : models[which].Added) AddCookieRow(*lists[which], row);
      RestoreSortOrder(*lists[which]);
    } else {
      const int index = random() % 3 == 0 ? 6 : static_cast<int>(random() % 7) + 1;
      ColumnClick(*lists[which], directions, index);
      models[which].Click(index, expected);
    }
    ASSERT_EQ(directions, expected);
    for (std::size_t i = 0; i < lists.size(); ++i) {
      ASSERT_NO_FATAL_FAILURE(Expect(*lists[i], models[i]));
      ASSERT_TRUE(lists[i]->Visible());
    }
  }
}

TEST(SortList, KeepsWhatTheTagsHoldAndSortsByDateToo) {
  CookieLists window;
  platform::ListView& list = window.ListVCookie;
  for (const char* date : {"2004-03-05", "-", "1999-01-01"}) {
    platform::ListView::ListItem row = list.Add(date);
    row.Tag(std::string("tag\0of ", 7) + date);
    row.SubItems(6, date);
  }
  SortListView(list, 7, SortDate, true);
  EXPECT_EQ(ColumnOf(list, 7), Cells({"1999-01-01", "2004-03-05", "-"}));
  SortListView(list, 1, SortDate, false);
  EXPECT_EQ(ColumnOf(list, 1), Cells({"2004-03-05", "-", "1999-01-01"}));
  for (int position = 1; position <= 3; ++position) {
    EXPECT_EQ(list.Item(position).Tag(), std::string("tag\0of ", 7) + list.Item(position).Text());
  }
}

TEST(SortList, AddsBitsToTheExtendedStyle) {
  CookieLists window;
  SetExtendedListStyle(window.ListVCookie, platform::LVS_EX_FULLROWSELECT);
  SetExtendedListStyle(window.ListVCookie, platform::LVS_EX_GRIDLINES);
  EXPECT_EQ(platform::SendMessageA(window.ListVCookie.hWnd(),
                                   platform::LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0),
            33u);
}

}  // namespace
