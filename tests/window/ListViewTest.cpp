#include <ctime>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QTest>
#include <QToolTip>
#include <QTreeView>
#include <gtest/gtest.h>

#include "platform/ListView.h"
#include "platform/linux/Widgets.h"

using namespace std::string_literals;
using platform::ListView;

namespace {

using Texts = std::vector<std::string>;

const std::vector<platform::ColumnHeader> Columns = {
    {.Text = "Name"},
    {.Text = "Size", .Alignment = platform::ColumnAlignment::Right},
    {.Text = "Day", .Alignment = platform::ColumnAlignment::Center},
};

class ListWindow : public platform::Form {
 public:
  ListWindow()
      : Form({.Name = "ListWindow", .Caption = "", .ClientWidth = 6000, .ClientHeight = 3000}),
        List(*this, {.Name = "List", .At = {0, 0, 6000, 2400}, .AccessibleName = "Cookies"},
             Columns),
        Other(*this, {.Name = "Other", .At = {0, 2500, 1500, 300}}) {}

  ListView List;
  platform::TextBox Other;
};

class ListViewTest : public testing::Test {
 protected:
  ListViewTest() {
    window.Show();
    Widget(window)->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Widget(window)));
    platform::SendMessageA(list.hWnd(), platform::LVM_SETEXTENDEDLISTVIEWSTYLE, 0, 33);
  }

  void Fill(const Texts& names) {
    for (const std::string& name : names) list.Add(name);
    platform::DoEvents();
  }

  void FillNumbered(int count) {
    for (int i = 1; i <= count; ++i) list.Add(std::to_string(i));
    platform::DoEvents();
  }

  Texts Names() {
    Texts names;
    for (int i = 1; i <= list.Count(); ++i) names.push_back(list.Item(i).Text());
    return names;
  }

  Texts SelectedNames() {
    Texts names;
    for (int i = 1; i <= list.Count(); ++i) {
      if (list.Item(i).Selected()) names.push_back(list.Item(i).Text());
    }
    return names;
  }

  Texts ShownNames() {
    Texts names;
    for (int row = 0; row < view->model()->rowCount(); ++row) names.push_back(Shown(row, 0));
    return names;
  }

  /// What the toolkit itself holds selected.
  std::set<int> SelectedRows() {
    std::set<int> rows;
    for (const QModelIndex& index : view->selectionModel()->selectedRows())
      rows.insert(index.row());
    return rows;
  }

  std::string Shown(int row, int column) {
    return view->model()->index(row, column).data().toString().toStdString();
  }

  QPoint RowPoint(int row, int column = 0) {
    return view->visualRect(view->model()->index(row, column)).center();
  }

  QPoint Empty() { return {20, view->viewport()->height() - 3}; }

  void Press(Qt::MouseButton button, const QPoint& at, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(view->viewport(), button, modifiers, at);
  }

  void ClickHeader(int column) {
    QHeaderView* header = view->header();
    const QPoint at(header->sectionViewportPosition(column) + header->sectionSize(column) / 2, 5);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
  }

  void Sort(int column, int order) {
    list.SortKey(column);
    list.SortOrder(order);
    list.Sorted(true);
  }

  ListWindow window;
  ListView& list = window.List;
  QTreeView* view = static_cast<QTreeView*>(platform::Widget(window.List));
};

}  // namespace

TEST_F(ListViewTest, CellsKeepEveryByteAndShowAsOneLine) {
  const std::vector<std::pair<std::string, std::string>> texts = {
      {"plain", "plain"},
      {"", ""},
      {"a\0b"s, "a\u2400b"},
      {"two\r\nlines\tand a tab", "two\u240D\u240Alines\u2409and a tab"},
      {"bad \xFF\xC3 bytes", "bad \uFFFD\uFFFD bytes"},
      {"\x7F\u0085\u2028", "\u2421\uFFFD\u2424"},
      {"\u00E4\u0416\U0001F36A", "\u00E4\u0416\U0001F36A"},
      {std::string(100'000, 'x'), std::string(100'000, 'x')},
  };
  for (const auto& [bytes, shown] : texts) {
    auto row = list.Add(bytes);
    row.SubItems(2, bytes);
    row.Tag(bytes);
    row.SubItems(1, "between");
  }
  // Written anew, longer and shorter, with neighbours in place.
  auto first = list.Item(1);
  first.SubItems(1, "a good deal longer than before");
  first.SubItems(1, "s");
  platform::DoEvents();
  EXPECT_EQ(list.Item(1).SubItems(1), "s");
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const auto row = list.Item(static_cast<int>(i) + 1);
    EXPECT_EQ(row.Text(), texts[i].first) << i;
    EXPECT_EQ(row.SubItems(2), texts[i].first) << i;
    EXPECT_EQ(row.Tag(), texts[i].first) << i;
    EXPECT_EQ(Shown(static_cast<int>(i), 2), texts[i].second) << i;
  }
}

TEST_F(ListViewTest, WhatDoesNotExistReadsAsEmpty) {
  Fill({"one"});
  for (const int position : {-1, 0, 2}) {
    auto row = list.Item(position);
    row.Text("x");
    row.Selected(true);
    list.Remove(position);
    EXPECT_EQ(row.Text(), "");
    EXPECT_FALSE(row.Selected());
  }
  auto row = list.Item(1);
  for (const int column : {0, 3, 4, -1}) {
    row.SubItems(column, "x");
    EXPECT_EQ(row.SubItems(column), "") << column;
  }
  EXPECT_EQ(row.Tag(), "");
  EXPECT_EQ(Names(), Texts({"one"}));
  EXPECT_TRUE(SelectedRows().empty());
}

// Random work, looked at now before and now after events ran, against a plain vector.
TEST_F(ListViewTest, PositionsAndSelectionAreThoseOfAPlainList) {
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
      list.Add(wanted.back().Name);
    } else if (pick < 7) {
      wanted.erase(wanted.begin() + at);
      list.Remove(position);
    } else if (pick < 9) {
      Row& row = wanted[static_cast<std::size_t>(at)];
      row.Selected = !row.Selected;
      list.Item(position).Selected(row.Selected);
    } else if (pick < 10) {
      list.Item(position).Text(wanted[static_cast<std::size_t>(at)].Name += 'w');
    } else if (random() % 200 == 0) {
      wanted.clear();
      list.Clear();
    } else {
      platform::DoEvents();
    }
    Texts names;
    Texts selected;
    for (const Row& row : wanted) {
      names.push_back(row.Name);
      if (row.Selected) selected.push_back(row.Name);
    }
    ASSERT_EQ(Names(), names) << step;
    ASSERT_EQ(SelectedNames(), selected) << step;
    const auto item = list.SelectedItem();
    ASSERT_EQ(item.has_value(), !selected.empty()) << step;
  }
  platform::DoEvents();
  EXPECT_EQ(ShownNames(), Names());
  EXPECT_EQ(SelectedRows().size(), SelectedNames().size());
}

TEST_F(ListViewTest, SortsByFoldedTextAndKeepsEqualRowsInTheOrderOfAdding) {
  const Texts added = {"b",      "",  "&9", "B", "10",         "9",
                       "\u00C4", "a", "&1", "b", "0000000010", "00000000"};
  for (std::size_t i = 0; i < added.size(); ++i) list.Add(added[i]).SubItems(1, std::to_string(i));
  const auto order = [this] {
    std::string text;
    for (int i = 1; i <= list.Count(); ++i) text += list.Item(i).SubItems(1) + ' ';
    return text;
  };
  Sort(0, platform::lvwDescending);
  EXPECT_EQ(order(), "6 0 3 9 7 5 4 10 11 2 8 1 ");
  Sort(0, platform::lvwAscending);
  EXPECT_EQ(order(), "1 8 2 11 10 4 5 7 0 3 9 6 ");
  // Writing moves no row, and what is added stands at the end until the next sort.
  list.Item(1).Text("zz");
  list.Add("").SubItems(1, "12");
  platform::DoEvents();
  EXPECT_EQ(order(), "1 8 2 11 10 4 5 7 0 3 9 6 12 ");
  EXPECT_EQ(Shown(0, 0), "zz");
  Sort(2, platform::lvwDescending);  // nothing but empty cells
  EXPECT_EQ(order(), "0 1 2 3 4 5 6 7 8 9 10 11 12 ");
}

TEST_F(ListViewTest, SelectionAndCurrentRowFollowTheirRows) {
  Fill({"d", "b", "e", "a", "c"});
  Press(Qt::LeftButton, RowPoint(0));
  Press(Qt::LeftButton, RowPoint(3), Qt::ControlModifier);
  window.List.Visible(false);
  Sort(0, platform::lvwAscending);
  EXPECT_EQ(SelectedNames(), Texts({"a", "d"}));
  window.List.Visible(true);
  platform::DoEvents();
  EXPECT_EQ(SelectedRows(), std::set<int>({0, 3}));
  EXPECT_EQ(view->currentIndex().row(), 0);
  EXPECT_TRUE(view->hasFocus());
  list.Remove(2);
  list.Remove(1);
  EXPECT_EQ(list.SelectedItem()->Text(), "d");
  platform::DoEvents();
  EXPECT_EQ(SelectedRows(), std::set<int>({1}));
  EXPECT_EQ(view->currentIndex().row(), 0) << "the row that stands where the current one stood";
}

TEST_F(ListViewTest, ARefillStartsUnselectedAtTheTopWithTheColumnsAsTheyWere) {
  FillNumbered(500);
  view->header()->resizeSection(1, 60);
  view->header()->moveSection(2, 0);
  view->setColumnWidth(0, 900);
  view->scrollToBottom();
  view->horizontalScrollBar()->setValue(50);
  ASSERT_GT(view->verticalScrollBar()->value(), 0);
  list.Clear();
  FillNumbered(500);
  EXPECT_FALSE(list.SelectedItem());
  EXPECT_EQ(view->verticalScrollBar()->value(), 0);
  EXPECT_EQ(view->horizontalScrollBar()->value(), 0);
  EXPECT_EQ(view->header()->sectionSize(1), 60);
  EXPECT_EQ(view->header()->logicalIndex(0), 2);
}

TEST_F(ListViewTest, RemovingRowsKeepsThoseInSightInPlace) {
  FillNumbered(500);
  view->verticalScrollBar()->setValue(200);
  for (const int position : {400, 150, 20}) list.Remove(position);
  platform::DoEvents();
  EXPECT_EQ(view->verticalScrollBar()->value(), 198);
}

TEST_F(ListViewTest, HeaderClickNamesTheColumnAndLeavesTheArrowToTheProgram) {
  Fill({"b", "a"});
  Texts clicked;
  list.ColumnClick = [&](int index) { clicked.push_back(std::to_string(index)); };
  ClickHeader(1);
  EXPECT_FALSE(view->header()->isSortIndicatorShown());
  EXPECT_EQ(Names(), Texts({"b", "a"}));
  Sort(0, platform::lvwDescending);
  view->header()->moveSection(0, 2);
  ClickHeader(0);
  ClickHeader(2);
  EXPECT_EQ(clicked, Texts({"2", "1", "3"}));
  EXPECT_TRUE(view->header()->isSortIndicatorShown());
  EXPECT_EQ(view->header()->sortIndicatorSection(), 0);
  EXPECT_EQ(view->header()->sortIndicatorOrder(), Qt::DescendingOrder);
  EXPECT_EQ(Names(), Texts({"b", "a"}));
}

TEST_F(ListViewTest, MouseEventsReachTheProgramAfterTheSelection) {
  Fill({"a", "b", "c"});
  std::string events;
  const auto note = [&](const std::string& what) {
    const auto row = list.SelectedItem();
    events += what + (row ? row->Text() : "-") + ' ';
  };
  list.MouseUp = [&](int button) { note("up" + std::to_string(button)); };
  list.DblClick = [&] { note("dbl"); };

  const auto expect = [&](const std::string& wanted, const char* what) {
    EXPECT_EQ(std::exchange(events, ""), wanted) << what;
  };
  Press(Qt::RightButton, Empty());
  expect("up2- ", "right on empty space");
  Press(Qt::LeftButton, RowPoint(1));
  Press(Qt::LeftButton, RowPoint(2), Qt::ControlModifier);
  expect("up1b up1c ", "left");
  Press(Qt::RightButton, RowPoint(1));
  expect("up2b ", "right on a selected row");
  EXPECT_EQ(SelectedNames(), Texts({"b", "c"}));
  Press(Qt::RightButton, Empty());
  expect("up2b ", "right on empty space");
  EXPECT_EQ(SelectedNames(), Texts({"b", "c"}));
  Press(Qt::RightButton, RowPoint(0, 2));
  expect("up2a ", "right on another row");
  EXPECT_EQ(SelectedNames(), Texts({"a"}));
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, RowPoint(2));
  EXPECT_NE(events.find("dblc "), std::string::npos) << events;
  events.clear();
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, Empty());
  EXPECT_EQ(events.find("dbl"), std::string::npos) << events;
}

TEST_F(ListViewTest, ShiftDrawsUpARangeAndControlAdds) {
  Fill({"a", "b", "c", "d", "e"});
  const auto press = [this](int row, Qt::KeyboardModifiers modifiers) {
    Press(Qt::LeftButton, RowPoint(row), modifiers);
  };
  press(4, {});
  press(0, Qt::ControlModifier);
  press(2, Qt::ShiftModifier);
  EXPECT_EQ(SelectedNames(), Texts({"a", "b", "c"}));
  press(1, Qt::ShiftModifier);
  EXPECT_EQ(SelectedNames(), Texts({"a", "b"}));
  Sort(0, platform::lvwDescending);
  press(0, Qt::ControlModifier);
  press(1, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(SelectedNames(), Texts({"e", "d", "b", "a"}));
  QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(SelectedNames().back(), "c");
  press(2, {});
  EXPECT_EQ(SelectedNames(), Texts({"c"}));
}

TEST_F(ListViewTest, KeysReachTheProgram) {
  Fill({"apple", "banana", "blueberry"});
  std::string events;
  list.KeyPress = [&](int code) { events += std::to_string(code) + ' '; };
  list.MouseUp = [&](int button) { events += "up" + std::to_string(button) + ' '; };
  view->setFocus();
  const auto expect = [&](const std::string& wanted, const char* what) {
    EXPECT_EQ(std::exchange(events, ""), wanted) << what;
  };
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) QTest::keyClick(view, key);
  expect("13 13 ", "both Enter keys");
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageUp, Qt::Key_Delete, Qt::Key_F5}) {
    QTest::keyClick(view, key);
  }
  expect("", "keys without a character");
  QTest::keyClick(view, Qt::Key_F10, Qt::ShiftModifier);
  QContextMenuEvent menuKey(QContextMenuEvent::Keyboard, QPoint(1, 1), QPoint(1, 1));
  QApplication::sendEvent(view, &menuKey);
  QContextMenuEvent mouse(QContextMenuEvent::Mouse, QPoint(1, 1), QPoint(1, 1));
  QApplication::sendEvent(view->viewport(), &mouse);
  expect("up2 up2 ", "menu keys");

  QTest::keyClick(view, Qt::Key_Home);
  QTest::keyClicks(view, "BL");
  expect("66 76 ", "letters");
  EXPECT_EQ(SelectedNames(), Texts({"blueberry"}));
  QTest::qWait(QApplication::keyboardInputInterval() + 50);
  QTest::keyClick(view, 'b');
  EXPECT_EQ(SelectedNames(), Texts({"banana"}));
  QTest::keyClick(view, 'b');
  EXPECT_EQ(SelectedNames(), Texts({"blueberry"})) << "the same letter goes on";
  QTest::keyClick(view, Qt::Key_Tab);
  EXPECT_TRUE(platform::Widget(window.Other)->hasFocus());
}

TEST_F(ListViewTest, CopiesTheSelectedRowsAsTheyStand) {
  for (const char* name : {"b", "a", "c"}) {
    auto row = list.Add(name);
    row.SubItems(1, name + "\t1"s);
    row.SubItems(2, "day");
  }
  Sort(0, platform::lvwDescending);
  view->header()->moveSection(2, 0);
  list.Item(1).Selected(true);
  list.Item(3).Selected(true);
  QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
            "day\tc\tc\u24091\nday\ta\ta\u24091\n");
  QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(SelectedNames().size(), 3u);
}

TEST_F(ListViewTest, ExtendedStyleIsReadAndWrittenThroughMessages) {
  const auto send = [this](std::uint32_t message, std::uint32_t mask, std::uint32_t style) {
    return platform::SendMessageA(list.hWnd(), message, mask, style);
  };
  const std::uint32_t Set = platform::LVM_SETEXTENDEDLISTVIEWSTYLE;
  const std::uint32_t Get = platform::LVM_GETEXTENDEDLISTVIEWSTYLE;
  EXPECT_EQ(send(Set, 0, 0), 33u);
  EXPECT_EQ(send(Set, 1, 33), 0u);
  EXPECT_EQ(send(Get, 0, 0), 1u);
  EXPECT_EQ(send(Get + 1, 0, 0), 0u);
  EXPECT_EQ(platform::SendMessageA(window.hWnd(), Get, 0, 0), 0u);

  // Bit 32 colours the whole of a selected row, its absence the first column alone.
  Fill({"a", "b"});
  list.Item(2).Selected(true);
  const auto colours = [&](int column) {
    platform::DoEvents();
    const QRect cell = view->visualRect(view->model()->index(1, column));
    const QImage picture = view->viewport()->grab().toImage();
    return picture.pixelColor(cell.right() - 6, cell.center().y());
  };
  send(Set, 0, 0);
  EXPECT_NE(colours(0), colours(1));
  send(Set, 0, 32);
  EXPECT_EQ(colours(0), colours(1));
  // Bit 1 draws lines, also where there is no row.
  const auto below = [&] {
    platform::DoEvents();
    return view->viewport()->grab(QRect(0, 60, 200, 60)).toImage();
  };
  const QImage plain = below();
  send(Set, 0, 33);
  EXPECT_NE(below(), plain);
}

TEST_F(ListViewTest, ACellTooNarrowShowsItsTextAsTooltip) {
  Fill({"<b>" + std::string(300, 'w'), "short"});
  const auto tip = [&](int row) {
    QHelpEvent help(QEvent::ToolTip, RowPoint(row), view->viewport()->mapToGlobal(RowPoint(row)));
    QApplication::sendEvent(view->viewport(), &help);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
  };
  EXPECT_TRUE(tip(0).contains("&lt;b&gt;ww")) << "shown as it is, not as markup";
  EXPECT_GE(tip(0).count('w'), 300);
  tip(1);
  EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }));
}

TEST_F(ListViewTest, ScreenReadersSeeNameHeadersCellsAndSelection) {
  for (const char* name : {"a", "b"}) list.Add(name).SubItems(1, name + "1"s);
  platform::DoEvents();
  list.Item(2).Selected(true);
  platform::DoEvents();
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(view);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Cookies");
  QAccessibleTableInterface* table = accessible->tableInterface();
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->rowCount(), 2);
  EXPECT_EQ(table->columnDescription(1), "Size");
  EXPECT_EQ(table->cellAt(1, 1)->text(QAccessible::Name), "b1");
  EXPECT_TRUE(table->cellAt(1, 0)->state().selected);
  EXPECT_FALSE(table->cellAt(0, 0)->state().selected);
}

// The limit is processor time, far below what any step that is quadratic in the rows would take.
TEST_F(ListViewTest, AQuarterOfAMillionRowsStayWorkable) {
  constexpr int Rows = 250'000;
  const std::clock_t start = std::clock();
  for (int i = 0; i < Rows; ++i) {
    auto row = list.Add(std::to_string(i * 7919 % Rows));
    row.SubItems(1, std::to_string(i % 100));
  }
  platform::DoEvents();
  for (int i = 1; i <= Rows; i += 2) list.Item(i).Selected(true);
  platform::DoEvents();
  Sort(0, platform::lvwAscending);
  platform::DoEvents();
  const bool was = list.Item(4).Selected();
  for (const bool now : {!was, was, !was}) {
    Press(Qt::LeftButton, RowPoint(3), Qt::ControlModifier);
    EXPECT_EQ(list.Item(4).Selected(), now);
  }
  EXPECT_EQ(SelectedNames().size(), static_cast<std::size_t>(Rows / 2 + (was ? -1 : 1)));
  for (int i = Rows; i >= 1; --i) {
    if (list.Item(i).Selected() && i % 4 != 0) list.Remove(i);
  }
  platform::DoEvents();
  EXPECT_EQ(view->model()->rowCount(), list.Count());
  QTest::keyClick(view, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(static_cast<int>(SelectedNames().size()), list.Count());
  EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 20);
}
