#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include "cookies/CookieDetail.h"
#include "cookies/CookieList.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

class CookieDetail : public testing::Test {
 protected:
  void TearDown() override {
    for (QWidget* view : Views()) view->close();
    QTest::qWait(0);
  }

  static std::vector<QWidget*> Views() {
    std::vector<QWidget*> views;
    for (QWidget* window : QApplication::topLevelWidgets()) {
      if (window->objectName() == "FormView" && window->isVisible()) views.push_back(window);
    }
    return views;
  }

  void Open(int position) {
    if (position > 0) list_.Item(position).Selected(true);
    ShowCookieDetail(list_, window_);
  }

  /// Caption, path, time and size of a detail window.
  static std::vector<std::string> Heading(const QWidget& view) {
    std::vector<std::string> texts = {view.windowTitle().toStdString()};
    for (const char* name : {"Cookie file", "Modified", "Size"}) {
      for (const QLineEdit* box : view.findChildren<QLineEdit*>()) {
        if (box->accessibleName() == name) texts.push_back(box->text().toStdString());
      }
    }
    return texts;
  }

  CookieFolder folder_;
  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
};

TEST_F(CookieDetail, ShowsTheWholeFileAsItIsNowWithTheTextsOfTheRow) {
  Open(0);
  EXPECT_TRUE(Views().empty()) << "a list without rows has no detail";

  folder_.Add("a.txt", Record("old", "", "s"));
  LoadCookieList(list_);
  folder_.Write("a.txt", Record("uid", "a%3Db", "shop/") + Record("lang", "en", "shop", "-1"));
  Open(1);
  ASSERT_EQ(Views().size(), 1u);
  const QWidget& view = *Views().front();
  EXPECT_EQ(Heading(view), std::vector<std::string>({"Detail - a.txt", folder_.Path("a.txt"),
                                                     "2004-12-20 10:15:30", "136 bytes"}));
  const auto* details = view.findChild<QPlainTextEdit*>();
  ASSERT_NE(details, nullptr);
  EXPECT_EQ(details->toPlainText().toStdString(),
            "Cookie name: uid\nValue: a%3Db\nServer: shop\nExpire: 2009-04-22\n\n"
            "Cookie name: lang\nValue: en\nServer: shop\nExpire: -\n\n");
  EXPECT_TRUE(details->isReadOnly());
}

TEST_F(CookieDetail, ShowsTheFileLastReadWhenTheRowsFileHasGone) {
  folder_.Add("a.txt", Record("n", "v", "s"));
  folder_.Add("gone.txt", Record("n", "v", "s"));
  LoadCookieList(list_);
  std::filesystem::remove(folder_.Path("gone.txt"));
  Open(2);
  ASSERT_EQ(Views().size(), 1u);
  EXPECT_EQ(Heading(*Views().front()), std::vector<std::string>({"Detail", "", "", ""}));

  PublicDim.DetailRows = {{"s", "n", "v", "-", "last.txt", "7", "m"}};
  Open(2);
  ASSERT_EQ(Views().size(), 2u);
  std::vector<std::string> captions;
  for (const QWidget* view : Views()) captions.push_back(view->windowTitle().toStdString());
  std::sort(captions.begin(), captions.end());
  EXPECT_EQ(captions, std::vector<std::string>({"Detail", "Detail - last.txt"}));
}

TEST_F(CookieDetail, TheTitleIsTheFilesNameWhateverItsLetters) {
  folder_.Add("a[*]b[*][*].txt", Record("n", "v", "s"));
  LoadCookieList(list_);
  Open(1);
  ASSERT_EQ(Views().size(), 1u);
  EXPECT_EQ(Views().front()->windowHandle()->title(), "Detail - a[*]b[*][*].txt");
}

TEST_F(CookieDetail, EachWindowClosesAlone) {
  folder_.Add("a.txt", Record("n", "v", "s"));
  LoadCookieList(list_);
  for (int i = 0; i < 3; ++i) Open(1);
  ASSERT_EQ(Views().size(), 3u);
  auto* close = Views().front()->findChild<QPushButton*>();
  ASSERT_NE(close, nullptr);
  close->click();
  EXPECT_EQ(Views().size(), 2u);
  QWidget* next = Views().front();
  next->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(next));
  QTest::keyClick(next, Qt::Key_Escape);
  EXPECT_EQ(Views().size(), 1u);
}

}  // namespace
