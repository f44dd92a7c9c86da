#include <filesystem>
#include <stdlib.h>
#include <string>

#include <gtest/gtest.h>

#include "cleaner/Cleaner.h"
#include "core/PublicDim.h"
#include "platform/Forms.h"
#include "tests/CookieFolder.h"
#include "tests/window/CookieLists.h"

namespace {

namespace fs = std::filesystem;

const Cells BothBoxes{"Do you want to clean selected items", "Successfully cleaned!"};

class Cleaner : public testing::Test {
 protected:
  Cleaner() {
    setenv("HOME", folder_.Path("home").c_str(), 1);
    PublicDim.CookieDir = folder_.Path("home/cookies/");
    PublicDim.RecentDir = folder_.Path("home/recent/");
    PublicDim.KnownRows = PublicDim.CurrentRows = {{"a.txt", "1", "t"}, {"b.txt", "1", "t"}};
    for (const char* part : {"home/cookies/", "home/recent/"}) {
      for (const char* name :
           {"a.txt", "B.TXT", "other.dat", ".hidden.txt", "fixed.txt", "folder.txt/kept"}) {
        folder_.Write(std::string(part) + name);
      }
      fs::create_symlink(folder_.Write("outside"), folder_.Path(std::string(part) + "link.txt"));
      fs::permissions(folder_.Path(std::string(part) + "fixed.txt"), fs::perms::owner_read);
    }
  }
  struct Ticks {
    int Cookies = 0;
    int RecentDocuments = 0;
    int RecycleBin = 0;
  };

  /// Cleans, and returns the texts of the boxes.
  Cells Run(const Ticks& ticks, QMessageBox::StandardButton answer = QMessageBox::Yes) {
    Check1_.Value(ticks.Cookies);
    Check2_.Value(ticks.RecentDocuments);
    Check3_.Value(ticks.RecycleBin);
    const Answers answers(answer);
    Clean({Check1_, Check2_, Check3_}, window_.ListLog);
    return answers.Asked;
  }
  Names In(const std::string& part) const {
    Names names;
    for (const auto& entry : fs::directory_iterator(folder_.Path(part))) {
      names.insert(entry.path().filename());
    }
    return names;
  }

  CookieFolder folder_;
  CookieLists window_;
  platform::CheckBox Check1_{window_, {.Name = "Check1", .At = {}}};
  platform::CheckBox Check2_{window_, {.Name = "Check2", .At = {}}};
  platform::CheckBox Check3_{window_, {.Name = "Check3", .At = {}}};
};

TEST_F(Cleaner, DeletesWhatWasChosenAfterAYes) {
  const Names all = In("home/recent");
  EXPECT_EQ(Run({}), Cells());
  EXPECT_EQ(Run({1, 1, 1}, QMessageBox::No), Cells{BothBoxes[0]});
  EXPECT_EQ(In("home/cookies"), all) << "cleaned without a choice or a yes";
  EXPECT_EQ(Run({.RecentDocuments = 1}), BothBoxes);
  EXPECT_EQ(In("home/recent"), (Names{".hidden.txt", "fixed.txt", "folder.txt"}));
  EXPECT_EQ(In("home/cookies"), all);
  EXPECT_EQ(PublicDim.KnownRows.size(), 2u);
  EXPECT_FALSE(PublicDim.BaselineReset || PublicDim.CookieListStale);
  EXPECT_EQ(window_.ListLog.ListCount(), 0);
  EXPECT_EQ(Run({.Cookies = 1}), BothBoxes);
  EXPECT_EQ(In("home/cookies"), (Names{"other.dat", ".hidden.txt", "fixed.txt", "folder.txt"}));
  for (const Snapshot* rows : {&PublicDim.KnownRows, &PublicDim.CurrentRows}) {
    ASSERT_EQ(rows->size(), 1u);
    EXPECT_EQ(rows->front().FileName, "");
  }
  EXPECT_TRUE(PublicDim.BaselineReset && PublicDim.CookieListStale);
  for (const char* kept :
       {"outside", "home/cookies/folder.txt/kept", "home/recent/folder.txt/kept"}) {
    EXPECT_TRUE(folder_.Has(kept)) << kept;
  }
}

TEST_F(Cleaner, HeedsABoxThatIsUntickedWhileTheQuestionStands) {
  QTimer::singleShot(0, [this] { Check1_.Value(0); });
  EXPECT_EQ(Run({.Cookies = 1}), BothBoxes);
  EXPECT_TRUE(folder_.Has("home/cookies/a.txt"));
}

TEST_F(Cleaner, DeletesNothingInAFolderThatIsMoreThanWhatItIsFor) {
  folder_.Write("home/a.txt");
  folder_.Write("a.txt");
  fs::create_directory_symlink(folder_.Path("home"), folder_.Path("home/link"));
  const WorkingFolder working(folder_.Path("home"));
  for (const std::string& folder :
       {std::string("\\"), std::string("C:\\"), std::string(), std::string("./"),
        folder_.Path("home/").string(), folder_.Path("").string(),
        folder_.Path("home/link/").string(), folder_.Path("home/cookies/../").string()}) {
    PublicDim.CookieDir = PublicDim.RecentDir = folder;
    EXPECT_EQ(Run({1, 1, 0}), BothBoxes) << folder;
    EXPECT_TRUE(folder_.Has("home/a.txt") && folder_.Has("a.txt")) << folder;
  }
  EXPECT_EQ(window_.ListLog.ListCount(), 8) << "the line comes all the same";
}

}  // namespace
