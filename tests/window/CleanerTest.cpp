#include <filesystem>
#include <fstream>
#include <stdlib.h>
#include <string>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <gtest/gtest.h>

#include "cleaner/Cleaner.h"
#include "core/PublicDim.h"
#include "platform/Forms.h"
#include "tests/CookieFolder.h"

namespace {

namespace fs = std::filesystem;

constexpr CleanerChoice Cookies{.Cookies = 1};
constexpr CleanerChoice RecentDocuments{.RecentDocuments = 1};

struct LogForm : platform::Form {
  LogForm() : Form({.Name = "LogForm", .Caption = "", .ClientWidth = 3000, .ClientHeight = 3000}) {}
  platform::ListBox Log{*this, {.Name = "Log", .At = {0, 0, 3000, 3000}}};
};

class CleanerTest : public testing::Test {
 protected:
  CleanerTest() {
    home_ = folder_.Path("home");
    fs::create_directories(home_ / "cookies");
    fs::create_directory(home_ / "recent");
    setenv("HOME", home_.c_str(), 1);
    PublicDim.CookieDir = (home_ / "cookies").string() + "/";
    PublicDim.RecentDir = (home_ / "recent").string() + "/";
    PublicDim.KnownRows = PublicDim.CurrentRows = {{"a.txt", "1", "t"}, {"b.txt", "1", "t"}};
  }
  ~CleanerTest() override { setenv("HOME", oldHome_.c_str(), 1); }

  static void Write(const fs::path& file) { std::ofstream(file) << "text"; }

  /// Cleans, pressing `answer` in the first box and what there is in the second; returns their
  /// texts.
  std::vector<std::string> Run(const CleanerChoice& choice,
                               QMessageBox::StandardButton answer = QMessageBox::Yes) {
    std::vector<std::string> texts;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (!box) return;
      texts.push_back(box->text().toStdString());
      (box->button(answer) ? box->button(answer) : box->button(QMessageBox::Ok))->click();
    });
    timer.start(1);
    Clean(choice, form_.Log, form_.hWnd());
    return texts;
  }

  const std::string oldHome_ = getenv("HOME") ? getenv("HOME") : "/";
  CookieFolder folder_;
  fs::path home_;
  LogForm form_;
};

const std::vector<std::string> BothBoxes{"Do you want to clean selected items",
                                         "Successfully cleaned!"};

TEST_F(CleanerTest, DeletesCookieFilesAndForgetsThem) {
  for (const char* name : {"a.txt", "B.TXT", "other.dat", ".hidden.txt"}) {
    Write(home_ / "cookies" / name);
  }
  Write(home_ / "cookies/read-only.txt");
  fs::permissions(home_ / "cookies/read-only.txt", fs::perms::owner_read);
  fs::create_directory(home_ / "cookies/folder.txt");
  Write(home_ / "outside");
  fs::create_symlink(home_ / "outside", home_ / "cookies/link.txt");
  EXPECT_EQ(Run(Cookies), BothBoxes);
  for (const char* name : {"a.txt", "B.TXT", "link.txt"}) {
    EXPECT_FALSE(fs::exists(fs::symlink_status(home_ / "cookies" / name))) << name;
  }
  for (const char* name : {"cookies/other.dat", "cookies/.hidden.txt", "cookies/read-only.txt",
                           "cookies/folder.txt", "outside"}) {
    EXPECT_TRUE(fs::exists(home_ / name)) << name;
  }
  for (const Snapshot* rows : {&PublicDim.KnownRows, &PublicDim.CurrentRows}) {
    ASSERT_EQ(rows->size(), 1U);
    EXPECT_EQ(rows->front().FileName, "");
  }
  EXPECT_TRUE(PublicDim.BaselineReset);
  EXPECT_TRUE(PublicDim.CookieListStale);
  ASSERT_EQ(form_.Log.ListCount(), 1);
  EXPECT_TRUE(form_.Log.List(0).ends_with(" - Cookies are cleaned **********"));
}

TEST_F(CleanerTest, DoesNothingWithoutAChoiceOrAYes) {
  Write(home_ / "cookies/a.txt");
  Write(home_ / "recent/document");
  EXPECT_EQ(Run({}), std::vector<std::string>());
  EXPECT_EQ(Run({1, 1, 1}, QMessageBox::No), std::vector<std::string>{BothBoxes[0]});
  EXPECT_TRUE(fs::exists(home_ / "cookies/a.txt"));
  EXPECT_TRUE(fs::exists(home_ / "recent/document"));
  EXPECT_EQ(PublicDim.KnownRows.size(), 2U);
  EXPECT_EQ(form_.Log.ListCount(), 0);
}

TEST_F(CleanerTest, DeletesRecentDocumentsWithoutAWordInTheLog) {
  for (const char* name : {"document", "a.txt", ".hidden"}) Write(home_ / "recent" / name);
  fs::create_directory(home_ / "recent/folder");
  Write(home_ / "recent/folder/kept");
  EXPECT_EQ(Run(RecentDocuments), BothBoxes);
  EXPECT_FALSE(fs::exists(home_ / "recent/document"));
  EXPECT_FALSE(fs::exists(home_ / "recent/a.txt"));
  EXPECT_TRUE(fs::exists(home_ / "recent/.hidden"));
  EXPECT_TRUE(fs::exists(home_ / "recent/folder/kept"));
  EXPECT_EQ(PublicDim.KnownRows.size(), 2U);
  EXPECT_FALSE(PublicDim.CookieListStale);
  EXPECT_EQ(form_.Log.ListCount(), 0);
}

TEST_F(CleanerTest, DeletesNothingInAFolderThatIsMoreThanWhatItIsFor) {
  for (const fs::path& file : {home_ / "a.txt", home_.parent_path() / "a.txt"}) Write(file);
  fs::create_directory_symlink(home_, home_ / "link");
  fs::current_path(home_);
  for (const std::string& folder :
       {std::string("\\"), std::string("C:\\"), std::string(), std::string("./"),
        home_.string() + "/", home_.parent_path().string() + "/", home_.string() + "/link/",
        home_.string() + "/cookies/../"}) {
    PublicDim.CookieDir = PublicDim.RecentDir = folder;
    EXPECT_EQ(Run({1, 1, 0}), BothBoxes) << folder;
    EXPECT_TRUE(fs::exists(home_ / "a.txt")) << folder;
    EXPECT_TRUE(fs::exists(home_.parent_path() / "a.txt")) << folder;
  }
  fs::current_path("/");
  EXPECT_EQ(form_.Log.ListCount(), 8) << "the line comes all the same";
}

}  // namespace
