#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "platform/common/PopupPile.h"

namespace platform {

/// A pile on a screen whose window manager puts everything somewhere else than asked for.
class Popups : public testing::Test {
 protected:
  static constexpr Area Corner{1000, 900, 229, 91};
  static constexpr Area Landed{1004, 880, 237, 121};

  void Add(int count) {
    for (int i = 0; i < count; ++i) newest_ = pile_.Add(Corner);
  }
  void Arrange() {
    const auto changes =
        pile_.Arrange([this](PopupPile::Number popup) { return screen_.at(popup); });
    for (const PopupPile::Number popup : changes.Hide) screen_.erase(popup);
    for (const PopupPile::Number popup : changes.Show) {
      // What comes up lies over all that is there.
      EXPECT_TRUE(screen_.empty() || popup > screen_.rbegin()->first);
      EXPECT_TRUE(screen_.emplace(popup, Landed).second);
      ++shown_;
    }
  }
  void Close(PopupPile::Number popup) { EXPECT_EQ(pile_.Remove(popup), screen_.erase(popup) == 1); }

  PopupPile pile_;
  PopupPile::Number newest_ = 0;
  std::map<PopupPile::Number, Area> screen_;
  int shown_ = 0;
};

TEST_F(Popups, TheNewestFewAreShownOnce) {
  Add(40);
  for (int i = 0; i < 9; ++i) Arrange();
  EXPECT_EQ(shown_, PopupPile::MostAtOnePlace);
  for (int i = 1; i <= 24; ++i) {
    Add(1);
    Arrange();
    EXPECT_EQ(screen_.rbegin()->first, newest_);
    EXPECT_LE(screen_.size(), PopupPile::MostAtOnePlace + 1U);
    EXPECT_EQ(shown_, PopupPile::MostAtOnePlace + i);
  }
}

TEST_F(Popups, HoweverManyOfTheNewestCloseTheNextOneShows) {
  Add(200);
  for (PopupPile::Number left = 200; left > 0; --left) {
    Arrange();
    ASSERT_EQ(screen_.rbegin()->first, left);
    Close(left);
  }
  EXPECT_EQ(shown_, 200);
}

TEST_F(Popups, OneThatTheUserMovedAwayStays) {
  Add(PopupPile::MostAtOnePlace);
  Arrange();
  screen_[1].Left = screen_[2].Top = 0;
  Add(100);
  for (int i = 0; i < 9; ++i) Arrange();
  EXPECT_TRUE(screen_.contains(1));
  EXPECT_TRUE(screen_.contains(2));
  EXPECT_FALSE(screen_.contains(3));
}

}  // namespace platform
