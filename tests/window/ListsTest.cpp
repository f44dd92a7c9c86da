#include <string>
#include <tuple>
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

#include "cookies/modSortListView.h"
#include "platform/linux/Widgets.h"
#include "tests/window/CookieLists.h"

namespace {

using Cells = std::vector<std::string>;

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
    for (int i = 0; i < count; ++i) log_.AddItem("line\n" + std::to_string(i));
    platform::DoEvents();
    QTest::qWait(1);  // The view lays its lines out a moment later.
  }

  Cells AllNames(bool selectedOnly = false) {
    Cells names;
    for (int i = 1; i <= list_.Count(); ++i) {
      if (!selectedOnly || list_.Item(i).Selected()) names.push_back(list_.Item(i).Text());
    }
    return names;
  }
  Cells SelectedNames() { return AllNames(true); }

  QPoint RowPoint(int row) { return view_->visualRect(view_->model()->index(row, 0)).center(); }
  static std::string Copied(QWidget* view) {
    QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
    return QApplication::clipboard()->text().toStdString();
  }

  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
  platform::ListBox& log_ = window_.ListLog;
  QTreeView* view_ = static_cast<QTreeView*>(platform::Widget(window_.ListVCookie));
  QListView* logView_ = static_cast<QListView*>(platform::Widget(window_.ListLog));
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
  ASSERT_EQ(view_->model()->rowCount(), 5);
  for (int row = 0; row < 5; ++row) {
    const QModelIndex index = view_->model()->index(row, 0);
    EXPECT_EQ(index.data(), QStringList({"B", "c", "f", "g", "h"})[row]);
    EXPECT_EQ(view_->selectionModel()->isSelected(index), row == 2 || row == 4);
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
  const QModelIndex current = logView_->model()->index(60, 0);
  logView_->setCurrentIndex(current);
  logView_->verticalScrollBar()->setValue(50);
  AddLines(10'000);
  EXPECT_EQ(logView_->verticalScrollBar()->value(), 50);
  EXPECT_EQ(logView_->selectionModel()->selectedIndexes(), QModelIndexList({current}));
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
  for (const Qt::MouseButton button : {Qt::RightButton, Qt::LeftButton}) {
    QTest::mouseClick(header->viewport(), button, {}, QPoint(20, 5));
    QTest::mouseDClick(header->viewport(), button, {}, QPoint(20, 5));
  }
  EXPECT_EQ(clicked, "21322") << "a quick click counts like any other";
  EXPECT_EQ(AllNames(), Cells({"b", "a"})) << "the order is the program's matter";
}

TEST_F(Lists, MouseEventsReachTheProgramAfterTheSelection) {
  Fill({"a", "b", "c", "d", "e"});
  const QPoint empty(20, view_->viewport()->height() - 3);
  std::string events;
  list_.MouseUp = [&](int button) {
    events += std::to_string(button);
    for (const std::string& name : SelectedNames()) events += name;
  };
  const std::tuple<Qt::MouseButton, QPoint, Qt::KeyboardModifiers, std::string> clicks[] = {
      {Qt::RightButton, empty, {}, "2"},
      {Qt::LeftButton, RowPoint(1), {}, "1b"},
      {Qt::LeftButton, RowPoint(4), Qt::ControlModifier, "1be"},
      {Qt::RightButton, RowPoint(1), {}, "2be"},
      {Qt::RightButton, empty, {}, "2be"},
      {Qt::RightButton, RowPoint(0), {}, "2a"},
      {Qt::LeftButton, RowPoint(2), Qt::ShiftModifier, "1abc"},
      {Qt::LeftButton, RowPoint(1), Qt::ShiftModifier, "1ab"}};
  for (const auto& [button, at, modifiers, expected] : clicks) {
    QTest::mouseClick(view_->viewport(), button, modifiers, at);
    EXPECT_EQ(std::exchange(events, ""), expected);
  }
  int doubleClicks = 0;
  list_.DblClick = [&] { ++doubleClicks; };
  for (const QPoint& at : {empty, RowPoint(2)}) {
    QTest::mouseDClick(view_->viewport(), Qt::LeftButton, {}, at);
  }
  EXPECT_EQ(doubleClicks, 2) << "beside the rows too";
}

TEST_F(Lists, CopyTheSelectedRowsAsTheyStand) {
  for (const char* name : {"b", "a", "c"}) list_.Add(name).SubItems(1, name + std::string("\t1"));
  list_.SortOrder(platform::lvwDescending);
  list_.Sorted(true);
  view_->header()->moveSection(1, 0);
  for (const int position : {1, 3}) list_.Item(position).Selected(true);
  EXPECT_EQ(Copied(view_), "c\u24091\tc\t\t\t\t\t\na\u24091\ta\t\t\t\t\t\n");
  AddLines(5);
  logView_->setCurrentIndex(logView_->model()->index(3, 0));
  logView_->selectionModel()->select(logView_->model()->index(1, 0), QItemSelectionModel::Select);
  EXPECT_EQ(Copied(logView_), "line\u240A1\nline\u240A3\n");
}

TEST_F(Lists, ATextThatIsCutOffShowsAsATooltipAsItIsAndNotAsMarkup) {
  const auto tip = [](QWidget* over, const QPoint& at) {
    QHelpEvent help(QEvent::ToolTip, at, over->mapToGlobal(at));
    QApplication::sendEvent(over, &help);
    return QToolTip::text().toStdString();
  };
  const auto tips = [&](const std::string& text) {
    Fill({text});
    log_.AddItem(text);
    window_.TextSearch.Text(text);
    QTest::qWait(1);
    const QPoint line =
        logView_->visualRect(logView_->model()->index(log_.ListCount() - 1, 0)).topLeft();
    return Cells({tip(view_->viewport(), RowPoint(list_.Count() - 1)),
                  tip(logView_->viewport(), line), tip(Widget(window_.TextSearch), {5, 5})});
  };
  EXPECT_EQ(tips("short"), Cells(3));
  for (const std::string& shown : tips("<b>" + std::string(1'000'000, 'w'))) {
    EXPECT_NE(shown.find("&lt;b&gt;ww"), std::string::npos);
    EXPECT_LT(shown.size(), 10'000U) << "a long text's beginning";
    EXPECT_NE(shown.find("\u2026"), std::string::npos);
  }
  view_->selectAll();
  EXPECT_GT(Copied(view_).size(), 1'000'000U) << "is copied whole";
}

TEST_F(Lists, AnEmptyListShowsThatItHasTheKeyboard) {
  for (QWidget* list : {static_cast<QWidget*>(view_), static_cast<QWidget*>(logView_)}) {
    window_.TextSearch.SetFocus();
    const QImage before = list->grab().toImage();
    list->setFocus();
    EXPECT_NE(list->grab().toImage(), before);
  }
}

TEST_F(Lists, ASortLeavesTagsTheKeyboardAndAPageOutOfSight) {
  const std::string tag("tag\0of", 6);
  list_.Add("a").Tag(tag);
  list_.SetFocus();
  SortListView(list_, FileSizeCell + 1, SortNumber, true);
  EXPECT_TRUE(view_->hasFocus());
  list_.Visible(false);
  RestoreSortOrder(list_);
  EXPECT_FALSE(list_.Visible());
  EXPECT_EQ(list_.Item(1).Tag(), tag);
  list_.Visible(true);
  list_.SetFocus();
  window_.Unload();
  EXPECT_EQ(Widget(window_)->focusWidget(), nullptr) << "the next opening begins afresh";
}
