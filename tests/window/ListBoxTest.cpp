#include <string>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QListView>
#include <QScrollBar>
#include <QTest>
#include <gtest/gtest.h>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

using namespace std::string_literals;

namespace {

class LogWindow : public platform::Form {
 public:
  LogWindow()
      : Form({.Name = "LogWindow", .Caption = "", .ClientWidth = 4500, .ClientHeight = 3000}),
        ListLog(*this, {.Name = "ListLog", .At = {0, 0, 4500, 3000}, .AccessibleName = "Log"}) {}

  platform::ListBox ListLog;
};

class ListBoxTest : public testing::Test {
 protected:
  ListBoxTest() {
    window.Show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(Widget(window)));
  }

  void AddLines(int count) {
    for (int i = 0; i < count; ++i) list.AddItem("line " + std::to_string(i));
    platform::DoEvents();
    QTest::qWait(1);  // the view lays its lines out a moment later
  }

  LogWindow window;
  platform::ListBox& list = window.ListLog;
  QListView* view = static_cast<QListView*>(platform::Widget(window.ListLog));
};

}  // namespace

TEST_F(ListBoxTest, LinesAreThereAtOnceAndKeepTheirBytes) {
  const std::string odd = "a\0b\xFF\r\nc"s;
  list.AddItem("");
  list.AddItem(odd);
  EXPECT_EQ(list.ListCount(), 2);
  EXPECT_EQ(list.List(0), "");
  EXPECT_EQ(list.List(1), odd);
  for (const int index : {-1, 2}) EXPECT_EQ(list.List(index), "");
  platform::DoEvents();
  EXPECT_EQ(view->model()->index(1, 0).data().toString(), u"a\u2400b\uFFFD\u240D\u240Ac");
}

TEST_F(ListBoxTest, NewLinesMoveNeitherSelectionNorScrollPosition) {
  AddLines(200);
  EXPECT_EQ(view->verticalScrollBar()->value(), 0);
  view->setCurrentIndex(view->model()->index(60, 0));
  view->verticalScrollBar()->setValue(50);
  AddLines(10'000);
  EXPECT_EQ(view->model()->rowCount(), 10'200);
  EXPECT_EQ(view->verticalScrollBar()->value(), 50);
  EXPECT_EQ(view->selectionModel()->selectedIndexes(),
            QModelIndexList({view->model()->index(60, 0)}));
  view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
  EXPECT_TRUE(view->indexAt(view->viewport()->rect().center()).row() > 10'180);
}

TEST_F(ListBoxTest, ScrollsSidewaysOnlyAsFarAsTheWidestLine) {
  AddLines(3);
  EXPECT_EQ(view->horizontalScrollBar()->maximum(), 0);
  list.AddItem(std::string(200, 'w'));
  AddLines(3);
  const int width = view->fontMetrics().horizontalAdvance(QString(200, 'w'));
  EXPECT_NEAR(view->horizontalScrollBar()->maximum(), width - view->viewport()->width(), 20);
  QFont big = view->font();
  big.setPixelSize(40);
  view->setFont(big);
  QTest::qWait(1);
  EXPECT_GT(view->horizontalScrollBar()->maximum(), width);
}

TEST_F(ListBoxTest, CopiesTheSelectedLinesInTheirOrder) {
  AddLines(5);
  view->setCurrentIndex(view->model()->index(3, 0));
  view->selectionModel()->select(view->model()->index(1, 0), QItemSelectionModel::Select);
  QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "line 1\nline 3\n");
}

TEST_F(ListBoxTest, ScreenReadersSeeNameAndLines) {
  AddLines(3);
  QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(view);
  ASSERT_NE(accessible, nullptr);
  EXPECT_EQ(accessible->text(QAccessible::Name), "Log");
  ASSERT_EQ(accessible->childCount(), 3);
  EXPECT_EQ(accessible->child(2)->text(QAccessible::Name), "line 2");
}
