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
    for (const char* name :
         {"home/a.txt", "a.txt", "home/cookies/a.txt", "home/recent/a.txt", "home/recent/B.DAT",
          "home/recent/.hidden.txt", "home/recent/fixed.txt", "home/recent/folder.txt/kept"}) {
      folder_.Write(name);
    }
    fs::create_symlink(folder_.Path("a.txt"), folder_.Path("home/recent/link.txt"));
    fs::permissions(folder_.Path("home/recent/fixed.txt"), fs::perms::owner_read);
  }

  /// Cleans, and returns the texts of the boxes.
  Cells Run(int cookies, int recentDocuments) {
    Check1_.Value(cookies);
    Check2_.Value(recentDocuments);
    const Answers yes(QMessageBox::Yes);
    Clean({Check1_, Check2_, Check3_}, window_.ListLog);
    return yes.Asked;
  }

  CookieFolder folder_;
  CookieLists window_;
  platform::CheckBox Check1_{window_, {.Name = "Check1", .At = {}}};
  platform::CheckBox Check2_{window_, {.Name = "Check2", .At = {}}};
  platform::CheckBox Check3_{window_, {.Name = "Check3", .At = {}}};
};

TEST_F(Cleaner, DeletesTheDocumentsAloneWhereTheyAreChosen) {
  EXPECT_EQ(Run(0, 0), Cells());
  EXPECT_EQ(Run(0, 1), BothBoxes);
  for (const char* gone : {"a.txt", "B.DAT", "link.txt"}) {
    EXPECT_FALSE(folder_.Has(std::string("home/recent/") + gone)) << gone;
  }
  for (const char* kept : {"a.txt", "home/cookies/a.txt", "home/recent/.hidden.txt",
                           "home/recent/fixed.txt", "home/recent/folder.txt/kept"}) {
    EXPECT_TRUE(folder_.Has(kept)) << kept;
  }
  EXPECT_FALSE(PublicDim.BaselineReset || PublicDim.CookieListStale);
  EXPECT_EQ(window_.ListLog.ListCount(), 0);
}

TEST_F(Cleaner, HeedsABoxThatIsUntickedWhileTheQuestionStands) {
  QTimer::singleShot(0, [this] { Check1_.Value(0); });
  EXPECT_EQ(Run(1, 0), BothBoxes);
  EXPECT_TRUE(folder_.Has("home/cookies/a.txt"));
  EXPECT_EQ(Run(1, 0), BothBoxes);
  EXPECT_FALSE(folder_.Has("home/cookies/a.txt"));
  EXPECT_TRUE(folder_.Has("home/recent/a.txt"));
}

TEST_F(Cleaner, DeletesNothingInAFolderThatIsMoreThanWhatItIsFor) {
  fs::create_directory_symlink(folder_.Path("home"), folder_.Path("home/link"));
  const WorkingFolder working(folder_.Path("home"));
  for (const std::string& folder :
       {std::string("\\"), std::string("C:\\"), std::string(), std::string("./"),
        folder_.Path("home/").string(), folder_.Path("").string(),
        folder_.Path("home/link/").string(), folder_.Path("home/cookies/../").string()}) {
    PublicDim.CookieDir = PublicDim.RecentDir = folder;
    EXPECT_EQ(Run(1, 1), BothBoxes) << folder;
    EXPECT_TRUE(folder_.Has("home/a.txt") && folder_.Has("a.txt")) << folder;
  }
  EXPECT_EQ(window_.ListLog.ListCount(), 8) << "the line comes all the same";
}

}  // namespace
