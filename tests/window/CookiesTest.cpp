#include <string>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <QWindow>
#include <gtest/gtest.h>

#include "cookies/CookieDetail.h"
#include "cookies/CookieList.h"
#include "cookies/DeleteCookieFiles.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

class Cookies : public testing::Test {
 protected:
  /// Opens the detail of a row, and returns its title and the texts of its boxes.
  Cells Detail(int position) {
    for (int row = 1; row <= list_.Count(); ++row) list_.Item(row).Selected(row == position);
    ShowCookieDetail(list_, window_);
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

  void DeleteNamed(const std::string& name) {
    CookieRow row;
    row.CookieFile = name;
    AddCookieRow(list_, row);
    list_.Item(1).Selected(true);
    const Answers yes(QMessageBox::Yes);
    DeleteSelectedCookieFiles(list_);
    EXPECT_EQ(yes.Asked.size(), 1u);
    EXPECT_EQ(list_.Count(), 0);
  }

  const CookieFolder folder_;
  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
};

TEST_F(Cookies, ADetailShowsTheFileAsItIsNowElseTheOneLastRead) {
  EXPECT_EQ(Detail(0), Cells()) << "a list without rows has no detail";
  const std::string name = "a[*]b[*][*].txt";
  folder_.Add(name, Record("old", "", "s"));
  folder_.Add("gone.txt", Record("n", "v", "s"));
  LoadCookieList(list_);
  std::filesystem::remove(folder_.Path("gone.txt"));
  EXPECT_EQ(Detail(2), Cells({"Detail", "", "", "", ""}));
  folder_.Write(name, Record("uid", "a%3Db", "shop/") + Record("lang", "en", "shop", "-1"));
  const Cells now = {"Detail - " + name, folder_.Path(name), "2004-12-20 10:15:30", "136 bytes",
                     "Cookie name: uid\nValue: a%3Db\nServer: shop\nExpire: 2009-04-22\n\n"
                     "Cookie name: lang\nValue: en\nServer: shop\nExpire: -\n\n"};
  EXPECT_EQ(Detail(1), now);
  EXPECT_EQ(Detail(2), now);
}

TEST_F(Cookies, ADeletionNeverTakesANameForMoreThanOneFile) {
  for (const char* name : {"plain.txt", "*.txt", "sub/inner.txt"}) folder_.Write(name);
  Names files = folder_.Entries();
  for (const std::string name :
       {"*.*", "", ".", "..", "sub/inner.txt", "../", "*", "sub", "*.TXT", "pl?in.txt"}) {
    DeleteNamed(name);
  }
  DeleteNamed(std::string("plain.txt\0x", 11));
  DeleteNamed("*.txt");
  files.erase("*.txt");
  const WorkingFolder working(folder_.Path(""));
  for (const char* unresolved : {"", "\\"}) {
    PublicDim.CookieDir = unresolved;
    DeleteNamed("plain.txt");
  }
  EXPECT_EQ(folder_.Entries(), files);
  EXPECT_TRUE(folder_.Has("sub/inner.txt"));
}

TEST_F(Cookies, ASortByDateKeepsTheTagsAndARestoredOneThePageOutOfSight) {
  for (const char* date : {"2004-03-05", "-", "1999-01-01"}) {
    list_.Add(date).Tag(std::string("tag\0of ", 7) + date);
  }
  SortListView(list_, 1, SortDate, true);
  EXPECT_EQ(ColumnOf(list_, 1), Cells({"1999-01-01", "2004-03-05", "-"}))
      << "what is no date stands with the date before it";
  SortListView(list_, 1, SortDate, false);
  EXPECT_EQ(ColumnOf(list_, 1), Cells({"2004-03-05", "-", "1999-01-01"}));
  list_.Visible(false);
  RestoreSortOrder(list_);
  EXPECT_FALSE(list_.Visible());
  for (int row = 1; row <= 3; ++row) {
    EXPECT_EQ(list_.Item(row).Tag(), std::string("tag\0of ", 7) + list_.Item(row).Text());
  }
}

}  // namespace
