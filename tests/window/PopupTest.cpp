#include <cstddef>
#include <string>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <gtest/gtest.h>

#include "core/PublicDim.h"
#include "platform/Forms.h"
#include "report/FormMsg.h"
#include "tests/CookieFolder.h"

namespace {

std::vector<QWidget*> Windows(const char* name) {
  std::vector<QWidget*> found;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == name) found.push_back(window);
  }
  return found;
}

/// The popups that are on the screen.
std::vector<QWidget*> Shown() {
  std::vector<QWidget*> shown = Windows("FormMsg");
  std::erase_if(shown, [](const QWidget* window) { return !window->isVisible(); });
  return shown;
}

void RunFor(int milliseconds) {
  QElapsedTimer clock;
  clock.start();
  do {
    platform::DoEvents();
  } while (clock.elapsed() < milliseconds);
}

/// As an event, which is how a click comes: what it closes is freed when the event is done.
void Press(const QWidget& popup, const char* button) {
  QMetaObject::invokeMethod(popup.findChild<QPushButton*>(button), &QPushButton::click,
                            Qt::QueuedConnection);
  platform::DoEvents();
  platform::DoEvents();
}

class PopupTest : public testing::Test {
 protected:
  PopupTest() { PublicDim.MsgEnabled = true; }
  ~PopupTest() override {
    for (const char* name : {"FormMsg", "FormView"}) {
      for (QWidget* window : Windows(name)) window->close();
    }
    RunFor(0);
  }

  static void Open(int count, const std::string& text = "Cookie file added\nfile.txt") {
    PublicDim.MsgText = text;
    for (int i = 0; i < count; ++i) ShowChangePopup();
  }

  CookieFolder folder_;
};

TEST_F(PopupTest, KeepsItsTextAndShowsTheFileOfTheLatestReport) {
  folder_.Write("new.txt", Record("latest", "v", "s/"));
  PublicDim.MsgFileName = "old.txt";
  PublicDim.MsgCanView = true;
  Open(1, "Cookie file added\nold.txt");
  PublicDim.MsgCanView = false;
  Open(1, "Cookie file removed\ngone.txt");
  PublicDim.MsgFileName = "new.txt";
  RunFor(0);
  QWidget* viewed = nullptr;
  for (QWidget* popup : Shown()) {
    const std::string text = popup->findChild<QLabel*>("Label1")->text().toStdString();
    const bool removed = text == "Cookie file removed\ngone.txt";
    EXPECT_EQ(popup->findChild<QPushButton*>("CmdView")->isEnabled(), !removed);
    EXPECT_TRUE(removed || text == "Cookie file added\nold.txt") << text;
    if (!removed) viewed = popup;
  }
  ASSERT_NE(viewed, nullptr);
  Press(*viewed, "CmdView");
  EXPECT_EQ(Windows("FormMsg").size(), 1U);
  ASSERT_EQ(Windows("FormView").size(), 1U);
  ASSERT_FALSE(PublicDim.DetailRows.empty());
  EXPECT_EQ(PublicDim.DetailRows[0].CookieName, "latest");
}

TEST_F(PopupTest, ShowsOfManyWhatCanBeSeen) {
  Open(200);
  RunFor(0);
  EXPECT_EQ(Windows("FormMsg").size(), 200U);
  EXPECT_LT(Shown().size(), 40U);
  // However many the user closes, the next one shows.
  for (std::size_t left = 200; left > 0; --left) {
    ASSERT_FALSE(Shown().empty()) << left;
    Press(*Shown()[0], "CmdClose");
    ASSERT_EQ(Windows("FormMsg").size(), left - 1);
  }
}

TEST_F(PopupTest, ClosesAtItsOwnSixthTickSeenOrNot) {
  Open(50);
  RunFor(2500);
  Open(1);
  RunFor(3000);
  EXPECT_EQ(Windows("FormMsg").size(), 51U) << "no popup closes at the fifth tick";
  RunFor(1500);
  EXPECT_EQ(Windows("FormMsg").size(), 1U);
  RunFor(2000);
  EXPECT_EQ(Windows("FormMsg").size(), 0U);
}

}  // namespace
