#include <string>
#include <vector>

#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QListView>
#include <QMouseEvent>
#include <QPalette>
#include <QPlainTextEdit>
#include <QTest>
#include <QToolTip>
#include <QTreeView>
#include <gtest/gtest.h>

#include "platform/linux/Widgets.h"
#include "tests/window/CookieLists.h"
#include "tests/window/Hands.h"

namespace {

using Cells = std::vector<std::string>;

class SampleForm : public platform::Form {
 public:
  SampleForm() : Form({.Name = "", .Caption = "", .ClientWidth = 6000, .ClientHeight = 4000}) {}
  void Form_MouseMove(float) override { ++Moves; }

  int Moves = 0;
  platform::PictureBox Panel{*this, {.Name = "Panel", .At = {0, 0, 1500, 1500}}};
  platform::CommandButton Button{*this, {.Name = "Button", .At = {0, 1500}}};
  platform::Label Wrapped{*this, {.Name = "Wrapped", .At = {1500, 0, 1500, 1500}}};
  platform::TextBox Lines{
      *this, {.Name = "Lines", .At = {3000, 0, 3000, 3000}}, platform::TextBox::Kind::MultiLine};
};

TEST(Forms, OnlyAMoveOverItsOwnSurfaceIsTheWindows) {
  SampleForm form;
  const auto drag = [](QWidget* over) {
    QMouseEvent move(QEvent::MouseMove, {9, 9}, over->mapToGlobal(QPointF(9, 9)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(over, &move);
  };
  drag(Widget(form.Panel));
  drag(Widget(form.Wrapped));
  EXPECT_EQ(form.Moves, 0);
  drag(Widget(form));
  EXPECT_EQ(form.Moves, 1);
}

TEST(Forms, AWordTooLongForItsLabelGoesOnInTheNextLine) {
  SampleForm form;
  form.Wrapped.WordWrap();
  form.Wrapped.Caption(std::string(30, 'W'));
  const QImage image = Widget(form.Wrapped)->grab().toImage();
  const int second = Widget(form.Wrapped)->fontMetrics().height() * 3 / 2;
  int ink = 0;
  for (int x = 0; x < image.width(); ++x) ink += image.pixel(x, second) != image.pixel(0, 99);
  EXPECT_GT(ink, 0);
}

TEST(Forms, ATextOfLinesIsKeptAndCopiedInItsOwnLinesOnly) {
  SampleForm form;
  const std::string longLine(100'000, 'v');
  form.Lines.Text("a\u2028b\uFDD0c\td\r\n" + longLine + "\r\n\r\n");
  const std::string kept = "a\u2424b\uFFFDc\td\n" + longLine + "\n\n";
  EXPECT_EQ(form.Lines.Text(), kept);
  auto* edit = qobject_cast<QPlainTextEdit*>(Widget(form.Lines));
  EXPECT_GT(edit->blockCount(), 10) << "no block takes long to lay out";
  edit->selectAll();
  edit->copy();
  EXPECT_EQ(QApplication::clipboard()->text().toStdString(), kept);
  QTest::mousePress(edit->viewport(), Qt::LeftButton, {}, {9, 9});
  EXPECT_FALSE(edit->textCursor().hasSelection()) << "a drag of it runs a loop of its own";
}

TEST(Forms, AColourOfTheThemeFollowsTheTheme) {
  SampleForm form;
  platform::TextBox line(form, {.Name = "Line", .At = {}});
  line.BackColor(platform::vbScrollBars);
  const QPalette before = QApplication::palette();
  QApplication::setPalette(QPalette(QColor(40, 50, 60)));
  platform::DoEvents();
  EXPECT_EQ(line.BackColor(), 0x28323Cu);
  EXPECT_EQ(Widget(line)->palette().text().color(), QApplication::palette().text().color());
  QApplication::setPalette(before);
}

class ListWidgets : public testing::Test {
 protected:
  ListWidgets() {
    window_.Show();
    Widget(window_)->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(Widget(window_)));
  }

  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
  platform::ListBox& log_ = window_.ListLog;
  QTreeView* view_ = static_cast<QTreeView*>(Widget(list_));
  QListView* logView_ = static_cast<QListView*>(Widget(log_));
};

TEST_F(ListWidgets, ATextThatIsCutOffShowsAsATooltipAsItIsAndNotAsMarkup) {
  const auto tip = [](QWidget* over, const QPoint& at) {
    QHelpEvent help(QEvent::ToolTip, at, over->mapToGlobal(at));
    QApplication::sendEvent(over, &help);
    return QToolTip::text().toStdString();
  };
  const auto tips = [&](const std::string& text) {
    list_.Add(text);
    log_.AddItem(text);
    window_.TextSearch.Text(text);
    QTest::qWait(1);
    const QPoint line =
        logView_->visualRect(logView_->model()->index(log_.ListCount() - 1, 0)).topLeft();
    return Cells({tip(view_->viewport(),
                      view_->visualRect(view_->model()->index(list_.Count() - 1, 0)).center()),
                  tip(logView_->viewport(), line), tip(Widget(window_.TextSearch), {5, 5})});
  };
  EXPECT_EQ(tips("short"), Cells(3));
  for (const std::string& shown : tips("<b>" + std::string(1'000'000, 'w'))) {
    EXPECT_NE(shown.find("&lt;b&gt;ww"), std::string::npos);
    EXPECT_LT(shown.size(), 10'000U) << "a long text's beginning";
    EXPECT_NE(shown.find("\u2026"), std::string::npos);
  }
  view_->selectAll();
  EXPECT_GT(hands::Copied(list_).size(), 1'000'000U) << "is copied whole";
}

TEST_F(ListWidgets, AnEmptyListShowsThatItHasTheKeyboard) {
  for (QWidget* list : {static_cast<QWidget*>(view_), static_cast<QWidget*>(logView_)}) {
    window_.TextSearch.SetFocus();
    const QImage before = list->grab().toImage();
    list->setFocus();
    EXPECT_NE(list->grab().toImage(), before);
  }
}

}  // namespace
