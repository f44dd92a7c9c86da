#include <filesystem>
#include <initializer_list>
#include <string>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <gtest/gtest.h>

#include "cookies/CookieList.h"
#include "cookies/DeleteCookieFiles.h"
#include "core/PublicDim.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

class DeleteCookieFiles : public testing::Test {
 protected:
  void Fill(std::initializer_list<const char*> names) {
    for (const char* name : names) folder_.Add(name, Record("n", "v", "s"));
    LoadCookieList(list_);
  }

  void AddSelected(const std::string& name) {
    CookieRow row;
    row.CookieFile = name;
    AddCookieRow(list_, row);
    list_.Item(list_.Count()).Selected(true);
  }

  void Delete(std::initializer_list<int> selected, QMessageBox::StandardButton answer) {
    for (const int position : selected) list_.Item(position).Selected(true);
    Delete(answer);
  }

  void Delete(QMessageBox::StandardButton answer) {
    asked_ = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [this, answer] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      asked_ = true;
      EXPECT_EQ(box->text(),
                "Do you want to delete selected cookie file(s) and all cookies in them?");
      box->button(answer)->click();
    });
    timer.start(1);
    DeleteSelectedCookieFiles(list_);
  }

  std::vector<bool> Exist(std::initializer_list<const char*> names) const {
    std::vector<bool> exist;
    for (const char* name : names) exist.push_back(std::filesystem::exists(folder_.Path(name)));
    return exist;
  }

  CookieFolder folder_;
  CookieLists window_;
  platform::ListView& list_ = window_.ListVCookie;
  bool asked_ = false;
};

TEST_F(DeleteCookieFiles, DeletesTheFilesOfSelectedRowsAfterYes) {
  Delete(QMessageBox::Yes);
  EXPECT_FALSE(asked_) << "there are no rows to ask about";

  Fill({"a.txt", "b.txt", "c.txt", "d.txt"});
  Delete({1, 4}, QMessageBox::No);
  EXPECT_TRUE(asked_);
  EXPECT_EQ(list_.Count(), 4);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("a.txt")));

  Delete({1, 4}, QMessageBox::Yes);
  EXPECT_EQ(ColumnOf(list_, 5), Cells({"b.txt", "c.txt"}));
  EXPECT_EQ(Exist({"a.txt", "b.txt", "c.txt", "d.txt"}), std::vector({false, true, true, false}));
  EXPECT_EQ(PublicDim.KnownRows.size(), 4u);

  Delete(QMessageBox::Yes);
  EXPECT_TRUE(asked_) << "rows, but none selected";
  EXPECT_EQ(list_.Count(), 2);
}

TEST_F(DeleteCookieFiles, LeavesTheOtherRowsOfAFile) {
  folder_.Add("a.txt", Record("1", "", "s") + Record("2", "", "s") + Record("3", "", "s"));
  LoadCookieList(list_);
  Delete({1, 3}, QMessageBox::Yes);
  EXPECT_EQ(ColumnOf(list_, 3), Cells({"2"}));
  EXPECT_FALSE(std::filesystem::exists(folder_.Path("a.txt")));
}

TEST_F(DeleteCookieFiles, PassesOverWhatIsReadOnlyOrGone) {
  Fill({"fixed.txt", "gone.txt"});
  std::filesystem::permissions(folder_.Path("fixed.txt"), std::filesystem::perms::owner_read);
  std::filesystem::remove(folder_.Path("gone.txt"));
  Delete({1, 2}, QMessageBox::Yes);
  EXPECT_EQ(list_.Count(), 0);
  EXPECT_TRUE(std::filesystem::exists(folder_.Path("fixed.txt")));
}

TEST_F(DeleteCookieFiles, NeverTakesANameForMoreThanOneFile) {
  folder_.Add("plain.txt", Record("n", "v", "s"));
  folder_.Add("*.txt", Record("n", "v", "s"));
  std::filesystem::create_directory(folder_.Path("sub"));
  folder_.Write("sub/inner.txt", "");
  for (const std::string name :
       {"*.txt", "*.*", "", ".", "..", "sub/inner.txt", "../", "*", "sub", "*.TXT", "pl?in.txt"}) {
    AddSelected(name);
  }
  AddSelected(std::string("plain.txt\0x", 11));
  Delete(QMessageBox::Yes);
  EXPECT_EQ(list_.Count(), 0);
  EXPECT_EQ(Exist({"plain.txt", "*.txt", "sub/inner.txt"}), std::vector({true, true, true}));
}

TEST_F(DeleteCookieFiles, TouchesNothingWhileTheFolderIsUnresolved) {
  folder_.Write("a.txt", Record("n", "v", "s"));
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_.Path(""));
  for (const char* folder : {"", "\\"}) {
    PublicDim.CookieDir = folder;
    AddSelected("a.txt");
    Delete(QMessageBox::Yes);
    EXPECT_EQ(list_.Count(), 0);
    EXPECT_TRUE(std::filesystem::exists(folder_.Path("a.txt"))) << folder;
  }
  std::filesystem::current_path(before);
}

}  // namespace
