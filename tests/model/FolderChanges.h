#pragma once

#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/model/Model.h"
#include "tests/support/CookieFolder.h"

namespace model {

/// One seed, one run.
class Dice {
 public:
  explicit Dice(unsigned seed) : random_(seed) {}
  int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  template <typename Thing>
  const Thing& Any(const std::vector<Thing>& things) {
    return things[static_cast<std::size_t>(Pick(static_cast<int>(things.size())))];
  }

 private:
  std::mt19937 random_;
};

std::set<std::string> EntriesOf(const std::string& folder);

/// What others do in the watched folder and to it.
class FolderChanges {
 public:
  FolderChanges(Dice& dice, const CookieFolder& folder, Program& now)
      : dice_(dice), folder_(folder), now_(now) {}

  /// One of them, if it can be; the model is told what a watch is told.
  void Make();
  int Count() const { return count_; }

 private:
  bool Write(const std::string& file, const machine::Facts& facts);
  bool TouchFile(const std::string& file);
  bool MoveAcross(const std::string& file, const std::string& away) const;
  bool NamesChangeBy(const std::string& from, const std::string& to) const;
  void ChangeWholeFolder();
  std::string AsItStands(const std::string& name) const;

  Dice& dice_;
  const CookieFolder& folder_;
  Program& now_;
  int touches_ = 0;
  int count_ = 0;
};

}  // namespace model
