#include <string>

#include <gtest/gtest.h>

#include "cleaner/Cleaner.h"
#include "cookies/DeleteCookieFiles.h"
#include "core/PublicDim.h"
#include "platform/Forms.h"
#include "tests/support/Application.h"
#include "tests/support/CookieFolder.h"
#include "tests/window/Answers.h"
#include "tests/window/CookieLists.h"

namespace {

const Names Files{"a.txt", "*.txt", "home/a.txt", "home/cookies/a.txt", "home/recent/b.dat"};

class Deletion : public testing::Test {
 protected:
  Deletion() {
    machine::UseHome(folder_.Path("home"));
    for (const std::string& name : Files) {
      folder_.Write(name);
      if (folder_.Has(name)) files_.insert(name);  // "*.txt" is no name everywhere
    }
  }

  Names Gone() const {
    Names gone = files_;
    std::erase_if(gone, [this](const std::string& name) { return folder_.Has(name); });
    return gone;
  }

  void AddSelectedRow(const std::string& name) {
    platform::ListView::ListItem row = window_.ListVCookie.Add("");
    row.SubItems(CookieFileCell, name);
    row.Selected(true);
  }

  /// Deletes by a row of that name, and returns the files that are gone.
  Names GoneByRow(const std::string& name) {
    AddSelectedRow(name);
    const Answers yes;
    DeleteSelectedCookieFiles(window_.ListVCookie);
    EXPECT_EQ(window_.ListVCookie.Count(), 0);
    return Gone();
  }

  Names GoneByCleaner(int cookies, int recentDocuments) {
    Check1_.Value(cookies);
    Check2_.Value(recentDocuments);
    const Answers yes;
    Clean({Check1_, Check2_, Check3_}, window_.ListLog);
    EXPECT_EQ(yes.Asked, cookies + recentDocuments > 0 ? 2 : 0);
    return Gone();
  }

  const CookieFolder folder_;
  Names files_;
  CookieLists window_;
  platform::CheckBox Check1_{window_, {.Name = "Check1", .At = {}}};
  platform::CheckBox Check2_{window_, {.Name = "Check2", .At = {}}};
  platform::CheckBox Check3_{window_, {.Name = "Check3", .At = {}}};
};

TEST_F(Deletion, NeverTakesARowsNameForMoreThanOneFile) {
  for (const std::string& name :
       Names{"*.*", "", ".", "..", "home/a.txt", "../", "*", "home", "a?txt", "home\\a.txt",
             "a.txt:b", "*t", std::string("a.txt\0x", 7)}) {
    EXPECT_EQ(GoneByRow(name), Names()) << name;
  }
  Names itself;
  if (files_.contains("*.txt")) itself.insert("*.txt");
  EXPECT_EQ(GoneByRow("*.txt"), itself);
  const WorkingFolder working(folder_.Path());
  for (const char* unresolved : {"", "\\"}) {
    PublicDim.CookieDir = unresolved;
    EXPECT_EQ(GoneByRow("a.txt"), itself);
  }
}

TEST_F(Deletion, CleansWhatIsTickedWhenTheAnswerComes) {
  PublicDim.CookieDir = folder_.Path("home/cookies/");
  PublicDim.RecentDir = folder_.Path("home/recent/");
  EXPECT_EQ(GoneByCleaner(0, 0), Names());
  platform::Timer untick(1, true);
  untick.Tick = [this] { Check1_.Value(0); };
  EXPECT_EQ(GoneByCleaner(1, 1), Names{"home/recent/b.dat"});
  untick.Enabled(false);
  EXPECT_FALSE(PublicDim.BaselineReset || PublicDim.CookieListStale);
  EXPECT_EQ(window_.ListLog.ListCount(), 0);
  folder_.Write("home/recent/b.dat");
  EXPECT_EQ(GoneByCleaner(1, 0), Names{"home/cookies/a.txt"});
  EXPECT_EQ(GoneByCleaner(0, 1), Names({"home/cookies/a.txt", "home/recent/b.dat"}));
}

}  // namespace
