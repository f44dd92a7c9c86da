#include <random>
#include <string>
#include <utility>
#include <vector>

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QHelpEvent>
#include <QListView>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <QTreeView>
#include <gtest/gtest.h>

#include "platform/linux/Widgets.h"
#include "tests/window/CookieLists.h"

using namespace std::string_literals;

namespace {

class Lists : public testing::Test {
 protected:
  Lists() {
    window_.Show();
    Widget(window_)->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Widget(window_)));
  }

  void Fill(const Cells& names) {
    for (const std::string& name : names) list_.Add(name);
    platform::DoEvents();
  }
  void AddLines(int count) {
    for (int i = 0; i < count; ++i) log_.AddItem("line " + std::to_string(i));
    platform::DoEvents();
    QTest::qWait(1);  // The view lays its lines out a moment later.
  }

  Cells SelectedNames() {
    Cells names;
    for (int i = 1; i <= list_.Count(); ++i) {
      if (list_.Item(i).Selected()) names.push_back(list_.Item(i).Text());
    }
    return names;
  }

  QPoint RowPoint(int row) { return view_->visualRect(view_->model()->index(row, 0)).center(); }
  void Press(Qt::MouseButton button, const QPoint& at, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(view_->viewport(), button, modifiers, at);
  }

  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
  platform::ListBox& log_ = window_.ListLog;
  QTreeView* view_ = static_cast<QTreeView*>(platform::Widget(window_.ListVCookie));
  QListView* logView_ = static_cast<QListView*>(platform::Widget(window_.ListLog));
};

}  // namespace

TEST_F(Lists, TextsKeepEveryByteAndShowAsOneLine) {
  const std::pair<std::string, std::string> texts[] = {
      {"", ""},
      {"a\0b"s, "a\u2400b"},
      {"two\r\nlines\tand a tab", "two\u240D\u240Alines\u2409and a tab"},
      {"bad \xFF\xC3 bytes", "bad \uFFFD\uFFFD bytes"},
      {"\x7F\u0085\u2028", "\u2421\uFFFD\u2424"},
  };
  for (const auto& [bytes, shown] : texts) {
    auto row = list_.Add(bytes);
    for (const char* text : {"x", "a good deal longer than before", "s"}) {
      row.SubItems(2, bytes);
      row.Tag(bytes);
      row.SubItems(1, text);
    }
    log_.AddItem(bytes);
    const int last = list_.Count() - 1;
    EXPECT_EQ(log_.List(last), bytes) << "a line is there at once";
    EXPECT_EQ(Cells({row.Text(), row.SubItems(1), row.SubItems(2), row.Tag()}),
              Cells({bytes, "s", bytes, bytes}));
    platform::DoEvents();
    EXPECT_EQ(logView_->model()->index(last, 0).data().toString().toStdString(), shown);
    EXPECT_EQ(view_->model()->index(last, 2).data().toString().toStdString(), shown);
  }
}

// Random work, looked at now before and now after events ran, against a plain vector.
TEST_F(Lists, PositionsAndSelectionAreThoseOfAPlainList) {
  struct Row {
    std::string Name;
    bool Selected = false;
  };
  std::mt19937 random(7);
  std::vector<Row> wanted;
  for (int step = 0; step < 3000; ++step) {
    const auto pick = static_cast<int>(random() % 12);
    const auto at = static_cast<std::ptrdiff_t>(wanted.empty() ? 0 : random() % wanted.size());
    const int position = static_cast<int>(at) + 1;
    if (pick < 4 || wanted.empty()) {
      wanted.push_back({std::to_string(step)});
      list_.Add(wanted.back().Name);
    } else if (pick < 7) {
      wanted.erase(wanted.begin() + at);
      list_.Remove(position);
    } else if (pick < 9) {
      Row& row = wanted[static_cast<std::size_t>(at)];
      row.Selected = !row.Selected;
      list_.Item(position).Selected(row.Selected);
    } else if (pick < 10) {
      list_.Item(position).Text(wanted[static_cast<std::size_t>(at)].Name += 'w');
    } else {
      platform::DoEvents();
    }
    Cells names;
    Cells selected;
    for (const Row& row : wanted) {
      names.push_back(row.Name);
      if (row.Selected) selected.push_back(row.Name);
    }
    ASSERT_EQ(ColumnOf(list_, 1), names);
    ASSERT_EQ(SelectedNames(), selected);
    ASSERT_EQ(list_.SelectedItem().has_value(), !selected.empty());
  }
  platform::DoEvents();
  ASSERT_EQ(view_->model()->rowCount(), list_.Count());
  for (int row = 0; row < list_.Count(); ++row) {
    const QModelIndex index = view_->model()->index(row, 0);
    EXPECT_EQ(index.data().toString().toStdString(), list_.Item(row + 1).Text());
    EXPECT_EQ(view_->selectionModel()->isSelected(index), list_.Item(row + 1).Selected());
  }
}

TEST_F(Lists, WhatComesAndGoesLeavesWhatIsInSightInPlace) {
  Fill(Cells(500));
  view_->verticalScrollBar()->setValue(200);
  for (const int position : {400, 150, 20}) list_.Remove(position);
  platform::DoEvents();
  EXPECT_EQ(view_->verticalScrollBar()->value(), 198);
  list_.Item(5).Selected(true);
  list_.Clear();
  Fill(Cells(500));
  EXPECT_FALSE(list_.SelectedItem()) << "a refill starts unselected at the top";
  EXPECT_EQ(view_->verticalScrollBar()->value(), 0);

  AddLines(200);
  logView_->setCurrentIndex(logView_->model()->index(60, 0));
  logView_->verticalScrollBar()->setValue(50);
  AddLines(10'000);
  EXPECT_EQ(logView_->verticalScrollBar()->value(), 50);
  EXPECT_EQ(logView_->selectionModel()->selectedIndexes(),
            QModelIndexList({logView_->model()->index(60, 0)}));
}

TEST_F(Lists, AHeaderClickNamesTheColumnWhereverItStands) {
  Fill({"b", "a"});
  std::string clicked;
  list_.ColumnClick = [&](int index) { clicked += std::to_string(index); };
  QHeaderView* header = view_->header();
  header->moveSection(0, 2);
  for (const int column : {1, 0, 2}) {
    const QPoint at(header->sectionViewportPosition(column) + 20, 5);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
  }
  EXPECT_EQ(std::exchange(clicked, ""), "213");
  for (const Qt::MouseButton button : {Qt::RightButton, Qt::LeftButton}) {
    QTest::mouseClick(header->viewport(), button, {}, QPoint(20, 5));
    QTest::mouseDClick(header->viewport(), button, {}, QPoint(20, 5));
  }
  EXPECT_EQ(clicked, "22") << "a quick click counts like any other";
  EXPECT_EQ(ColumnOf(list_, 1), Cells({"b", "a"})) << "the order is the program's matter";
}

TEST_F(Lists, MouseEventsReachTheProgramAfterTheSelection) {
  Fill({"a", "b", "c", "d", "e"});
  const QPoint empty(20, view_->viewport()->height() - 3);
  std::string events;
  const auto note = [&](const std::string& what) { events += what + ' '; };
  list_.MouseUp = [&](int button) { note("up" + std::to_string(button)); };
  list_.DblClick = [&] { note("dbl"); };
  const struct {
    const char* What;
    Qt::MouseButton Button;
    QPoint At;
    Qt::KeyboardModifiers Modifiers;
    std::string Event;
    Cells Selected;
  } steps[] = {
      {"right on nothing", Qt::RightButton, empty, {}, "up2 ", {}},
      {"left", Qt::LeftButton, RowPoint(1), {}, "up1 ", {"b"}},
      {"left with Ctrl", Qt::LeftButton, RowPoint(4), Qt::ControlModifier, "up1 ", {"b", "e"}},
      {"right on a selected row", Qt::RightButton, RowPoint(1), {}, "up2 ", {"b", "e"}},
      {"right on nothing", Qt::RightButton, empty, {}, "up2 ", {"b", "e"}},
      {"right on another row", Qt::RightButton, RowPoint(0), {}, "up2 ", {"a"}},
      {"left on it", Qt::LeftButton, RowPoint(0), {}, "up1 ", {"a"}},
      {"left with Shift", Qt::LeftButton, RowPoint(2), Qt::ShiftModifier, "up1 ", {"a", "b", "c"}},
      {"a smaller range", Qt::LeftButton, RowPoint(1), Qt::ShiftModifier, "up1 ", {"a", "b"}},
  };
  for (const auto& step : steps) {
    Press(step.Button, step.At, step.Modifiers);
    EXPECT_EQ(std::exchange(events, ""), step.Event) << step.What;
    EXPECT_EQ(SelectedNames(), step.Selected) << step.What;
  }
  QTest::mouseDClick(view_->viewport(), Qt::LeftButton, {}, empty);
  EXPECT_NE(std::exchange(events, "").find("dbl"), std::string::npos) << "beside the rows too";
  QTest::mouseDClick(view_->viewport(), Qt::LeftButton, {}, RowPoint(2));
  EXPECT_NE(events.find("dbl"), std::string::npos);
}

TEST_F(Lists, CopyTheSelectedRowsAsTheyStand) {
  for (const char* name : {"b", "a", "c"}) list_.Add(name).SubItems(1, name + "\t1"s);
  list_.SortOrder(platform::lvwDescending);
  list_.Sorted(true);
  view_->header()->moveSection(1, 0);
  for (const int position : {1, 3}) list_.Item(position).Selected(true);
  QTest::keyClick(view_, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
            "c\u24091\tc\t\t\t\t\t\na\u24091\ta\t\t\t\t\t\n");
  AddLines(5);
  logView_->setCurrentIndex(logView_->model()->index(3, 0));
  logView_->selectionModel()->select(logView_->model()->index(1, 0), QItemSelectionModel::Select);
  QTest::keyClick(logView_, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "line 1\nline 3\n");
}

TEST_F(Lists, ATooltipShowsATextAsItIsAndNotAsMarkup) {
  Fill({"<b>" + std::string(300, 'w')});
  QHelpEvent help(QEvent::ToolTip, RowPoint(0), view_->viewport()->mapToGlobal(RowPoint(0)));
  QApplication::sendEvent(view_->viewport(), &help);
  EXPECT_TRUE(QToolTip::text().contains("&lt;b&gt;ww"));
  list_.Item(1).Text(std::string(1'000'000, 'w'));
  QApplication::sendEvent(view_->viewport(), &help);
  EXPECT_LT(QToolTip::text().size(), 10'000) << "a long text's beginning";
  EXPECT_TRUE(QToolTip::text().contains(QChar(u'\u2026')));
  view_->selectAll();
  QTest::keyClick(view_, Qt::Key_C, Qt::ControlModifier);
  EXPECT_GT(QApplication::clipboard()->text().size(), 1'000'000) << "is copied whole";
}
