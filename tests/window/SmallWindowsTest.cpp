#include <string>
#include <vector>

#include <QApplication>
#include <QPlainTextEdit>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include "cookies/CookieDetail.h"
#include "cookies/CookieList.h"
#include "core/PublicDim.h"
#include "tests/support/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

std::vector<QWidget*> Windows(const char* name) {
  std::vector<QWidget*> found;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->objectName() == name) found.push_back(window);
  }
  return found;
}

/// Closes the detail windows, and returns their titles and texts.
std::string ClosedDetails() {
  std::string texts;
  for (QWidget* view : Windows("FormView")) {
    const QString text = view->findChild<QPlainTextEdit*>()->toPlainText();
    texts += (view->windowHandle()->title() + '\n' + text).toStdString();
    view->close();
  }
  QTest::qWait(0);
  return texts;
}

TEST(SmallWindows, ADetailShowsTheFileAsItIsNowElseTheOneLastRead) {
  const CookieFolder folder;
  CookieLists window;
  platform::ListView& list = window.ListVCookie;
  const auto detail = [&](int position) {
    for (int row = 1; row <= list.Count(); ++row) list.Item(row).Selected(row == position);
    OpenCookieDetail(list, window);
    return ClosedDetails();
  };
  const std::string name = "a[*]b[*][*].txt";
  PublicDim.KnownRows = {{name, "136", "then"}, {"gone.txt", "136", "then"}};
  for (const CookieFileRow& row : PublicDim.KnownRows) {
    folder.Write(row.FileName, Record("old", "", "s"));
  }
  LoadCookieList(list);
  std::filesystem::remove(folder.Path("gone.txt"));
  EXPECT_EQ(detail(2), "Detail\n");
  folder.Write(name, Record("uid", "a%3Db", "shop/", "-1"));
  const std::string now =
      "Detail - " + name + "\nCookie name: uid\nValue: a%3Db\nServer: shop\nExpire: -\n\n";
  EXPECT_EQ(detail(1), now);
  EXPECT_EQ(detail(2), now);
  folder.Write("GONE.txt", Record("back", "", "s", "-1"));
  EXPECT_EQ(detail(2).substr(0, 35), "Detail - GONE.txt\nCookie name: back");
}

}  // namespace
