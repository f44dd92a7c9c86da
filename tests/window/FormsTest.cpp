#include <string>

#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QPalette>
#include <QPlainTextEdit>
#include <QTest>
#include <gtest/gtest.h>

#include "platform/linux/Widgets.h"

namespace {

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

}  // namespace
