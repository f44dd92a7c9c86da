#include <filesystem>
#include <string>
#include <vector>

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include "cookies/CookieDetail.h"
#include "cookies/CookieList.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

/// Opens the detail of a row, and returns its title and the texts of its boxes.
Cells Detail(CookieLists& owner, int position) {
  if (position > 0) owner.ListVCookie.Item(position).Selected(true);
  ShowCookieDetail(owner.ListVCookie, owner);
  for (QWidget* view : QApplication::topLevelWidgets()) {
    if (view->objectName() != "FormView" || !view->isVisible()) continue;
    Cells texts = {view->windowHandle()->title().toStdString()};
    for (const char* name : {"Cookie file", "Modified", "Size"}) {
      for (const QLineEdit* box : view->findChildren<QLineEdit*>()) {
        if (box->accessibleName() == name) texts.push_back(box->text().toStdString());
      }
    }
    texts.push_back(view->findChild<QPlainTextEdit*>()->toPlainText().toStdString());
    view->close();
    QTest::qWait(0);
    return texts;
  }
  return {};
}

TEST(CookieDetail, ShowsTheFileAsItIsNowElseTheOneLastRead) {
  const CookieFolder folder;
  CookieLists window;
  EXPECT_EQ(Detail(window, 0), Cells()) << "a list without rows has no detail";
  const std::string name = "a[*]b[*][*].txt";
  folder.Add(name, Record("old", "", "s"));
  folder.Add("gone.txt", Record("n", "v", "s"));
  LoadCookieList(window.ListVCookie);
  std::filesystem::remove(folder.Path("gone.txt"));
  EXPECT_EQ(Detail(window, 2), Cells({"Detail", "", "", "", ""}));
  folder.Write(name, Record("uid", "a%3Db", "shop/") + Record("lang", "en", "shop", "-1"));
  const Cells now = {"Detail - " + name, folder.Path(name), "2004-12-20 10:15:30", "136 bytes",
                     "Cookie name: uid\nValue: a%3Db\nServer: shop\nExpire: 2009-04-22\n\n"
                     "Cookie name: lang\nValue: en\nServer: shop\nExpire: -\n\n"};
  window.ListVCookie.Item(2).Selected(false);
  EXPECT_EQ(Detail(window, 1), now);
  window.ListVCookie.Item(1).Selected(false);
  EXPECT_EQ(Detail(window, 2), now);
}

}  // namespace
