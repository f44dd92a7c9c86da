#include <filesystem>
#include <stdlib.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cleaner/Cleaner.h"
#include "cookies/DeleteCookieFiles.h"
#include "core/PublicDim.h"
#include "platform/Forms.h"
#include "tests/support/CookieFolder.h"
#include "tests/window/Answers.h"
#include "tests/window/CookieLists.h"

namespace {

const Names Files{"a.txt", "*.txt", "home/a.txt", "home/cookies/a.txt", "home/recent/b.dat"};

class Deletion : public testing::Test {
 protected:
  Deletion() {
    setenv("HOME", folder_.Path("home").c_str(), 1);
    for (const std::string& name : Files) folder_.Write(name);
  }

  Names Gone() const {
    Names gone = Files;
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
  const std::string all_ = folder_.TemporaryFolder::Path();
  CookieLists window_;
  platform::CheckBox Check1_{window_, {.Name = "Check1", .At = {}}};
  platform::CheckBox Check2_{window_, {.Name = "Check2", .At = {}}};
  platform::CheckBox Check3_{window_, {.Name = "Check3", .At = {}}};
};

TEST_F(Deletion, NeverTakesARowsNameForMoreThanOneFile) {
  for (const std::string& name : Names{"*.*", "", ".", "..", "home/a.txt", "../", "*", "home",
                                       "a?txt", std::string("a.txt\0x", 7)}) {
    EXPECT_EQ(GoneByRow(name), Names()) << name;
  }
  EXPECT_EQ(GoneByRow("*.txt"), Names{"*.txt"});
  const WorkingFolder working(all_);
  for (const char* unresolved : {"", "\\"}) {
    PublicDim.CookieDir = unresolved;
    EXPECT_EQ(GoneByRow("a.txt"), Names{"*.txt"});
  }
}

TEST_F(Deletion, FindsTheOneFileWhoseNameDiffersInCaseAlone) {
  for (const char* name : {"home/x/one.TXT", "home/x/two.txt", "home/x/TWO.txt"})
    folder_.Write(name);
  PublicDim.CookieDir = all_ + "home/x/";
  const auto left = [this](const std::vector<std::string>& rows) {
    for (const std::string& name : rows) AddSelectedRow(name);
    const Answers yes;
    DeleteSelectedCookieFiles(window_.ListVCookie);
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(PublicDim.CookieDir)) {
      names.insert(entry.path().filename());
    }
    return names;
  };
  EXPECT_EQ(left({"Two.txt"}), Names({"one.TXT", "two.txt", "TWO.txt"}));
  EXPECT_EQ(left({"Two.txt", "two.txt", "two.txt"}), Names({"one.TXT", "TWO.txt"}));
  EXPECT_EQ(left({"One.txt", "gone.txt"}), Names{"TWO.txt"});
  EXPECT_EQ(left({"two.txt"}), Names());
}

TEST_F(Deletion, CleansWhatIsTickedWhenTheAnswerComes) {
  PublicDim.CookieDir = all_ + "home/cookies/";
  PublicDim.RecentDir = all_ + "home/recent/";
  EXPECT_EQ(GoneByCleaner(0, 0), Names());
  QTimer::singleShot(0, [this] { Check1_.Value(0); });
  EXPECT_EQ(GoneByCleaner(1, 1), Names{"home/recent/b.dat"});
  EXPECT_FALSE(PublicDim.BaselineReset || PublicDim.CookieListStale);
  EXPECT_EQ(window_.ListLog.ListCount(), 0);
  folder_.Write("home/recent/b.dat");
  EXPECT_EQ(GoneByCleaner(1, 0), Names{"home/cookies/a.txt"});
  EXPECT_EQ(GoneByCleaner(0, 1), Names({"home/cookies/a.txt", "home/recent/b.dat"}));
}

}  // namespace
